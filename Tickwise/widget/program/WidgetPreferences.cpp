#include "widget/program/WidgetPreferences.h"

#include "settings/RecordDecoding.h"
#include "support/LogCategories.h"

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcPreferences, "com.pelmo.tickwise.WidgetPreferences")

QString storageKey()
{
    return QStringLiteral("widget");
}

} // namespace

WidgetPreferences loadWidgetPreferences(SettingsDataStorage &storage)
{
    WidgetPreferences preferences;
    const std::optional<QByteArray> document = storage.data(storageKey());
    if (!document)
        return preferences;
    const Result<JsonValue> json = parseJson(*document);
    if (!json) {
        qCWarning(lcPreferences).noquote() << "Stored preferences unusable:" << description(json.error());
        storage.keepBeforeOverwriting(storageKey());
        return preferences;
    }
    const JsonReader reader(*json);
    preferences.size = reader.valueOr("size", preferences.size);
    preferences.topLeft = reader.ifDecodable<DesktopOverlayOrigin>("topLeft");
    return preferences;
}

void saveWidgetPreferences(SettingsDataStorage &storage, const WidgetPreferences &preferences)
{
    JsonDocument document;
    document["size"] = utf8Raw(preferences.size);
    if (preferences.topLeft)
        document["topLeft"] = {{"x", preferences.topLeft->x}, {"y", preferences.topLeft->y}};
    const Result<void> saved =
        encodeJson(document).and_then([&](const QByteArray &bytes) { return storage.setData(storageKey(), bytes); });
    if (!saved)
        qCWarning(lcPreferences).noquote() << "Preferences not saved:" << description(saved.error());
}

} // namespace tickwise
