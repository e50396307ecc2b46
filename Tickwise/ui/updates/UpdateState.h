#pragma once

#include "support/Error.h"
#include "ui/updates/AppcastItem.h"

#include <optional>

namespace tickwise {

/// Where an update session stands.
enum class UpdatePhase
{
    checking,
    available,
    downloading,
    ready,
    upToDate,
    failed
};

/// Why a session failed, as far as the user needs to know; each has a text of its own.
enum class UpdateFailureKind
{
    network,
    feed,
    tooLarge,
    signature,
    noSignature,
    noUpdateForSystem,
    disk
};

/// The end of a session that did not work out.
struct UpdateFailure
{
    UpdateFailureKind kind = UpdateFailureKind::network;
    QString detail; ///< for the log
    bool operator==(const UpdateFailure &) const = default;
};

/// What a session shows its user.
struct UpdateState
{
    UpdatePhase phase = UpdatePhase::checking;
    QString runningVersion;
    std::optional<AppcastItem> item;          ///< from `available` to `ready`
    std::optional<int> percent;               ///< while downloading; none: unknown
    std::optional<UpdateFailureKind> failure; ///< exactly when failed
    bool operator==(const UpdateState &) const = default;
};

/// What the user may answer.
enum class UpdateAction
{
    install,     ///< download the update
    remindLater, ///< end the session; the next check offers it again
    skip,        ///< end the session and never offer this version by itself
    cancel,      ///< end the session while it works
    open,        ///< hand the verified package to the desktop
    close,       ///< end a session that has nothing more to offer
};

/// The failure of fetching and reading a feed.
UpdateFailure feedFailure(const Error &error);

/// The failure of downloading a package.
UpdateFailure downloadFailure(const Error &error);

} // namespace tickwise
