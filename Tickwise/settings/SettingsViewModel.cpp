#include "settings/SettingsViewModel.h"

#include "settings/HexColor.h"

namespace tickwise {

namespace {

const QColor &green()
{
    static const QColor color = colorFromHex(QStringLiteral("#2CBD84")).value();
    return color;
}

const QColor &red()
{
    static const QColor color = colorFromHex(QStringLiteral("#F6465D")).value();
    return color;
}

QColor upColor(const AppSettings &settings)
{
    switch (settings.colorScheme) {
    case PriceColorScheme::greenUpRedDown:
        return green();
    case PriceColorScheme::redUpGreenDown:
        return red();
    case PriceColorScheme::custom:
        return colorFromHex(settings.customUpColorHex).value_or(green());
    }
    return green();
}

QColor downColor(const AppSettings &settings)
{
    switch (settings.colorScheme) {
    case PriceColorScheme::greenUpRedDown:
        return red();
    case PriceColorScheme::redUpGreenDown:
        return green();
    case PriceColorScheme::custom:
        return colorFromHex(settings.customDownColorHex).value_or(red());
    }
    return red();
}

} // namespace

QString rawValue(SettingsTab tab)
{
    switch (tab) {
    case SettingsTab::general:
        return QStringLiteral("general");
    case SettingsTab::watchlist:
        return QStringLiteral("watchlist");
    case SettingsTab::about:
        return QStringLiteral("about");
    }
    return {};
}

template<>
std::vector<SettingsTab> allCases<SettingsTab>()
{
    return {SettingsTab::general, SettingsTab::watchlist, SettingsTab::about};
}

SettingsViewModel::SettingsViewModel(UserDefaultsSettingsStore store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    m_settings = m_store.load().value_or(AppSettings());
}

void SettingsViewModel::update(const AppSettings &settings)
{
    m_settings = settings;
    // Not the argument: a subscriber may have published a further change just now.
    m_store.save(m_settings);
}

std::optional<QColor> SettingsViewModel::priceColor(std::optional<double> change) const
{
    return tickwise::priceColor(m_settings, change);
}

std::optional<QColor> priceColor(const AppSettings &settings, std::optional<double> change)
{
    if (!settings.priceColorEnabled || !change)
        return std::nullopt;
    if (*change >= 0)
        return upColor(settings);
    return *change < 0 ? std::optional(downColor(settings)) : std::nullopt;
}

} // namespace tickwise
