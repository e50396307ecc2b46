#pragma once

#include "ui/updates/UpdateController.h"
#include "ui/updates/UpdateSchedule.h"
#include "ui/updates/UpdateSession.h"

#include <QPointer>

namespace tickwise {

/// Whether an updater can use these: a feed behind https, and a key that packages are verified with.
bool isUsable(const UpdaterConfiguration &configuration);

/// Checks an appcast once a day and when asked, with gentle reminders: an update that a scheduled check finds while the
/// application is not in focus becomes the controller's `updateAvailable` instead of a window.
class SparkleUpdaterBackend : public QObject, public UpdaterBackend
{
    Q_OBJECT

public:
    /// Starts the schedule at once. The controller is held weakly: what it would be told is dropped when it is gone.
    SparkleUpdaterBackend(UpdateController &controller, UpdaterConfiguration configuration, UpdaterServices services);
    ~SparkleUpdaterBackend() override;

    void checkForUpdates() override;
    void setAutomaticallyChecksForUpdates(bool enabled) override;
    QBindable<bool> bindableCanCheckForUpdates() override { return &m_canCheckForUpdates; }
    QBindable<bool> bindableAutomaticallyChecksForUpdates() override { return &m_automaticallyChecksForUpdates; }

    /// To be called after the machine woke or its network came back: checks now if a day has gone by, or if the last
    /// check did not get through.
    void reconsiderSchedule();

    /// When the next scheduled check is planned, counted from its planning; none while checks are off.
    std::optional<std::chrono::milliseconds> plannedInterval() const;

private:
    void checkOnSchedule();
    UpdateSession &openSession();
    void endSession();
    void planNextCheck();
    void setUpdateAvailable(bool available);

    QPointer<UpdateController> m_controller;
    UpdaterConfiguration m_configuration;
    UpdaterServices m_services;
    UpdaterSettingsStore m_settings;
    std::optional<TimePoint> m_lastAttempt; ///< of this run, successful or not
    QString m_installedVersion;             ///< replaced the running version, which goes on until a restart
    UpdateSchedule m_schedule;
    Q_OBJECT_BINDABLE_PROPERTY(SparkleUpdaterBackend, bool, m_canCheckForUpdates)
    Q_OBJECT_BINDABLE_PROPERTY(SparkleUpdaterBackend, bool, m_automaticallyChecksForUpdates)
    std::unique_ptr<UpdateSession> m_session;
};

} // namespace tickwise
