#include "platform/notifications/SoundPlayer.h"

#include "support/DetachedWork.h"

#include <QLibrary>
#include <QLoggingCategory>

#include <mutex>

#include <canberra.h>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcNotifications, "com.pelmo.tickwise.Notifications")

} // namespace

/// The sound library. Loaded by the first sound, as it brings more libraries, and without it only sounds are missing.
class SoundPlayer::Library
{
public:
    /// Why the library cannot be used; empty when it can.
    QString load()
    {
        resolve(create, "ca_context_create");
        resolve(changeProperties, "ca_context_change_props");
        resolve(play, "ca_context_play");
        resolve(destroy, "ca_context_destroy");
        resolve(describe, "ca_strerror");
        return create && changeProperties && play && destroy && describe ? QString() : m_library.errorString();
    }

    decltype(&ca_context_create) create = nullptr;
    decltype(&ca_context_change_props) changeProperties = nullptr;
    decltype(&ca_context_play) play = nullptr;
    decltype(&ca_context_destroy) destroy = nullptr;
    decltype(&ca_strerror) describe = nullptr;

private:
    template<class Function>
    void resolve(Function &function, const char *name)
    {
        function = reinterpret_cast<Function>(m_library.resolve(name));
    }

    QLibrary m_library{QStringLiteral("canberra"), 0};
};

/// The connection to the sound server, made by the first sound. Used by one thread at a time.
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
            m_library.destroy(m_context);
    }
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    /// Why there is no sound; empty when there is.
    QString play()
    {
        if (QString missing = m_library.load(); !missing.isEmpty())
            return missing;
        constexpr uint32_t sound = 0;
        int failed = open();
        if (!failed)
            failed = m_library.play(m_context, sound, CA_PROP_EVENT_ID, "message-new-instant",
                                    CA_PROP_EVENT_DESCRIPTION, "Price alert", nullptr);
        return failed ? QString::fromUtf8(m_library.describe(failed)) : QString();
    }

private:
    int open()
    {
        if (m_context)
            return CA_SUCCESS;
        // The library loads its drivers with libltdl, which takes one thread at a time.
        static std::mutex driverLoading;
        const std::lock_guard lock(driverLoading);
        const int failed = m_library.create(&m_context);
        return failed ? failed
                      : m_library.changeProperties(m_context, CA_PROP_APPLICATION_NAME, m_name.constData(),
                                                   CA_PROP_APPLICATION_ID, m_id.constData(), nullptr);
    }

    QByteArray m_name;
    QByteArray m_id;
    Library m_library;
    ca_context *m_context = nullptr;
};

SoundPlayer::SoundPlayer(const QString &applicationName, const QString &applicationId, QObject *parent)
    : QObject(parent)
    , m_context(std::make_shared<Context>(applicationName, applicationId))
{
    connect(&m_start, &QFutureWatcher<QString>::finished, this, [this] {
        if (const QString failed = m_start.result(); !failed.isEmpty())
            qCDebug(lcNotifications).noquote() << "Notification sound not played:" << failed;
    });
}

SoundPlayer::~SoundPlayer() = default;

void SoundPlayer::play()
{
    if (m_start.isRunning())
        return;
    // The library waits for the sound server's answer, and the server may hang.
    m_start.setFuture(runDetached([context = m_context] { return context->play(); }));
}

} // namespace tickwise
