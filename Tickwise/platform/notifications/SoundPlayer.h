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
    class Library;
    class Context;

    std::shared_ptr<Context> m_context;
    QFutureWatcher<QString> m_start; ///< why the last sound failed; empty when it did not
};

} // namespace tickwise
