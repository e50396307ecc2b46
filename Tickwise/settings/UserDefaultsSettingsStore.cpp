#include "settings/UserDefaultsSettingsStore.h"

#include "settings/AppSettingsCoding.h"

#include <QLoggingCategory>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcSettings, "com.pelmo.tickwise.Settings")

QString settingsKey()
{
    return QStringLiteral("appSettings");
}

} // namespace

std::optional<AppSettings> UserDefaultsSettingsStore::load() const
{
    const std::optional<QByteArray> document = m_defaults->data(settingsKey());
    if (!document)
        return std::nullopt;
    const Result<AppSettings> settings = decodeSettings(*document);
    if (!settings) {
        qCWarning(lcSettings, "Failed to decode stored settings: %s", qUtf8Printable(description(settings.error())));
        m_defaults->keepBeforeOverwriting(settingsKey());
        return AppSettings();
    }
    return *settings;
}

void UserDefaultsSettingsStore::save(const AppSettings &settings)
{
    const Result<QByteArray> document = encodeSettings(settings);
    if (!document) {
        qCWarning(lcSettings, "Failed to encode settings: %s", qUtf8Printable(description(document.error())));
        return;
    }
    const Result<void> stored = m_defaults->setData(settingsKey(), *document);
    if (!stored)
        qCWarning(lcSettings, "Failed to store settings: %s", qUtf8Printable(description(stored.error())));
}

} // namespace tickwise
