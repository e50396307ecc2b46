#pragma once

#include <QObject>
#include <QVariantMap>

namespace tickwise {

/// Carries notifications between parts of the process that do not know each other. Main thread only.
class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    /// Asks for the settings window; `userInfo` may name a tab under `tabKey`.
    static constexpr QLatin1StringView navigate{"tickwise.navigate"};
    /// The raw value of a `SettingsTab`.
    static constexpr QLatin1StringView tabKey{"tab"};
    /// Asks the desktop overlay to enter its adjusting mode.
    static constexpr QLatin1StringView adjustDesktopOverlay{"tickwise.adjustDesktopOverlay"};

    using QObject::QObject;

    /// Emits `posted` before it returns.
    void post(const QString &name, const QVariantMap &userInfo = {}) { Q_EMIT posted(name, userInfo); }

Q_SIGNALS:
    void posted(const QString &name, const QVariantMap &userInfo);
};

} // namespace tickwise
