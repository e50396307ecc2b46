#include "platform/dbus/PortalSetting.h"

#include "platform/dbus/BusCall.h"

#include <QDBusVariant>

namespace tickwise {

namespace {

QString settingsInterface()
{
    return QStringLiteral("org.freedesktop.portal.Settings");
}

/// `Read` answers a variant inside a variant.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

PortalSetting::PortalSetting(SessionBus &bus, QString group, QString key)
    : m_bus(bus)
    , m_group(std::move(group))
    , m_key(std::move(key))
{
    connect(&bus, &SessionBus::connected, this, &PortalSetting::listen);
    connect(&bus, &SessionBus::disconnected, this, [this] { m_portal.reset(); });
    if (bus.connection().isConnected())
        listen();
}

void PortalSetting::listen()
{
    // Named by path and interface alone: with the sender's name QtDBus would wait for the bus to resolve it.
    QDBusConnection(m_bus.connection())
        .connect(QString(), portalPath(), settingsInterface(), QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QDBusMessage)));
    m_portal = std::make_unique<QDBusServiceWatcher>(portalService(), m_bus.connection(),
                                                     QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_portal.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                if (!owner.isEmpty())
                    read();
            });
    read();
}

void PortalSetting::read()
{
    const QDBusMessage question = portalCall(settingsInterface(), QStringLiteral("Read"), {m_group, m_key});
    sendCall<QDBusVariant>(m_bus.connection(), question, this, [this](const Result<QDBusVariant> &answer) {
        if (answer)
            setValue(QVariant::fromValue(*answer));
    });
}

// Takes the message whole: a slot with a variant parameter is not called before something else has made QtDBus know
// that type.
void PortalSetting::settingChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (arguments.size() == 3 && arguments[0] == m_group && arguments[1] == m_key)
        setValue(arguments[2]);
}

void PortalSetting::setValue(const QVariant &value)
{
    const QVariant plain = unwrapped(value);
    if (std::exchange(m_value, plain) != plain)
        Q_EMIT valueChanged();
}

} // namespace tickwise
