#include "platform/dbus/ColorSchemePortal.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tickwise {

namespace {

QString portalPath()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

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

ColorSchemePortal::ColorSchemePortal(const QDBusConnection &bus)
    : m_bus(bus)
{
    if (!m_bus.isConnected())
        return;
    // Named by path and interface alone: with the sender's name QtDBus would wait for the bus to resolve it.
    m_bus.connect(QString(), portalPath(), settingsInterface(), QStringLiteral("SettingChanged"), this,
                  SLOT(settingChanged(QDBusMessage)));
    read();
}

void ColorSchemePortal::read()
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"), portalPath(),
                                                       settingsInterface(), QStringLiteral("Read"));
    call << appearanceGroup() << colorSchemeKey();
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *finished) {
        finished->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *finished;
        if (!reply.isError())
            setScheme(QVariant::fromValue(reply.value()));
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
