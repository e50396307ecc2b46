#include "ui/updates/UpdateSelection.h"

#include "ui/updates/VersionComparison.h"

namespace tickwise {

namespace {

constexpr std::chrono::hours rollbackMemory{14 * 24};

bool meetsSystem(const AppcastItem &item, const QString &systemVersion)
{
    return item.minimumSystemVersion.isEmpty() || !isVersion(systemVersion) ||
           std::is_gteq(compareVersions(systemVersion, item.minimumSystemVersion));
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
        return {UpdateOutcome::skipped, std::nullopt};
    return {UpdateOutcome::found, *best};
}

QString newestVersion(const std::vector<AppcastItem> &items)
{
    const AppcastItem *best = nullptr;
    for (const AppcastItem &item : items)
        best = newer(best, item);
    return best ? best->version : QString();
}

bool isRolledBack(const QString &newest, const std::optional<SeenVersion> &seen, TimePoint now)
{
    return seen && seen->at <= now && now - seen->at < rollbackMemory &&
           std::is_lt(compareVersions(newest, seen->version));
}

} // namespace tickwise
