#include "platform/session/DesktopLoginItem.h"

#include "platform/session/BackgroundRequest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

namespace tickwise {

namespace {

QByteArray execLine(const QString &program)
{
    return "Exec=" + desktopEntryExec(program).toUtf8();
}

QByteArray entryText(const QString &applicationId, const QString &program)
{
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Tickwise\n" +
           execLine(program) + "\nIcon=" + applicationId.toUtf8() +
           "\nTerminal=false\n"
           "StartupNotify=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}

bool startsProgram(const QString &path, const QString &program)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll().split('\n').contains(execLine(program));
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

QString runningProgram()
{
    const QString appImage = qEnvironmentVariable("APPIMAGE");
    return appImage.isEmpty() ? QCoreApplication::applicationFilePath() : appImage;
}

bool runsInSandbox()
{
    return QFile::exists(QStringLiteral("/.flatpak-info")) || !qEnvironmentVariableIsEmpty("SNAP");
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
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/autostart");
}

Result<void> AutostartLoginItem::write() const
{
    if (startsProgram(path(), m_program))
        return {};
    if (!QDir().mkpath(m_directory))
        return failure(FileError{m_directory, QStringLiteral("cannot be created")});
    QSaveFile file(path());
    const QByteArray text = entryText(m_applicationId, m_program);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        return failure(FileError{path(), file.errorString()});
    return {};
}

Result<void> AutostartLoginItem::remove() const
{
    QFile file(path());
    if (file.remove() || !file.exists())
        return {};
    return failure(FileError{path(), file.errorString()});
}

QString AutostartLoginItem::path() const
{
    return m_directory + u'/' + m_applicationId + QStringLiteral(".desktop");
}

PortalLoginItem::PortalLoginItem(QDBusConnection sessionBus, QString program, std::function<QString()> reason)
    : m_bus(std::move(sessionBus))
    , m_program(std::move(program))
    , m_reason(std::move(reason))
{
}

void PortalLoginItem::setRegistered(bool registered, Completion<void> done)
{
    auto *request = new BackgroundRequest(m_bus, registered, std::move(done), &m_requests);
    request->send(m_program, m_reason());
}

std::unique_ptr<LoginItem> makeLoginItem(const QString &applicationId, const QDBusConnection &sessionBus,
                                         bool sandboxed, std::function<QString()> reason)
{
    if (sandboxed)
        return std::make_unique<PortalLoginItem>(sessionBus, QStringLiteral("tickwise"), std::move(reason));
    return std::make_unique<AutostartLoginItem>(applicationId, runningProgram(),
                                                AutostartLoginItem::defaultDirectory());
}

} // namespace tickwise
