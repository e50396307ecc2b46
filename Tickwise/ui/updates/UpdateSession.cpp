#include "ui/updates/UpdateSession.h"

#include "support/DetachedWork.h"
#include "support/LogCategories.h"
#include "ui/updates/UpdateDownload.h"
#include "ui/updates/appcast/UpdateSelection.h"

#include <utility>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcUpdates, "com.pelmo.tickwise.Updates")

/// Why an item cannot be offered, known before anything is downloaded.
std::optional<UpdateFailure> itemFailure(const AppcastItem &item)
{
    if (item.signature.isEmpty())
        return UpdateFailure{UpdateFailureKind::noSignature, QStringLiteral("%1 is not signed").arg(item.version)};
    if (!isSignature(item.signature))
        return UpdateFailure{UpdateFailureKind::signature,
                             QStringLiteral("the signature of %1 is malformed").arg(item.version)};
    return std::nullopt;
}

} // namespace

UpdateSession::UpdateSession(const UpdaterConfiguration &configuration, const UpdaterServices &services,
                             UpdaterSettingsStore &settings, QString installedVersion)
    : m_configuration(configuration)
    , m_services(services)
    , m_settings(settings)
    , m_installedVersion(std::move(installedVersion))
    , m_state{.runningVersion = configuration.runningVersion}
{
    connect(&services.driver, &UpdateUserDriver::chosen, this, &UpdateSession::perform);
    connect(&m_verification, &QFutureWatcher<SignatureCheck>::finished, this,
            [this] { receiveVerification(m_verification.result()); });
}

UpdateSession::~UpdateSession()
{
    m_operation.cancel();
    removePackage();
}

bool UpdateSession::isWorking() const
{
    return m_isShown && (m_state.phase == UpdatePhase::checking || m_state.phase == UpdatePhase::downloading ||
                         m_state.phase == UpdatePhase::installing);
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
        m_acceptedVersion.clear();
        check();
    }
    if (m_state.phase == UpdatePhase::checking)
        m_userInitiated = true;
    Q_EMIT userAttentionReceived();
    show();
    m_services.driver.bringToFront();
}

void UpdateSession::receiveFeed(const UpdateFeedResult &feed)
{
    const bool isAnswered = feed || feed.error().kind != UpdateFailureKind::network;
    if (isAnswered)
        recordCheck();
    if (feed)
        choose(*feed);
    else
        fail(feed.error());
}

void UpdateSession::recordCheck()
{
    UpdaterSettings settings = m_settings.settings();
    settings.lastCheck = m_services.clock();
    m_settings.update(settings);
}

void UpdateSession::choose(const std::vector<AppcastItem> &items)
{
    const UpdateSelection selection =
        selectUpdate(items, {m_configuration.runningVersion, m_configuration.systemVersion,
                             m_settings.settings().skippedVersion, m_userInitiated});
    if (selection.item)
        return receiveOffer(*selection.item);
    const bool needsNewerSystem = selection.outcome == UpdateOutcome::noUpdateForSystem;
    if (needsNewerSystem)
        m_state.failure = UpdateFailureKind::noUpdateForSystem;
    endIn(needsNewerSystem ? UpdatePhase::failed : UpdatePhase::upToDate);
}

void UpdateSession::receiveOffer(const AppcastItem &item)
{
    if (const std::optional<UpdateFailure> failure = itemFailure(item))
        return fail(*failure);
    m_state.item = item;
    if (item.version == m_installedVersion)
        endIn(UpdatePhase::restartNeeded);
    else if (item.version == std::exchange(m_acceptedVersion, QString()))
        download();
    else
        offer(item);
}

void UpdateSession::offer(const AppcastItem &item)
{
    m_state.phase = UpdatePhase::available;
    m_state.item = item;
    if (!m_userInitiated && !m_services.appIsFocused()) {
        Q_EMIT updateWaits();
        Q_EMIT stateChanged();
        return;
    }
    Q_EMIT userAttentionReceived();
    show();
}

void UpdateSession::perform(UpdateAction action)
{
    Q_EMIT userAttentionReceived();
    switch (action) {
    case UpdateAction::download:
        return acceptOffer();
    case UpdateAction::install:
        return verifyAgain();
    case UpdateAction::restart:
        return restart();
    case UpdateAction::skip:
        return skipVersion();
    case UpdateAction::remindLater:
        forgetSkippedVersion();
        return finish();
    case UpdateAction::cancel:
    case UpdateAction::close:
        // An installation that has begun ends by itself.
        if (m_state.phase != UpdatePhase::installing)
            finish();
    }
}

// Quitting closes the window, which may choose once more: the session has to be over by then, and is deleted with it.
void UpdateSession::restart()
{
    PackageInstaller &installer = m_services.installer;
    finish();
    installer.restart();
}

void UpdateSession::skipVersion()
{
    UpdaterSettings settings = m_settings.settings();
    settings.skippedVersion = m_state.item ? m_state.item->version : QString();
    m_settings.update(settings);
    finish();
}

// A user who wants to be reminded of a version, or to install it, no longer skips it.
void UpdateSession::forgetSkippedVersion()
{
    UpdaterSettings settings = m_settings.settings();
    if (settings.skippedVersion.isEmpty())
        return;
    settings.skippedVersion.clear();
    m_settings.update(settings);
}

// A release may have been withdrawn since it was offered.
void UpdateSession::acceptOffer()
{
    if (m_state.phase != UpdatePhase::available)
        return;
    forgetSkippedVersion();
    m_userInitiated = true;
    m_acceptedVersion = m_state.item->version;
    m_state.phase = UpdatePhase::downloading;
    m_state.percent.reset();
    check();
    show();
}

void UpdateSession::download()
{
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
}

void UpdateSession::receivePackage(const tl::expected<QString, UpdateFailure> &package)
{
    if (!package)
        return fail(package.error());
    m_package = *package;
    m_state.phase = UpdatePhase::ready;
    show();
}

// The package may have lain there for days.
void UpdateSession::verifyAgain()
{
    if (m_state.phase != UpdatePhase::ready)
        return;
    m_state.phase = UpdatePhase::installing;
    m_verification.setFuture(
        runDetached([path = m_package, signature = m_state.item->signature, key = m_configuration.publicKey] {
            return checkSignature(path, signature, key);
        }));
    show();
}

void UpdateSession::receiveVerification(SignatureCheck check)
{
    if (const std::optional<UpdateFailure> failure = signatureFailure(check, m_package)) {
        removePackage();
        return fail(*failure);
    }
    m_operation = m_services.installer.install(
        m_package, [this](const Result<PackageInstallation> &installation) { receiveInstallation(installation); });
}

void UpdateSession::receiveInstallation(const Result<PackageInstallation> &installation)
{
    if (!installation) {
        qCWarning(lcUpdates).noquote() << "Failed to install the update:" << description(installation.error());
        m_state.packagePath = std::exchange(m_package, QString());
        return endIn(UpdatePhase::manualInstallation);
    }
    if (*installation == PackageInstallation::opened) {
        m_package.clear(); // the desktop still reads it
        return finish();
    }
    removePackage();
    m_installedVersion = m_state.item->version;
    Q_EMIT installed(m_installedVersion);
    endIn(UpdatePhase::restartNeeded);
}

void UpdateSession::fail(const UpdateFailure &failure)
{
    qCWarning(lcUpdates).noquote() << "Failed to update:" << failure.detail;
    // A found update that waits for the user is not lost because a later check failed.
    if (m_state.phase == UpdatePhase::available && !m_isShown)
        return;
    m_state.failure = failure.kind;
    endIn(UpdatePhase::failed);
}

void UpdateSession::endIn(UpdatePhase phase)
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
    Q_EMIT stateChanged();
}

void UpdateSession::removePackage()
{
    if (!std::exchange(m_package, QString()).isEmpty())
        DownloadFolder(m_configuration.downloadDirectory).clear();
}

void UpdateSession::finish()
{
    m_operation.cancel();
    Q_EMIT finished();
}

} // namespace tickwise
