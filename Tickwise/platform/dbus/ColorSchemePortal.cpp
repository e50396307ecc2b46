#include "platform/dbus/ColorSchemePortal.h"

#include "platform/dbus/BusCall.h"

#include <QDBusVariant>

namespace tickwise {

namespace {

QString settingsInterface()
{
    return QStringLiteral("org.freedesktop.portal.Settings");
}

QString appearanceGroup()
{
    return QStringLiteral("org.freedesktop.appearance");
}

QString colorSchemeKey()
{
    return QStringLiteral("color-scheme");
}

/// `Read` answers a variant inside a variant.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

ColorSchemePortal::ColorSchemePortal(SessionBus &bus)
    : m_bus(bus)
{
    connect(&bus, &SessionBus::connected, this, &ColorSchemePortal::listen);
    if (bus.connection().isConnected())
        listen();
}

void ColorSchemePortal::listen()
{
    // Named by path and interface alone: with the sender's name QtDBus would wait for the bus to resolve it.
    QDBusConnection(m_bus.connection())
        .connect(QString(), portalPath(), settingsInterface(), QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QDBusMessage)));
    read();
}

void ColorSchemePortal::read()
{
    const QDBusMessage question =
        portalCall(settingsInterface(), QStringLiteral("Read"), {appearanceGroup(), colorSchemeKey()});
    sendCall<QDBusVariant>(m_bus.connection(), question, this, [this](const Result<QDBusVariant> &answer) {
        if (answer)
            setScheme(QVariant::fromValue(*answer));
    });
}

// Takes the message whole: a slot with a variant parameter is not called before something else has made QtDBus know
// that type.
void ColorSchemePortal::settingChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (arguments.size() == 3 && arguments[0] == appearanceGroup() && arguments[1] == colorSchemeKey())
        setScheme(arguments[2]);
}

void ColorSchemePortal::setScheme(const QVariant &value)
{
    const uint number = unwrapped(value).toUInt();
    const PanelAppearance scheme = number == 1   ? PanelAppearance::dark
                                   : number == 2 ? PanelAppearance::light
                                                 : PanelAppearance::unknown;
    if (std::exchange(m_scheme, scheme) != scheme)
        Q_EMIT schemeChanged();
}

} // namespace tickwise
