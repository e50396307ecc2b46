#include "ui/updates/UpdaterSettings.h"

#include "support/LogCategories.h"
#include "support/json/JsonReader.h"
#include "ui/updates/appcast/VersionComparison.h"

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcUpdaterSettings, "com.pelmo.tickwise.Updates")

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

Result<UpdaterSettings> decodeUpdaterSettings(const QByteArray &json)
{
    UpdaterSettings settings;
    const Result<JsonValue> document = parseJson(json);
    if (!document)
        return tl::unexpected(document.error());
    const JsonReader reader(*document);
    settings.automaticallyChecks = reader.valueOr(automaticallyChecksField, settings.automaticallyChecks);
    settings.lastCheck = instant(reader.ifDecodable<double>(lastCheckField));
    const auto skipped = reader.ifDecodable<QString>(skippedVersionField);
    if (skipped && isVersion(*skipped))
        settings.skippedVersion = *skipped;
    return reader.result(settings);
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
{
    const std::optional<QByteArray> stored = storage.data(storageKey());
    if (!stored)
        return;
    const Result<UpdaterSettings> settings = decodeUpdaterSettings(*stored);
    if (settings) {
        m_settings = *settings;
        return;
    }
    qCWarning(lcUpdaterSettings).noquote()
        << "Failed to decode the updater's settings:" << description(settings.error());
    storage.keepBeforeOverwriting(storageKey());
}

void UpdaterSettingsStore::update(const UpdaterSettings &settings)
{
    m_settings = settings;
    const Result<void> stored = encodeUpdaterSettings(settings).and_then(
        [this](const QByteArray &json) { return m_storage.setData(storageKey(), json); });
    if (!stored)
        qCWarning(lcUpdaterSettings).noquote()
            << "Failed to store the updater's settings:" << description(stored.error());
}

} // namespace tickwise
