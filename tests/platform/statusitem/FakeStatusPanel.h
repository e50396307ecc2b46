#pragma once

#include "doubles/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

#include <optional>

namespace tickwise::test {

/// A panel: it owns `org.kde.StatusNotifierWatcher`, records the items that register, and asks them as real panels do.
class FakeStatusPanel : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")

public:
    explicit FakeStatusPanel(PrivateBus &bus);
    ~FakeStatusPanel() override;

    const QStringList &items() const { return m_items; }

    /// Everything that the last item has signalled, as "NewIcon" or "LayoutUpdated(2,0)".
    QStringList takeSignals();

    /// A call of the last item, while the event loop runs: the item lives in this process too.
    QDBusMessage callItem(const QString &method, const QVariantList &arguments = {});
    QDBusMessage callMenu(const QString &method, const QVariantList &arguments = {});
    QVariantMap itemProperties();
    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments);

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString &service); // NOLINT: the protocol's spelling
    void signalReceived(const QDBusMessage &message);

private:
    QDBusConnection m_connection;
    QStringList m_items;
    QStringList m_signals;
};

/// A settings portal with a color scheme.
class FakeSettingsPortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    FakeSettingsPortal(PrivateBus &bus, uint scheme);
    ~FakeSettingsPortal() override;

    void setScheme(uint scheme);
    void announce(const QString &group, const QString &key, const QVariant &value);

public Q_SLOTS:
    QDBusVariant Read(const QString &group, const QString &key); // NOLINT: the protocol's spelling

private:
    QDBusConnection m_connection;
    uint m_scheme;
};

} // namespace tickwise::test
