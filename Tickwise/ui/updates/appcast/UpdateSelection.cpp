#include "ui/updates/appcast/UpdateSelection.h"

#include "ui/updates/appcast/VersionComparison.h"

namespace tickwise {

namespace {

bool meetsSystem(const AppcastItem &item, const QString &systemVersion)
{
    if (item.minimumSystemVersion.isEmpty())
        return true;
    return isVersion(item.minimumSystemVersion) &&
           (!isVersion(systemVersion) || std::is_gteq(compareVersions(systemVersion, item.minimumSystemVersion)));
}

const AppcastItem *newer(const AppcastItem *best, const AppcastItem &item)
{
    return !best || std::is_gt(compareVersions(item.version, best->version)) ? &item : best;
}

bool isSkipped(const AppcastItem &item, const UpdateQuery &query)
{
    return !query.userInitiated && !query.skippedVersion.isEmpty() &&
           std::is_lteq(compareVersions(item.version, query.skippedVersion));
}

} // namespace

UpdateSelection selectUpdate(const std::vector<AppcastItem> &items, const UpdateQuery &query)
{
    const AppcastItem *best = nullptr;
    bool needsNewerSystem = false;
    for (const AppcastItem &item : items) {
        if (std::is_lteq(compareVersions(item.version, query.runningVersion)))
            continue;
        if (meetsSystem(item, query.systemVersion))
            best = newer(best, item);
        else
            needsNewerSystem = true;
    }
    if (!best)
        return {needsNewerSystem ? UpdateOutcome::noUpdateForSystem : UpdateOutcome::upToDate, std::nullopt};
    if (isSkipped(*best, query))
        return {UpdateOutcome::upToDate, std::nullopt};
    return {UpdateOutcome::found, *best};
}

} // namespace tickwise
