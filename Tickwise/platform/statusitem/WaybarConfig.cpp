#include "platform/statusitem/WaybarConfig.h"

#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

namespace tickwise {

namespace {

constexpr int smallestIconSize = 8;
constexpr int largestIconSize = 96;

QString withoutComments(QString text)
{
    // Strings are matched too, so that "https://" inside one does not start a comment.
    static const QRegularExpression stringOrComment(QStringLiteral("(\"(?:[^\"\\\\]|\\\\.)*\")|//[^\\n]*|/\\*.*?\\*/"),
                                                    QRegularExpression::DotMatchesEverythingOption);
    return text.replace(stringOrComment, QStringLiteral("\\1"));
}

QString configurationPath(const QStringList &commandLine)
{
    for (qsizetype i = 1; i + 1 < commandLine.size(); ++i) {
        if (commandLine[i] == u"-c" || commandLine[i] == u"--config")
            return commandLine[i + 1];
    }
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
    static const QRegularExpression trayIconSize(
        QStringLiteral("\"tray\"\\s*:\\s*\\{[^}]*\"icon-size\"\\s*:\\s*(\\d+)"));
    const auto match = trayIconSize.match(withoutComments(QString::fromUtf8(configuration)));
    return match.hasMatch() ? std::clamp(match.captured(1).toInt(), smallestIconSize, largestIconSize)
                            : waybarDefaultIconSize;
}

int waybarIconSize(const QStringList &commandLine)
{
    QFile file(configurationPath(commandLine));
    return !file.fileName().isEmpty() && file.open(QIODevice::ReadOnly) ? waybarIconSize(file.readAll())
                                                                        : waybarDefaultIconSize;
}

} // namespace tickwise
