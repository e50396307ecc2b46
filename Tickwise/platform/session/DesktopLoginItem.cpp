#include "platform/session/DesktopLoginItem.h"

#include "platform/dbus/SessionBus.h"
#include "platform/session/BackgroundRequest.h"
#include "platform/session/RunningProgram.h"
#include "support/files/BaseDirectory.h"
#include "support/files/WholeFile.h"

#include <QFile>
#include <QFileInfo>

namespace tickwise {

namespace {

/// Marks an entry that this program wrote; only such an entry is changed or removed.
constexpr char markerKey[] = "X-Tickwise-LoginItem";
/// The keys with which the user or the desktop switches an entry off.
constexpr const char *switchKeys[] = {"Hidden", "X-GNOME-Autostart-enabled"};
constexpr qint64 largestEntry = 64LL * 1024; ///< bytes; ours has a few hundred

QByteArray line(const QByteArray &key, const QByteArray &value)
{
    return key + '=' + value + '\n';
}

/// The values of an entry's main group.
QMap<QByteArray, QByteArray> entryValues(const QByteArray &text)
{
    QMap<QByteArray, QByteArray> values;
    bool inMainGroup = false;
    for (const QByteArray &line : text.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (line.startsWith('['))
            inMainGroup = line.trimmed() == "[Desktop Entry]";
        else if (inMainGroup && equals > 0 && !line.startsWith('#'))
            values.insert(line.first(equals).trimmed(), line.sliced(equals + 1).trimmed());
    }
    return values;
}

/// The entry's text; the switches of an earlier one stay as they are.
QByteArray entryText(const QByteArray &icon, const QByteArray &exec, const QMap<QByteArray, QByteArray> &earlier)
{
    QByteArray text = "[Desktop Entry]\n" + line("Type", "Application") + line("Name", "Tickwise") +
                      line("Exec", exec) + line("Icon", icon) + line("Terminal", "false") +
                      line("StartupNotify", "false") + line(markerKey, "true");
    QMap<QByteArray, QByteArray> switches{{"X-GNOME-Autostart-enabled", "true"}};
    for (const char *const key : switchKeys) {
        if (earlier.contains(key))
            switches.insert(key, earlier.value(key));
    }
    for (auto found = switches.cbegin(); found != switches.cend(); ++found)
        text += line(found.key(), found.value());
    return text;
}

} // namespace

QString desktopEntryExec(const QString &program)
{
    // Two rules, one after the other: the quoting of a command's word, then the escapes of every value in the file.
    static const QString needsBackslash = QStringLiteral("\"`$\\");
    QString word;
    for (const QChar character : program) {
        if (needsBackslash.contains(character))
            word += u'\\';
        word += character;
        if (character == u'%')
            word += u'%';
    }
    word.replace(u'\\', QStringLiteral("\\\\"));
    word.replace(u'\n', QStringLiteral("\\n"))
        .replace(u'\t', QStringLiteral("\\t"))
        .replace(u'\r', QStringLiteral("\\r"));
    // GLib looks for the first word before it reads "%%" as "%", and finds no such program.
    const QString command = program.contains(u'%') ? QStringLiteral("env ") : QString();
    return command + u'"' + word + u'"';
}

AutostartLoginItem::AutostartLoginItem(QString applicationId, QString program, QString directory)
    : m_applicationId(std::move(applicationId))
    , m_program(std::move(program))
    , m_directory(std::move(directory))
{
}

void AutostartLoginItem::setRegistered(bool registered, Completion<void> done)
{
    QMetaObject::invokeMethod(
        &m_context, [result = registered ? write() : remove(), done = std::move(done)] { done(result); },
        Qt::QueuedConnection);
}

QString AutostartLoginItem::defaultDirectory()
{
    return baseDirectory(QStandardPaths::GenericConfigLocation) + QStringLiteral("/autostart");
}

Result<void> AutostartLoginItem::write() const
{
    const QByteArray exec = desktopEntryExec(m_program).toUtf8();
    const QMap<QByteArray, QByteArray> earlier = entry();
    if (earlier.value("Exec") == exec)
        return {};
    if (QFile::exists(path()) && !earlier.contains(markerKey))
        return failure(FileError{path(), QStringLiteral("is another program's entry")});
    return writeWholeFile(path(), entryText(m_applicationId.toUtf8(), exec, earlier));
}

Result<void> AutostartLoginItem::remove() const
{
    QFile file(path());
    if (!file.exists() || (!QFileInfo(file).isDir() && !entry().contains(markerKey)) || file.remove())
        return {};
    return failure(FileError{path(), file.errorString()});
}

QMap<QByteArray, QByteArray> AutostartLoginItem::entry() const
{
    return entryValues(readWholeFile(path(), largestEntry).value_or(QByteArray()));
}

QString AutostartLoginItem::path() const
{
    return m_directory + u'/' + m_applicationId + QStringLiteral(".desktop");
}

PortalLoginItem::PortalLoginItem(const SessionBus &bus, QString program, std::function<QString()> reason)
    : m_bus(bus)
    , m_program(std::move(program))
    , m_reason(std::move(reason))
{
}

void PortalLoginItem::setRegistered(bool registered, Completion<void> done)
{
    auto *request = new BackgroundRequest(m_bus, registered, std::move(done), &m_requests);
    request->send(m_program, m_reason());
}

std::unique_ptr<LoginItem> makeLoginItem(const QString &applicationId, const SessionBus &bus, bool sandboxed,
                                         std::function<QString()> reason)
{
    if (sandboxed)
        return std::make_unique<PortalLoginItem>(bus, QStringLiteral("tickwise"), std::move(reason));
    return std::make_unique<AutostartLoginItem>(applicationId, runningProgram(),
                                                AutostartLoginItem::defaultDirectory());
}

} // namespace tickwise
