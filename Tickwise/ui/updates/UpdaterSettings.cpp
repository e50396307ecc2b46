#include "ui/updates/UpdaterSettings.h"

#include "support/LogCategories.h"
#include "ui/updates/appcast/VersionComparison.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcUpdates, "com.pelmo.tickwise.Updates")

using Json = nlohmann::ordered_json;

constexpr char automaticallyChecksField[] = "automaticallyChecks";
constexpr char lastCheckField[] = "lastCheck";
constexpr char skippedVersionField[] = "skippedVersion";
/// Seconds since 1970 beyond which no instant is believed; it keeps the clock's arithmetic in range.
constexpr double latestInstant = 4e9;

QString storageKey()
{
    return QStringLiteral("updater");
}

bool boolean(const Json &document, const char *field, bool otherwise)
{
    const auto found = document.find(field);
    return found != document.end() && found->is_boolean() ? found->get<bool>() : otherwise;
}

QString version(const Json &document, const char *field)
{
    const auto found = document.find(field);
    if (found == document.end() || !found->is_string())
        return {};
    const QString text = QString::fromStdString(found->get_ref<const std::string &>());
    return isVersion(text) ? text : QString();
}

std::optional<TimePoint> instant(const Json &document, const char *field)
{
    const auto found = document.find(field);
    if (found == document.end() || !found->is_number())
        return std::nullopt;
    const double seconds = found->get<double>();
    if (!std::isfinite(seconds) || seconds < 0 || seconds > latestInstant)
        return std::nullopt;
    return TimePoint(secondsDuration(seconds));
}

double secondsOf(TimePoint instant)
{
    return secondsBetween(TimePoint(), instant);
}

} // namespace

UpdaterSettings decodeUpdaterSettings(const QByteArray &json)
{
    UpdaterSettings settings;
    const Json document = Json::parse(json.begin(), json.end(), nullptr, false);
    if (!document.is_object())
        return settings;
    settings.automaticallyChecks = boolean(document, automaticallyChecksField, settings.automaticallyChecks);
    settings.lastCheck = instant(document, lastCheckField);
    settings.skippedVersion = version(document, skippedVersionField);
    return settings;
}

QByteArray encodeUpdaterSettings(const UpdaterSettings &settings)
{
    Json document = Json::object();
    document[automaticallyChecksField] = settings.automaticallyChecks;
    if (settings.lastCheck)
        document[lastCheckField] = secondsOf(*settings.lastCheck);
    if (!settings.skippedVersion.isEmpty())
        document[skippedVersionField] = settings.skippedVersion.toStdString();
    return QByteArray::fromStdString(document.dump());
}

UpdaterSettingsStore::UpdaterSettingsStore(SettingsDataStorage &storage)
    : m_storage(storage)
    , m_settings(decodeUpdaterSettings(storage.data(storageKey()).value_or(QByteArray())))
{
}

void UpdaterSettingsStore::update(const UpdaterSettings &settings)
{
    m_settings = settings;
    const Result<void> stored = m_storage.setData(storageKey(), encodeUpdaterSettings(settings));
    if (!stored)
        qCWarning(lcUpdates).noquote() << "Failed to store the updater's settings:" << description(stored.error());
}

} // namespace tickwise
