#include "platform/statusitem/WaybarConfig.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cmath>
#include <limits>
#include <optional>

namespace tickwise {

namespace {

constexpr int smallestIconSize = 8;
constexpr int largestIconSize = 96;

/// waybar's reader takes comments, and a comma after the last element.
QByteArray asStrictJson(QString text)
{
    // Strings are matched too, so that what stands inside one is left alone.
    static const QRegularExpression stringOrComment(QStringLiteral("(\"(?:[^\"\\\\]|\\\\.)*\")|//[^\\n]*|/\\*.*?\\*/"),
                                                    QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression stringOrLastComma(QStringLiteral("(\"(?:[^\"\\\\]|\\\\.)*\")|,(?=\\s*[}\\]])"),
                                                      QRegularExpression::DotMatchesEverythingOption);
    return text.replace(stringOrComment, QStringLiteral("\\1"))
        .replace(stringOrLastComma, QStringLiteral("\\1"))
        .toUtf8();
}

std::optional<int> iconSizeOfBar(const QJsonObject &bar)
{
    const QJsonValue size = bar.value(u"tray").toObject().value(u"icon-size");
    const double points = size.toDouble(-1);
    if (points < 0 || points > std::numeric_limits<quint32>::max() || points != std::floor(points))
        return std::nullopt;
    return int(std::clamp<double>(points, smallestIconSize, largestIconSize));
}

/// What follows `-c`, `--config`, `-c=` or `--config=`.
QString configurationArgument(const QStringList &commandLine)
{
    for (qsizetype i = 1; i < commandLine.size(); ++i) {
        const QString option = commandLine[i].section(u'=', 0, 0);
        if (option != u"-c" && option != u"--config")
            continue;
        return commandLine[i].contains(u'=') ? commandLine[i].section(u'=', 1) : commandLine.value(i + 1);
    }
    return {};
}

QString configurationPath(const WatcherProcess &process)
{
    const QString given = configurationArgument(process.arguments);
    if (!given.isEmpty())
        return QDir(process.directory).filePath(given);
    for (const QString &folder : QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation)) {
        for (const QString &name : {QStringLiteral("/waybar/config"), QStringLiteral("/waybar/config.jsonc")}) {
            if (QFile::exists(folder + name))
                return folder + name;
        }
    }
    return {};
}

} // namespace

int waybarIconSize(const QByteArray &configuration)
{
    const QJsonDocument document = QJsonDocument::fromJson(asStrictJson(QString::fromUtf8(configuration)));
    const QJsonArray bars = document.isArray() ? document.array() : QJsonArray{document.object()};
    for (const auto bar : bars) {
        if (const std::optional<int> size = iconSizeOfBar(bar.toObject()))
            return *size;
    }
    return waybarDefaultIconSize;
}

int waybarIconSize(const WatcherProcess &process)
{
    QFile file(configurationPath(process));
    return !file.fileName().isEmpty() && file.open(QIODevice::ReadOnly) ? waybarIconSize(file.readAll())
                                                                        : waybarDefaultIconSize;
}

} // namespace tickwise
