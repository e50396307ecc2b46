#pragma once

#include "ui/LoginItem.h"

#include <QMap>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace tickwise {

class SessionBus;

/// The program's path as the `Exec` value of a desktop entry: quoted and escaped so that it starts this and nothing
/// else.
QString desktopEntryExec(const QString &program);

/// An XDG autostart file. It bears a mark; a file of the same name without it is never changed or removed.
class AutostartLoginItem : public LoginItem
{
public:
    /// `directory` is the user's autostart folder; it is created when it is needed.
    AutostartLoginItem(QString applicationId, QString program, QString directory);

    /// An entry that the user switched off in the desktop's settings stays so. Fails where another program's entry
    /// has the name.
    void setRegistered(bool registered, Completion<void> done) override;

    /// $XDG_CONFIG_HOME/autostart
    static QString defaultDirectory();

private:
    Result<void> write() const;
    Result<void> remove() const;
    QString path() const;
    QMap<QByteArray, QByteArray> entry() const;

    QString m_applicationId;
    QString m_program;
    QString m_directory;
    QObject m_context;
};

/// Asks the Background portal, as a sandboxed application has to.
class PortalLoginItem : public LoginItem
{
public:
    /// `reason` gives the text that the portal shows to the user; it is asked for at each request. `bus` has to outlive
    /// the item.
    PortalLoginItem(const SessionBus &bus, QString program, std::function<QString()> reason);

    /// Fails where the desktop has no such portal, or when it or the user refuses.
    void setRegistered(bool registered, Completion<void> done) override;

private:
    const SessionBus &m_bus;
    QString m_program;
    std::function<QString()> m_reason;
    QObject m_requests;
};

/// The login item for the way this process runs; `bus` and `reason` as for `PortalLoginItem`.
std::unique_ptr<LoginItem> makeLoginItem(const QString &applicationId, const SessionBus &bus, bool sandboxed,
                                         std::function<QString()> reason);

} // namespace tickwise
