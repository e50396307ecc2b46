#pragma once

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

namespace tickwise {

class SingleInstance;

/// `org.freedesktop.Application` as launchers and second copies call it; belongs to the instance that it speaks for.
class ApplicationAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(SingleInstance *instance);

    /// The keys of the platform data that may carry the activation token.
    static QString tokenKey();
    static QString startupIdKey();

private:
    SingleInstance *m_instance;

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &addresses, const QVariantMap &platformData);
    void ActivateAction(const QString &action, const QVariantList &parameter, const QVariantMap &platformData);
};

} // namespace tickwise
