#pragma once

#include <QObject>
#include <QString>

namespace tickwise {

class SessionBus;

/// Opens addresses with an application, whether it runs or not, through `org.freedesktop.Application`.
class ApplicationOpener : public QObject
{
    Q_OBJECT

public:
    /// `applicationId` is the bus name; the bus starts its service where nobody owns it. `ownProgram` is started with
    /// the address where there is no bus, or none that can start the service. `bus` has to outlive the opener.
    ApplicationOpener(const SessionBus &bus, QString applicationId, QString ownProgram, QObject *parent = nullptr);

    /// Returns at once. Where neither way leads to the application, there is one log line.
    void open(const QString &address);

private:
    void start(const QString &address) const;

    const SessionBus &m_bus;
    QString m_applicationId;
    QString m_ownProgram;
};

} // namespace tickwise
