#include "ui/settings/GeneralSettingsView.h"

#include "ui/settings/ColorPickerRow.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

#include <cmath>

namespace tickwise {

namespace {

constexpr int pickerWidth = 220;
constexpr int textSizePickerWidth = 160;
constexpr int opacitySliderWidth = 176;
constexpr int opacityLabelWidth = 40;
constexpr int opacitySteps = 100; ///< one a percent

std::function<QString()> textOf(const QString &key)
{
    return [key] { return localized(key); };
}

int percent(double share)
{
    return std::isfinite(share) ? int(std::lround(std::clamp(share, 0.0, 1.0) * opacitySteps)) : 0;
}

QString coinTitle(const QString &id, const CoinCatalog &catalog)
{
    const CoinMetadata *const coin = catalog.byID().value(id);
    return coin ? coin->symbol + QStringLiteral(" - ") + coin->name : id;
}

bool shows(const QComboBox &picker, const std::vector<WatchlistCoin> &coins, const CoinCatalog &catalog)
{
    if (picker.count() != static_cast<int>(coins.size()))
        return false;
    for (int i = 0; i < picker.count(); ++i) {
        const QString &id = coins[static_cast<size_t>(i)].coinId;
        if (picker.itemData(i) != id || picker.itemText(i) != coinTitle(id, catalog))
            return false;
    }
    return true;
}

/// Leaves an equal list alone: it may be open.
void showChoices(QComboBox &picker, const std::vector<WatchlistCoin> &coins, const CoinCatalog &catalog)
{
    if (shows(picker, coins, catalog))
        return;
    picker.clear();
    for (const WatchlistCoin &coin : coins)
        picker.addItem(coinTitle(coin.coinId, catalog), coin.coinId);
}

/// The key of the text that tells what to install; empty where nothing is missing.
QString statusItemHintKey(StatusItemAvailability availability)
{
    switch (availability) {
    case StatusItemAvailability::needsExtension:
        return QStringLiteral("general.statusItem.needsExtension");
    case StatusItemAvailability::needsTrayBar:
        return QStringLiteral("general.statusItem.needsTrayBar");
    case StatusItemAvailability::needsPanel:
        return QStringLiteral("general.statusItem.needsPanel");
    case StatusItemAvailability::unknown:
    case StatusItemAvailability::shown:
        break;
    }
    return {};
}

} // namespace

GeneralSettingsView::GeneralSettingsView(SettingsViewModel &settings, const CoinCatalog &catalog, QWidget *parent)
    : SettingsForm(settings, parent)
    , m_catalog(catalog)
{
    buildLaunch();
    buildPanel();
    buildDesktop();
    buildPrices();
    buildNotifications();
    buildLanguage();
    static_cast<QVBoxLayout *>(layout())->addStretch();
    translate([this] { showAbilities(); });
    connect(&catalog, &CoinCatalog::coinsChanged, this, &GeneralSettingsView::showSettings);
}

void GeneralSettingsView::setAbilities(const DesktopAbilities &abilities)
{
    m_abilities = abilities;
    showAbilities();
}

void GeneralSettingsView::showAbilities()
{
    const QString key = statusItemHintKey(m_abilities.statusItem);
    m_statusItemHint->setText(key.isEmpty() ? QString() : localized(key));
    m_statusItemHint->setVisible(!key.isEmpty());
    m_overlayUnavailable->setVisible(!m_abilities.hasOverlay);
    enableAdjusting();
}

void GeneralSettingsView::enableAdjusting()
{
    m_adjust->setEnabled(m_abilities.hasOverlay && settingsViewModel().settings().desktopOverlayEnabled);
}

void GeneralSettingsView::buildLaunch()
{
    addToggle(addSection(QStringLiteral("general.section.launch")), QStringLiteral("general.launch.atLogin"),
              &AppSettings::launchAtLogin);
}

void GeneralSettingsView::buildPanel()
{
    QFormLayout *const section = addSection(QStringLiteral("general.section.menubar"));
    m_statusItemHint = new QLabel(this);
    m_statusItemHint->setObjectName(QStringLiteral("statusItemHint"));
    m_statusItemHint->setWordWrap(true);
    section->addRow(m_statusItemHint);
    addToggle(section, QStringLiteral("general.display.textColor"), &AppSettings::priceColorEnabled);
    std::vector<Choice<PriceColorScheme>> schemes;
    for (const PriceColorScheme scheme : allCases<PriceColorScheme>())
        schemes.push_back({scheme, [scheme] { return title(scheme); }});
    addPicker(section, QStringLiteral("general.display.colorScheme"), pickerWidth, &AppSettings::colorScheme, schemes);
    buildColorRow(section, QStringLiteral("general.priceColor.upColor"), &AppSettings::customUpColorHex);
    buildColorRow(section, QStringLiteral("general.priceColor.downColor"), &AppSettings::customDownColorHex);
    addToggle(section, QStringLiteral("general.display.textBackground"), &AppSettings::showMenuBarBackground);
    std::vector<Choice<MenuBarContent>> contents;
    for (const MenuBarContent content : allCases<MenuBarContent>())
        contents.push_back({content, [content] { return title(content); }});
    addPicker(section, QStringLiteral("general.display.menubarContent"), pickerWidth, &AppSettings::menuBarContent,
              contents);
    buildDisplayedCoin(section);
}

void GeneralSettingsView::buildDisplayedCoin(QFormLayout *section)
{
    const QString key = QStringLiteral("general.display.menubarCoin");
    auto *const picker = new QComboBox(this);
    picker->setObjectName(key);
    picker->setFixedWidth(pickerWidth);
    WheelGuard::guard(*picker);
    addRow(section, key, picker);
    follow([this, picker](const AppSettings &settings) {
        const QSignalBlocker blocker(picker);
        showChoices(*picker, settings.watchlistCoins, m_catalog);
        picker->setCurrentIndex(picker->findData(settings.displayedCoinId));
        picker->setEnabled(picker->count() > 0);
    });
    connect(picker, &QComboBox::activated, this, [this, picker](int index) {
        edit([&](AppSettings &settings) { settings.displayedCoinId = picker->itemData(index).toString(); });
    });
    addHint(section, QStringLiteral("general.display.menubarCoin.hint"));
}

void GeneralSettingsView::buildColorRow(QFormLayout *section, const QString &key, QString AppSettings::*field)
{
    auto *const row = new ColorPickerRow(this);
    row->setObjectName(key);
    QLabel *const label = addRow(section, key, row);
    translate([row, key] { row->setName(localized(key)); });
    follow([row, label, field](const AppSettings &settings) {
        row->setHexColor(settings.*field);
        const bool isCustom = settings.colorScheme == PriceColorScheme::custom;
        row->setVisible(isCustom);
        label->setVisible(isCustom);
    });
    connect(row, &ColorPickerRow::hexColorEdited, this, [this, field](const QString &hexColor) {
        edit([&](AppSettings &settings) { settings.*field = hexColor; });
    });
}

void GeneralSettingsView::buildDesktop()
{
    QFormLayout *const section = addSection(QStringLiteral("general.section.desktop"));
    addToggle(section, QStringLiteral("general.desktop.overlay"), &AppSettings::desktopOverlayEnabled);
    m_overlayUnavailable = addHint(section, QStringLiteral("desktop.unavailable"));
    std::vector<Choice<DesktopOverlayTextSize>> sizes;
    for (const DesktopOverlayTextSize size : allCases<DesktopOverlayTextSize>())
        sizes.push_back({size, [size] { return title(size); }});
    addPicker(section, QStringLiteral("desktop.textSize"), textSizePickerWidth, &AppSettings::desktopOverlayTextSize,
              sizes);
    buildOpacity(section);
    auto *const adjust = new QPushButton(this);
    adjust->setObjectName(QStringLiteral("desktop.adjust.start"));
    adjust->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    translate([adjust] { adjust->setText(localized(QStringLiteral("desktop.adjust.start"))); });
    m_adjust = adjust;
    follow([this](const AppSettings &) { enableAdjusting(); });
    connect(adjust, &QPushButton::clicked, this, &GeneralSettingsView::adjustOverlayRequested);
    section->addRow(adjust);
}

void GeneralSettingsView::buildOpacity(QFormLayout *section)
{
    auto *const control = new QWidget(this);
    auto *const row = new QHBoxLayout(control);
    row->setContentsMargins(0, 0, 0, 0);
    auto *const slider = new QSlider(Qt::Horizontal, control);
    slider->setObjectName(QStringLiteral("desktop.opacity"));
    slider->setRange(0, opacitySteps);
    slider->setPageStep(opacitySteps / 10);
    WheelGuard::guard(*slider);
    slider->setFixedWidth(opacitySliderWidth);
    auto *const label = new QLabel(control);
    label->setObjectName(QStringLiteral("opacityLabel"));
    label->setFixedWidth(opacityLabelWidth);
    row->addWidget(slider);
    row->addWidget(label);
    control->setFocusProxy(slider);
    addRow(section, QStringLiteral("desktop.opacity"), control);
    translate([slider] { slider->setAccessibleName(localized(QStringLiteral("desktop.opacity"))); });
    follow([slider, label](const AppSettings &settings) {
        const int opacity = percent(settings.desktopOverlayBackgroundOpacity);
        const QSignalBlocker blocker(slider);
        slider->setValue(opacity);
        label->setText(QString::number(opacity) + QLatin1Char('%'));
    });
    connect(slider, &QSlider::valueChanged, this, [this](int value) {
        edit([&](AppSettings &settings) { settings.desktopOverlayBackgroundOpacity = double(value) / opacitySteps; });
    });
}

void GeneralSettingsView::buildPrices()
{
    std::vector<Choice<BaseCurrency>> currencies;
    for (const BaseCurrency currency : allCases<BaseCurrency>())
        currencies.push_back({currency, [currency] { return rawValue(currency); }});
    addPicker(addSection(QStringLiteral("general.section.prices")), QStringLiteral("general.display.currency"),
              pickerWidth, &AppSettings::baseCurrency, currencies);
}

void GeneralSettingsView::buildNotifications()
{
    addToggle(addSection(QStringLiteral("general.section.notification")),
              QStringLiteral("general.notification.priceAlert"), &AppSettings::priceChangeNotificationEnabled);
}

void GeneralSettingsView::buildLanguage()
{
    const std::vector<Choice<AppLanguage>> languages{
        {AppLanguage::system, textOf(QStringLiteral("lang.system"))},
        {AppLanguage::en, textOf(QStringLiteral("lang.endonym.en"))},
        {AppLanguage::zhHans, textOf(QStringLiteral("lang.endonym.zh-Hans"))},
        {AppLanguage::zhHant, textOf(QStringLiteral("lang.endonym.zh-Hant"))},
    };
    addPicker(addSection(QStringLiteral("general.section.language")), QStringLiteral("general.language.label"),
              pickerWidth, &AppSettings::language, languages);
}

} // namespace tickwise
