#include "platform/SoundPlayer.h"

#include <QLoggingCategory>
#include <QPromise>

#include <canberra.h>

#include <thread>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcNotifications, "com.pelmo.tickwise.Notifications")

} // namespace

/// The connection to the sound server, made by the first sound.
class SoundPlayer::Context
{
public:
    Context(const QString &applicationName, const QString &applicationId)
        : m_name(applicationName.toUtf8())
        , m_id(applicationId.toUtf8())
    {
    }
    ~Context()
    {
        if (m_context)
            ca_context_destroy(m_context);
    }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    int play()
    {
        if (const int failed = open())
            return failed;
        constexpr uint32_t sound = 0;
        return ca_context_play(m_context, sound, CA_PROP_EVENT_ID, "message-new-instant", CA_PROP_EVENT_DESCRIPTION,
                               "Price alert", nullptr);
    }

private:
    int open()
    {
        if (m_context)
            return CA_SUCCESS;
        const int failed = ca_context_create(&m_context);
        return failed ? failed
                      : ca_context_change_props(m_context, CA_PROP_APPLICATION_NAME, m_name.constData(),
                                                CA_PROP_APPLICATION_ID, m_id.constData(), nullptr);
    }

    QByteArray m_name;
    QByteArray m_id;
    ca_context *m_context = nullptr;
};

SoundPlayer::SoundPlayer(const QString &applicationName, const QString &applicationId, QObject *parent)
    : QObject(parent)
    , m_context(std::make_shared<Context>(applicationName, applicationId))
{
    connect(&m_start, &QFutureWatcher<int>::finished, this, [this] {
        if (const int failed = m_start.result())
            qCDebug(lcNotifications, "Notification sound not played: %s", ca_strerror(failed));
    });
}

SoundPlayer::~SoundPlayer() = default;

void SoundPlayer::play()
{
    if (m_start.isRunning())
        return;
    QPromise<int> promise;
    promise.start();
    m_start.setFuture(promise.future());
    // The library waits for the sound server's answer, and the server may hang: the thread shares the context and is
    // left to itself.
    std::thread([context = m_context, promise = std::move(promise)]() mutable {
        promise.addResult(context->play());
        promise.finish();
    }).detach();
}

} // namespace tickwise
