#include "platform/session/ApplicationAdaptor.h"

#include "platform/session/SingleInstance.h"

namespace tickwise {

namespace {

QString tokenOf(const QVariantMap &platformData)
{
    return platformData.value(ApplicationAdaptor::tokenKey(), platformData.value(ApplicationAdaptor::startupIdKey()))
        .toString();
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(SingleInstance *instance)
    : QDBusAbstractAdaptor(instance)
    , m_instance(instance)
{
}

QString ApplicationAdaptor::tokenKey()
{
    return QStringLiteral("activation-token");
}

QString ApplicationAdaptor::startupIdKey()
{
    return QStringLiteral("desktop-startup-id");
}

void ApplicationAdaptor::Activate(const QVariantMap &platformData)
{
    Q_EMIT m_instance->activated(tokenOf(platformData));
}

void ApplicationAdaptor::Open(const QStringList &addresses, const QVariantMap &platformData)
{
    Q_EMIT m_instance->urlsOpened(addresses, tokenOf(platformData));
}

void ApplicationAdaptor::ActivateAction(const QString &action, const QVariantList &, const QVariantMap &platformData)
{
    Q_EMIT m_instance->actionActivated(action, tokenOf(platformData));
}

} // namespace tickwise
