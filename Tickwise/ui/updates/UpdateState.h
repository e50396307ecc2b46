#pragma once

#include "support/Error.h"
#include "ui/updates/appcast/AppcastItem.h"

#include <optional>

namespace tickwise {

/// The step that an update session has reached.
enum class UpdatePhase
{
    checking,
    available,
    downloading,
    ready,
    installing,
    restartNeeded,
    manualInstallation,
    upToDate,
    failed
};

/// Why a session failed, as far as the user needs to know; each has a text of its own.
enum class UpdateFailureKind
{
    network,
    feed,
    feedMissing,
    packageMissing,
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
    std::optional<AppcastItem> item;          ///< from `available` to `manualInstallation`
    std::optional<int> percent;               ///< while downloading; none: unknown
    QString packagePath;                      ///< exactly for a manual installation
    std::optional<UpdateFailureKind> failure; ///< exactly when failed
    bool operator==(const UpdateState &) const = default;
};

/// What the user may answer.
enum class UpdateAction
{
    download,    ///< download and verify the update
    remindLater, ///< end the session; the next check offers it again
    skip,        ///< end the session and never offer this version by itself
    cancel,      ///< end the session while it works
    install,     ///< install the verified package
    restart,     ///< start the version that was installed
    close,       ///< end a session that has nothing more to offer
};

/// The failure of fetching and reading a feed.
UpdateFailure feedFailure(const Error &error);

/// The failure of downloading a package.
UpdateFailure downloadFailure(const Error &error);

} // namespace tickwise
