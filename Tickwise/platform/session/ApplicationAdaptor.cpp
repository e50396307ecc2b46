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
    QList<QUrl> urls;
    for (const QString &address : addresses) {
        if (const QUrl url(address); url.isValid())
            urls.append(url);
    }
    Q_EMIT m_instance->urlsOpened(urls, tokenOf(platformData));
}

// The desktop file names no actions, so that one can only be a launcher's wish to see the application.
void ApplicationAdaptor::ActivateAction(const QString &, const QVariantList &, const QVariantMap &platformData)
{
    Q_EMIT m_instance->activated(tokenOf(platformData));
}

} // namespace tickwise
