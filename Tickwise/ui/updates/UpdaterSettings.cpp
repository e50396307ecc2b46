#include "ui/updates/UpdaterSettings.h"

#include "support/LogCategories.h"
#include "support/json/JsonReader.h"
#include "ui/updates/appcast/VersionComparison.h"

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcUpdates, "com.pelmo.tickwise.Updates")

constexpr char automaticallyChecksField[] = "automaticallyChecks";
constexpr char lastCheckField[] = "lastCheck";
constexpr char skippedVersionField[] = "skippedVersion";
/// Seconds since 1970 beyond which no instant is believed; it keeps the clock's arithmetic in range.
constexpr double latestInstant = 4e9;

QString storageKey()
{
    return QStringLiteral("updater");
}

std::optional<TimePoint> instant(std::optional<double> seconds)
{
    if (!seconds || *seconds < 0 || *seconds > latestInstant)
        return std::nullopt;
    return TimePoint(secondsDuration(*seconds));
}

double secondsOf(TimePoint instant)
{
    return secondsBetween(TimePoint(), instant);
}

} // namespace

UpdaterSettings decodeUpdaterSettings(const QByteArray &json)
{
    UpdaterSettings settings;
    const Result<JsonValue> document = parseJson(json);
    if (!document)
        return settings;
    const JsonReader reader(*document);
    settings.automaticallyChecks = reader.valueOr(automaticallyChecksField, settings.automaticallyChecks);
    settings.lastCheck = instant(reader.ifDecodable<double>(lastCheckField));
    const auto skipped = reader.ifDecodable<QString>(skippedVersionField);
    if (skipped && isVersion(*skipped))
        settings.skippedVersion = *skipped;
    return settings;
}

Result<QByteArray> encodeUpdaterSettings(const UpdaterSettings &settings)
{
    JsonDocument document = JsonDocument::object();
    document[automaticallyChecksField] = settings.automaticallyChecks;
    if (settings.lastCheck)
        document[lastCheckField] = secondsOf(*settings.lastCheck);
    if (!settings.skippedVersion.isEmpty())
        document[skippedVersionField] = utf8(settings.skippedVersion);
    return encodeJson(document);
}

UpdaterSettingsStore::UpdaterSettingsStore(SettingsDataStorage &storage)
    : m_storage(storage)
    , m_settings(decodeUpdaterSettings(storage.data(storageKey()).value_or(QByteArray())))
{
}

void UpdaterSettingsStore::update(const UpdaterSettings &settings)
{
    m_settings = settings;
    const Result<void> stored = encodeUpdaterSettings(settings).and_then(
        [this](const QByteArray &json) { return m_storage.setData(storageKey(), json); });
    if (!stored)
        qCWarning(lcUpdates).noquote() << "Failed to store the updater's settings:" << description(stored.error());
}

} // namespace tickwise
