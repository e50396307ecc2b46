#pragma once

#include <QObject>
#include <QProperty>

#include <memory>

namespace tickwise {

/// Looks for updates and brings them to the user.
class UpdaterBackend
{
public:
    UpdaterBackend() = default;
    virtual ~UpdaterBackend() = default;
    UpdaterBackend(const UpdaterBackend &) = delete;
    UpdaterBackend &operator=(const UpdaterBackend &) = delete;

    /// A check that the user asked for: its outcome is always shown.
    virtual void checkForUpdates() = 0;
    virtual void setAutomaticallyChecksForUpdates(bool enabled) = 0;

    virtual QBindable<bool> bindableCanCheckForUpdates() = 0;
    virtual QBindable<bool> bindableAutomaticallyChecksForUpdates() = 0;
};

/// Publishes the state of updates for the popover and the settings window. Without a backend it is inert. Main thread
/// only.
class UpdateController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool updateAvailable READ updateAvailable NOTIFY updateAvailableChanged BINDABLE bindableUpdateAvailable)
    Q_PROPERTY(bool isAvailable READ isAvailable NOTIFY isAvailableChanged BINDABLE bindableIsAvailable)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged BINDABLE
                   bindableCanCheckForUpdates)
    Q_PROPERTY(
        bool automaticallyChecksForUpdates READ automaticallyChecksForUpdates WRITE setAutomaticallyChecksForUpdates
            NOTIFY automaticallyChecksForUpdatesChanged BINDABLE bindableAutomaticallyChecksForUpdates)

public:
    using QObject::QObject;

    /// Takes the backend, mirrors its two fields from now on and becomes available.
    void attach(std::unique_ptr<UpdaterBackend> backend);

    /// Whether a scheduled check found an update that the user has not seen yet.
    bool updateAvailable() const { return m_updateAvailable; }
    void setUpdateAvailable(bool available) { m_updateAvailable = available; }
    QBindable<bool> bindableUpdateAvailable() { return &m_updateAvailable; }

    /// Whether a backend is attached.
    bool isAvailable() const { return m_isAvailable; }
    QBindable<bool> bindableIsAvailable() { return &m_isAvailable; }

    bool canCheckForUpdates() const { return m_canCheckForUpdates; }
    QBindable<bool> bindableCanCheckForUpdates() { return &m_canCheckForUpdates; }

    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    /// Writes through to the backend, whose value is then mirrored.
    void setAutomaticallyChecksForUpdates(bool enabled);
    QBindable<bool> bindableAutomaticallyChecksForUpdates() { return &m_automaticallyChecksForUpdates; }

    /// Starts a check that the user asked for, or shows the update that was already found.
    void checkForUpdates();

Q_SIGNALS:
    void updateAvailableChanged();
    void isAvailableChanged();
    void canCheckForUpdatesChanged();
    void automaticallyChecksForUpdatesChanged();

private:
    Q_OBJECT_BINDABLE_PROPERTY(UpdateController, bool, m_updateAvailable, &UpdateController::updateAvailableChanged)
    Q_OBJECT_BINDABLE_PROPERTY(UpdateController, bool, m_isAvailable, &UpdateController::isAvailableChanged)
    Q_OBJECT_BINDABLE_PROPERTY(UpdateController, bool, m_canCheckForUpdates,
                               &UpdateController::canCheckForUpdatesChanged)
    Q_OBJECT_BINDABLE_PROPERTY(UpdateController, bool, m_automaticallyChecksForUpdates,
                               &UpdateController::automaticallyChecksForUpdatesChanged)
    std::unique_ptr<UpdaterBackend> m_backend;
    QPropertyNotifier m_canCheckObservation;
    QPropertyNotifier m_automaticallyChecksObservation;
};

} // namespace tickwise
