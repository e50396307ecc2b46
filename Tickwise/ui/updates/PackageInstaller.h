#pragma once

#include "support/Subscription.h"

namespace tickwise {

/// How a package reached the system.
enum class PackageInstallation
{
    replaced, ///< the program's file is the new version, which a restart starts
    opened    ///< the desktop opened the package; its handler does the rest
};

/// Installs verified packages in the way that suits the running program.
class PackageInstaller
{
public:
    virtual ~PackageInstaller() = default;

    /// Ends in one result, later. An error means that nothing here installs the package: the user has to.
    [[nodiscard]] virtual Subscription install(const QString &path, Completion<PackageInstallation> done) = 0;

    /// Ends the program and starts the version that replaced it.
    virtual void restart() = 0;
};

} // namespace tickwise
