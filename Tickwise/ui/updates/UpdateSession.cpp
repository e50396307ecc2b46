#include "ui/updates/UpdateSession.h"

#include "support/LogCategories.h"
#include "ui/updates/UpdateDownload.h"
#include "ui/updates/UpdateSignature.h"

#include <utility>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcUpdates, "com.pelmo.tickwise.Updates")

/// Why an item cannot be offered, known before anything is downloaded.
std::optional<UpdateFailure> signatureRefusal(const AppcastItem &item)
{
    if (item.signature.isEmpty())
        return UpdateFailure{UpdateFailureKind::noSignature, QStringLiteral("%1 is not signed").arg(item.version)};
    if (!isSignature(item.signature))
        return UpdateFailure{UpdateFailureKind::signature,
                             QStringLiteral("the signature of %1 is none").arg(item.version)};
    return std::nullopt;
}

} // namespace

UpdateSession::UpdateSession(const UpdaterConfiguration &configuration, const UpdaterServices &services,
                             UpdaterSettingsStore &settings, UpdateSessionDelegate &delegate)
    : m_configuration(configuration)
    , m_services(services)
    , m_settings(settings)
    , m_delegate(delegate)
    , m_state{.runningVersion = configuration.runningVersion}
{
    connect(&services.driver, &UpdateUserDriver::chosen, this, &UpdateSession::answer);
}

UpdateSession::~UpdateSession()
{
    m_operation.cancel();
    if (!m_package.isEmpty())
        removeDownloads(m_configuration.downloadDirectory);
}

bool UpdateSession::isWorking() const
{
    return m_isShown && (m_state.phase == UpdatePhase::checking || m_state.phase == UpdatePhase::downloading);
}

void UpdateSession::check()
{
    m_operation = fetchUpdateFeed(m_services.http, m_configuration.feed,
                                  [this](const UpdateFeedResult &feed) { receiveFeed(feed); });
}

void UpdateSession::receiveUserAttention()
{
    if (m_state.phase == UpdatePhase::available && !m_isShown)
        m_operation.cancel(); // the offer must not change under the user's eyes
    if (m_state.phase == UpdatePhase::upToDate || m_state.phase == UpdatePhase::failed) {
        m_state = {.runningVersion = m_configuration.runningVersion};
        check();
    }
    if (m_state.phase == UpdatePhase::checking)
        m_userInitiated = true;
    m_delegate.didReceiveUserAttention();
    show();
    m_services.driver.bringToFront();
}

void UpdateSession::receiveFeed(const UpdateFeedResult &feed)
{
    if (const std::optional<UpdateFailure> failure = remember(feed))
        fail(*failure);
    else
        choose(*feed);
}

std::optional<UpdateFailure> UpdateSession::remember(const UpdateFeedResult &feed)
{
    if (!feed && feed.error().kind == UpdateFailureKind::network)
        return feed.error();
    const TimePoint now = m_services.clock();
    UpdaterSettings settings = m_settings.settings();
    settings.lastCheck = now;
    const QString newest = feed ? newestVersion(*feed) : QString();
    const bool rolledBack = feed && isRolledBack(newest, settings.newestSeen, now);
    const QString seen = settings.newestSeen ? settings.newestSeen->version : QString();
    if (!newest.isEmpty() && !rolledBack)
        settings.newestSeen = SeenVersion{newest, now};
    m_settings.update(settings);
    if (!feed)
        return feed.error();
    if (rolledBack)
        return UpdateFailure{UpdateFailureKind::feed,
                             QStringLiteral("the feed went back from %1 to %2").arg(seen, newest)};
    return std::nullopt;
}

void UpdateSession::choose(const std::vector<AppcastItem> &items)
{
    const UpdateSelection selection =
        selectUpdate(items, {m_configuration.runningVersion, m_configuration.systemVersion,
                             m_settings.settings().skippedVersion, m_userInitiated});
    if (selection.item)
        return offer(*selection.item);
    const bool needsNewerSystem = selection.outcome == UpdateOutcome::noUpdateForSystem;
    if (needsNewerSystem)
        m_state.failure = UpdateFailureKind::noUpdateForSystem;
    conclude(needsNewerSystem ? UpdatePhase::failed : UpdatePhase::upToDate);
}

void UpdateSession::offer(const AppcastItem &item)
{
    if (const std::optional<UpdateFailure> refusal = signatureRefusal(item))
        return fail(*refusal);
    m_state.phase = UpdatePhase::available;
    m_state.item = item;
    const bool handles = m_userInitiated || m_delegate.shouldHandleShowingScheduledUpdate(m_services.appIsFocused());
    m_delegate.willHandleShowingUpdate(handles, m_userInitiated);
    if (!handles)
        return m_delegate.sessionDidChange();
    m_delegate.didReceiveUserAttention();
    show();
}

void UpdateSession::answer(UpdateAction action)
{
    m_delegate.didReceiveUserAttention();
    switch (action) {
    case UpdateAction::install:
        return download();
    case UpdateAction::open:
        return openPackage();
    case UpdateAction::skip:
        return skip();
    case UpdateAction::remindLater:
        acceptSkipped();
        return finish();
    case UpdateAction::cancel:
    case UpdateAction::close:
        return finish();
    }
}

void UpdateSession::skip()
{
    UpdaterSettings settings = m_settings.settings();
    settings.skippedVersion = m_state.item ? m_state.item->version : QString();
    m_settings.update(settings);
    finish();
}

// Who wants to be reminded of a version, or installs it, no longer skips it.
void UpdateSession::acceptSkipped()
{
    UpdaterSettings settings = m_settings.settings();
    if (settings.skippedVersion.isEmpty())
        return;
    settings.skippedVersion.clear();
    m_settings.update(settings);
}

void UpdateSession::download()
{
    if (m_state.phase != UpdatePhase::available)
        return;
    acceptSkipped();
    m_state.phase = UpdatePhase::downloading;
    m_state.percent.reset();
    UpdateDownloadOrder order;
    order.item = *m_state.item;
    order.publicKey = m_configuration.publicKey;
    order.directory = m_configuration.downloadDirectory;
    order.progress = [this](std::optional<int> percent) {
        m_state.percent = percent;
        show();
    };
    order.done = [this](const tl::expected<QString, UpdateFailure> &package) { receivePackage(package); };
    m_operation = Subscription(std::make_unique<UpdateDownload>(m_services.http, std::move(order)));
    show();
}

void UpdateSession::receivePackage(const tl::expected<QString, UpdateFailure> &package)
{
    if (!package)
        return fail(package.error());
    m_package = *package;
    m_state.phase = UpdatePhase::ready;
    show();
}

void UpdateSession::openPackage()
{
    if (m_package.isEmpty())
        return;
    m_services.openPackage(std::exchange(m_package, QString()));
    finish();
}

void UpdateSession::fail(const UpdateFailure &failure)
{
    qCWarning(lcUpdates).noquote() << "Failed to update:" << failure.detail;
    // A found update that waits for the user is not lost because a later look at the feed failed.
    if (m_state.phase == UpdatePhase::available && !m_isShown)
        return;
    m_state.failure = failure.kind;
    conclude(UpdatePhase::failed);
}

void UpdateSession::conclude(UpdatePhase phase)
{
    m_state.phase = phase;
    if (m_isShown)
        show();
    else
        finish();
}

void UpdateSession::show()
{
    m_isShown = true;
    m_services.driver.show(m_state);
    m_delegate.sessionDidChange();
}

void UpdateSession::finish()
{
    m_operation.cancel();
    m_delegate.willFinishUpdateSession();
}

} // namespace tickwise
