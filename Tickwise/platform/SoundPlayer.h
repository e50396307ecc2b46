#pragma once

#include <QFutureWatcher>
#include <QObject>

#include <memory>

namespace tickwise {

/// Plays the sound theme's notification sound. Main thread only.
class SoundPlayer : public QObject
{
    Q_OBJECT

public:
    /// The names tell the sound server who plays.
    SoundPlayer(const QString &applicationName, const QString &applicationId, QObject *parent = nullptr);
    ~SoundPlayer() override;

    /// Starts the sound and returns at once; nothing while one is being started. A failure is one debug line.
    void play();

private:
    class Context;

    std::shared_ptr<Context> m_context;
    QFutureWatcher<int> m_start; ///< the sound server's answer to the last sound
};

} // namespace tickwise
