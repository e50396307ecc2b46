#include "platform/statusitem/WaybarConfig.h"

#include "support/files/WholeFile.h"
#include "support/json/JsonReader.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <limits>
#include <optional>

namespace tickwise {

namespace {

constexpr int smallestIconSize = 8;
constexpr int largestIconSize = 96;
constexpr qint64 largestConfiguration = 1024LL * 1024; ///< bytes

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

std::optional<int> iconSizeOfBar(const JsonValue &bar)
{
    static const JsonValue::json_pointer iconSize("/tray/icon-size");
    if (!bar.is_object())
        return std::nullopt;
    const Result<std::int64_t> points = decodeJson<std::int64_t>(bar.value(iconSize, JsonValue()));
    if (!points || *points < 0 || *points > std::numeric_limits<quint32>::max())
        return std::nullopt;
    return int(std::clamp<std::int64_t>(*points, smallestIconSize, largestIconSize));
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
    const Result<JsonValue> document = parseJson(asStrictJson(QString::fromUtf8(configuration)), JsonFaults::repair);
    if (!document)
        return waybarDefaultIconSize;
    if (!document->is_array())
        return iconSizeOfBar(*document).value_or(waybarDefaultIconSize);
    for (const JsonValue &bar : *document) {
        if (const std::optional<int> size = iconSizeOfBar(bar))
            return *size;
    }
    return waybarDefaultIconSize;
}

int waybarIconSize(const WatcherProcess &process)
{
    const QString path = configurationPath(process);
    if (path.isEmpty())
        return waybarDefaultIconSize;
    const Result<QByteArray> configuration = readWholeFile(path, largestConfiguration);
    return configuration ? waybarIconSize(*configuration) : waybarDefaultIconSize;
}

} // namespace tickwise
