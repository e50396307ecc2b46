#include "ui/updates/UpdateWindowContent.h"

#include "support/Localization.h"

namespace tickwise {

namespace {

UpdateButton button(const char *key, UpdateAction action)
{
    return {localized(QString::fromLatin1(key)), action};
}

QString failureKey(UpdateFailureKind kind)
{
    switch (kind) {
    case UpdateFailureKind::network:
        return QStringLiteral("update.error.network");
    case UpdateFailureKind::feed:
        return QStringLiteral("update.error.feed");
    case UpdateFailureKind::feedMissing:
        return QStringLiteral("update.error.feedMissing");
    case UpdateFailureKind::packageMissing:
        return QStringLiteral("update.error.packageMissing");
    case UpdateFailureKind::tooLarge:
        return QStringLiteral("update.error.tooLarge");
    case UpdateFailureKind::signature:
        return QStringLiteral("update.error.signature");
    case UpdateFailureKind::noSignature:
        return QStringLiteral("update.error.noSignature");
    case UpdateFailureKind::noUpdateForSystem:
        return QStringLiteral("update.error.noUpdateForSystem");
    case UpdateFailureKind::disk:
        return QStringLiteral("update.error.disk");
    }
    return {};
}

void describeChecking(UpdateWindowContent &content)
{
    content.text = localized(QStringLiteral("update.checking"));
    content.showsProgress = true;
    content.buttons = {button("update.cancel", UpdateAction::cancel)};
    content.escapeAction = UpdateAction::cancel;
}

void describeAvailable(UpdateWindowContent &content, const UpdateState &state)
{
    const AppcastItem item = state.item.value_or(AppcastItem());
    content.text = localized(QStringLiteral("update.available")).arg(displayVersion(item), state.runningVersion);
    content.notes = item.releaseNotes;
    content.notesLabel = item.releaseNotes.isEmpty() ? QString() : localized(QStringLiteral("update.releaseNotes"));
    content.buttons = {button("update.install", UpdateAction::download),
                       button("update.later", UpdateAction::remindLater), button("update.skip", UpdateAction::skip)};
    content.escapeAction = UpdateAction::remindLater;
}

void describeDownloading(UpdateWindowContent &content, const UpdateState &state)
{
    content.text = state.percent ? localized(QStringLiteral("update.downloading")).arg(*state.percent)
                                 : localized(QStringLiteral("update.downloadingUnknownSize"));
    content.showsProgress = true;
    content.percent = state.percent;
    content.buttons = {button("update.cancel", UpdateAction::cancel)};
    content.escapeAction = UpdateAction::cancel;
}

void describeReady(UpdateWindowContent &content)
{
    content.text = localized(QStringLiteral("update.ready"));
    content.buttons = {button("update.install", UpdateAction::install),
                       button("update.later", UpdateAction::remindLater)};
    content.escapeAction = UpdateAction::remindLater;
}

void describeInstalling(UpdateWindowContent &content)
{
    content.text = localized(QStringLiteral("update.installing"));
    content.showsProgress = true;
}

void describeRestart(UpdateWindowContent &content, const UpdateState &state)
{
    const AppcastItem item = state.item.value_or(AppcastItem());
    content.text = localized(QStringLiteral("update.installed")).arg(displayVersion(item));
    content.buttons = {button("update.restart", UpdateAction::restart), button("update.close", UpdateAction::close)};
}

void describeEnd(UpdateWindowContent &content, const QString &text)
{
    content.text = text;
    content.buttons = {button("update.close", UpdateAction::close)};
}

} // namespace

UpdateWindowContent updateWindowContent(const UpdateState &state)
{
    UpdateWindowContent content{.title = localized(QStringLiteral("update.window.title"))};
    switch (state.phase) {
    case UpdatePhase::checking:
        describeChecking(content);
        break;
    case UpdatePhase::available:
        describeAvailable(content, state);
        break;
    case UpdatePhase::downloading:
        describeDownloading(content, state);
        break;
    case UpdatePhase::ready:
        describeReady(content);
        break;
    case UpdatePhase::installing:
        describeInstalling(content);
        break;
    case UpdatePhase::restartNeeded:
        describeRestart(content, state);
        break;
    case UpdatePhase::manualInstallation:
        describeEnd(content, localized(QStringLiteral("update.installManually")).arg(state.packagePath));
        break;
    case UpdatePhase::upToDate:
        describeEnd(content, localized(QStringLiteral("update.upToDate")).arg(state.runningVersion));
        break;
    case UpdatePhase::failed:
        describeEnd(content, localized(QStringLiteral("update.failed"))
                                 .arg(localized(failureKey(state.failure.value_or(UpdateFailureKind::network)))));
        break;
    }
    return content;
}

} // namespace tickwise
