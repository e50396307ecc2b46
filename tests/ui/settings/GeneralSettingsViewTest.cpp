#include "ui/settings/GeneralSettingsView.h"

#include "doubles/Catalogs.h"
#include "doubles/Languages.h"
#include "doubles/LogCapture.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "settings/AppSettingsCoding.h"
#include "ui/settings/ColorPickerRow.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QWheelEvent>

#include <limits>
#include <memory>

using namespace tickwise;

namespace {

/// The widget of that name; the test fails where there is none.
template<class Widget>
Widget *find(const QWidget &view, const char *name)
{
    auto *const widget = view.findChild<Widget *>(QLatin1StringView(name));
    if (!widget)
        qFatal("no control %s", name);
    return widget;
}

/// Chooses an entry as a user does: with the keys, in a picker that has the focus.
void choose(QComboBox *picker, int index)
{
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Home);
    for (int i = 0; i < index; ++i)
        QTest::keyClick(picker, Qt::Key_Down);
}

} // namespace

class GeneralSettingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void togglesEditTheirFields_data();
    void togglesEditTheirFields();
    void pickersEditTheirFields_data();
    void pickersEditTheirFields();
    void controlsFollowTheSettings();
    void everyEditIsStored();
    void sectionsStandInOrder();
    void fixedWidths();
    void coinPickerFollowsTheWatchlist();
    void coinPickerWithoutCoins();
    void colorRowsAreForTheCustomScheme();
    void colorTextIsTakenAsSoonAsItIsOne();
    void pastedColorText_data();
    void pastedColorText();
    void anUntouchedColorTextGivesWayToAChange();
    void aColorTextBeingWrittenStays();
    void storedTextThatIsNoColorShows();
    void colorDialogGivesAColor();
    void opacity_data();
    void opacity();
    void opacitySliderEdits();
    void adjustNeedsTheOverlay();
    void desktopWithoutAnOverlay();
    void hintWithoutAStatusItemHost_data();
    void hintWithoutAStatusItemHost();
    void theWheelScrollsThePage();
    void coinTitlesFollowTheCatalog();
    void anEmptyCatalogLeavesTheIds();
    void aFullDiskIsALogLine();
    void twoViewsAgree();
    void languageChangeWritesEveryText();
    void controlsHaveNames();

private:
    QLineEdit *upColorField();

    test::MemoryDefaults m_defaults;
    int m_writesBefore = 0;
    std::unique_ptr<SettingsViewModel> m_settings;
    std::unique_ptr<test::FixedCatalog> m_catalog;
    std::unique_ptr<GeneralSettingsView> m_view;
};

void GeneralSettingsViewTest::init()
{
    test::useLanguage(AppLanguage::en);
    m_defaults = {};
    m_settings = std::make_unique<SettingsViewModel>(UserDefaultsSettingsStore(m_defaults));
    m_catalog = std::make_unique<test::FixedCatalog>(test::validCoins());
    m_view = std::make_unique<GeneralSettingsView>(*m_settings, *m_catalog);
    m_view->show();
}

void GeneralSettingsViewTest::cleanup()
{
    m_view.reset();
    test::useLanguage(AppLanguage::en);
}

/// The field of the rising color with the focus, in the custom scheme.
QLineEdit *GeneralSettingsViewTest::upColorField()
{
    AppSettings settings = m_settings->settings();
    settings.colorScheme = PriceColorScheme::custom;
    m_settings->update(settings);
    m_writesBefore = m_defaults.writes;
    m_view->activateWindow();
    if (!QTest::qWaitForWindowActive(m_view.get()))
        qFatal("the view is not active");
    auto *const field = find<ColorPickerRow>(*m_view, "general.priceColor.upColor")->findChild<QLineEdit *>();
    field->setFocus();
    return field;
}

void GeneralSettingsViewTest::togglesEditTheirFields_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool AppSettings::*>("field");
    const auto row = [](const char *name, bool AppSettings::*field) {
        QTest::newRow(name) << QString::fromLatin1(name) << field;
    };
    row("general.launch.atLogin", &AppSettings::launchAtLogin);
    row("general.display.textColor", &AppSettings::priceColorEnabled);
    row("general.display.textBackground", &AppSettings::showMenuBarBackground);
    row("general.desktop.overlay", &AppSettings::desktopOverlayEnabled);
    row("general.notification.priceAlert", &AppSettings::priceChangeNotificationEnabled);
}

void GeneralSettingsViewTest::togglesEditTheirFields()
{
    QFETCH(QString, name);
    using Field = bool AppSettings::*;
    QFETCH(Field, field);
    auto *const toggle = m_view->findChild<QCheckBox *>(name);
    QVERIFY(toggle);
    const bool before = m_settings->settings().*field;
    QCOMPARE(toggle->isChecked(), before);
    QTest::mouseClick(toggle, Qt::LeftButton, {}, QPoint(8, toggle->height() / 2));
    QCOMPARE(m_settings->settings().*field, !before);
    AppSettings others = m_settings->settings();
    others.*field = before;
    QVERIFY(others == AppSettings());
    QTest::keyClick(toggle, Qt::Key_Space);
    QCOMPARE(m_settings->settings().*field, before);
}

void GeneralSettingsViewTest::pickersEditTheirFields_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("raw");
    const auto row = [](const char *name, int index, const char *raw) {
        QTest::newRow(raw) << QString::fromLatin1(name) << index << QString::fromLatin1(raw);
    };
    row("general.display.colorScheme", 1, "redUpGreenDown");
    row("general.display.colorScheme", 2, "custom");
    row("general.display.menubarContent", 1, "icon");
    row("general.display.menubarCoin", 1, "ethereum");
    row("desktop.textSize", 1, "large");
    row("general.display.currency", 1, "CNY");
    row("general.display.currency", 11, "GBP");
    row("general.language.label", 3, "zh-Hant");
}

void GeneralSettingsViewTest::pickersEditTheirFields()
{
    QFETCH(QString, name);
    QFETCH(int, index);
    QFETCH(QString, raw);
    choose(m_view->findChild<QComboBox *>(name), index);
    const AppSettings &settings = m_settings->settings();
    const QStringList stored{rawValue(settings.colorScheme),  rawValue(settings.menuBarContent),
                             settings.displayedCoinId,        rawValue(settings.desktopOverlayTextSize),
                             rawValue(settings.baseCurrency), rawValue(settings.language)};
    QVERIFY2(stored.contains(raw), qPrintable(stored.join(u' ')));
}

void GeneralSettingsViewTest::controlsFollowTheSettings()
{
    AppSettings settings;
    settings.launchAtLogin = true;
    settings.colorScheme = PriceColorScheme::custom;
    settings.baseCurrency = BaseCurrency::jpy;
    settings.desktopOverlayBackgroundOpacity = 0.25;
    settings.displayedCoinId = QStringLiteral("ethereum");
    QSignalSpy changed(m_settings.get(), &SettingsViewModel::settingsChanged);
    m_settings->update(settings);
    QCOMPARE(changed.size(), 1);
    QVERIFY(find<QCheckBox>(*m_view, "general.launch.atLogin")->isChecked());
    QCOMPARE(find<QComboBox>(*m_view, "general.display.colorScheme")->currentIndex(), 2);
    QCOMPARE(find<QComboBox>(*m_view, "general.display.currency")->currentText(), QStringLiteral("JPY"));
    QCOMPARE(find<QSlider>(*m_view, "desktop.opacity")->value(), 25);
    QCOMPARE(find<QComboBox>(*m_view, "general.display.menubarCoin")->currentText(), QStringLiteral("ETH - ETH"));
}

void GeneralSettingsViewTest::everyEditIsStored()
{
    find<QCheckBox>(*m_view, "general.launch.atLogin")->click();
    QCOMPARE(m_defaults.writes, 1);
    const auto stored = decodeSettings(m_defaults.entries.at(QStringLiteral("appSettings")));
    QVERIFY(stored && stored->launchAtLogin);
}

void GeneralSettingsViewTest::sectionsStandInOrder()
{
    QStringList titles;
    for (const QGroupBox *const group : m_view->findChildren<QGroupBox *>())
        titles.append(group->objectName());
    QCOMPARE(titles,
             (QStringList{QStringLiteral("general.section.launch"), QStringLiteral("general.section.menubar"),
                          QStringLiteral("general.section.desktop"), QStringLiteral("general.section.prices"),
                          QStringLiteral("general.section.notification"), QStringLiteral("general.section.language")}));
}

void GeneralSettingsViewTest::fixedWidths()
{
    for (const char *const name : {"general.display.currency", "general.display.menubarContent",
                                   "general.display.menubarCoin", "general.language.label"})
        QCOMPARE(find<QComboBox>(*m_view, name)->width(), 220);
    QCOMPARE(find<QComboBox>(*m_view, "desktop.textSize")->width(), 160);
    QCOMPARE(find<QSlider>(*m_view, "desktop.opacity")->width(), 176);
    QCOMPARE(find<QLabel>(*m_view, "opacityLabel")->width(), 40);
}

void GeneralSettingsViewTest::coinPickerFollowsTheWatchlist()
{
    auto *const picker = find<QComboBox>(*m_view, "general.display.menubarCoin");
    QCOMPARE(picker->count(), 2);
    QCOMPARE(picker->currentText(), QStringLiteral("BTC - BTC"));
    AppSettings settings = m_settings->settings();
    settings.watchlistCoins = {{QStringLiteral("unknown")}, {QStringLiteral("coin-5")}, {QStringLiteral("bitcoin")}};
    m_settings->update(settings);
    QCOMPARE(picker->count(), 3);
    QCOMPARE(picker->itemText(0), QStringLiteral("unknown"));
    QCOMPARE(picker->itemText(1), QStringLiteral("C5 - C5"));
    QCOMPARE(picker->currentIndex(), 2);
}

void GeneralSettingsViewTest::coinPickerWithoutCoins()
{
    AppSettings settings = m_settings->settings();
    settings.watchlistCoins.clear();
    m_settings->update(settings);
    const auto *const picker = find<QComboBox>(*m_view, "general.display.menubarCoin");
    QCOMPARE(picker->count(), 0);
    QVERIFY(!picker->isEnabled());
}

void GeneralSettingsViewTest::colorRowsAreForTheCustomScheme()
{
    const auto *const up = find<ColorPickerRow>(*m_view, "general.priceColor.upColor");
    const auto *const down = find<ColorPickerRow>(*m_view, "general.priceColor.downColor");
    QVERIFY(!up->isVisible() && !down->isVisible());
    AppSettings settings = m_settings->settings();
    settings.colorScheme = PriceColorScheme::custom;
    m_settings->update(settings);
    QVERIFY(up->isVisible() && down->isVisible());
    QCOMPARE(up->hexColor(), QStringLiteral("#2CBD84"));
    QCOMPARE(down->hexColor(), QStringLiteral("#F6465D"));
}

void GeneralSettingsViewTest::colorTextIsTakenAsSoonAsItIsOne()
{
    QLineEdit *const field = upColorField();
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("0a1b2"));
    QCOMPARE(m_defaults.writes, m_writesBefore);
    QTest::keyClicks(field, QStringLiteral("c"));
    QCOMPARE(m_settings->settings().customUpColorHex, QStringLiteral("#0A1B2C"));
    QCOMPARE(field->text(), QStringLiteral("0a1b2c"));
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(field->text(), QStringLiteral("#0A1B2C"));
    QCOMPARE(m_settings->settings().customDownColorHex, QStringLiteral("#F6465D"));
    QCOMPARE(m_defaults.writes, m_writesBefore + 1);
}

void GeneralSettingsViewTest::pastedColorText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stored");
    const QString before = QStringLiteral("#2CBD84");
    QTest::newRow("blanks around it") << QStringLiteral(" 0A1B2C\n") << QStringLiteral("#0A1B2C");
    QTest::newRow("five digits") << QStringLiteral("#12345") << before;
    QTest::newRow("a name") << QStringLiteral("reddish") << before;
    QTest::newRow("full-width digits") << QStringLiteral("１２３４５６") << before;
    QTest::newRow("400 digits") << QString(400, u'1') << before;
    QTest::newRow("nothing") << QString() << before;
}

void GeneralSettingsViewTest::pastedColorText()
{
    QFETCH(QString, text);
    QFETCH(QString, stored);
    QLineEdit *const field = upColorField();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QGuiApplication::clipboard()->setText(text);
    field->paste();
    QCOMPARE(m_settings->settings().customUpColorHex, stored);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(field->text(), stored);
}

void GeneralSettingsViewTest::anUntouchedColorTextGivesWayToAChange()
{
    QLineEdit *const field = upColorField();
    AppSettings settings = m_settings->settings();
    settings.customUpColorHex = QStringLiteral("#111111");
    m_settings->update(settings);
    QCOMPARE(field->text(), QStringLiteral("#111111"));
    field->clearFocus();
    QCOMPARE(m_settings->settings().customUpColorHex, QStringLiteral("#111111"));
}

void GeneralSettingsViewTest::aColorTextBeingWrittenStays()
{
    QLineEdit *const field = upColorField();
    field->selectAll();
    QTest::keyClicks(field, QStringLiteral("#22"));
    AppSettings settings = m_settings->settings();
    settings.customUpColorHex = QStringLiteral("#111111");
    m_settings->update(settings);
    QCOMPARE(field->text(), QStringLiteral("#22"));
    QTest::keyClicks(field, QStringLiteral("3344"));
    QCOMPARE(m_settings->settings().customUpColorHex, QStringLiteral("#223344"));
}

void GeneralSettingsViewTest::storedTextThatIsNoColorShows()
{
    AppSettings settings = m_settings->settings();
    settings.customUpColorHex = QStringLiteral("reddish");
    m_settings->update(settings);
    const int writes = m_defaults.writes;
    auto *const field = find<ColorPickerRow>(*m_view, "general.priceColor.upColor")->findChild<QLineEdit *>();
    QCOMPARE(field->text(), QStringLiteral("reddish"));
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(field->text(), QStringLiteral("reddish"));
    QCOMPARE(m_defaults.writes, writes);
}

void GeneralSettingsViewTest::colorDialogGivesAColor()
{
    AppSettings settings = m_settings->settings();
    settings.colorScheme = PriceColorScheme::custom;
    m_settings->update(settings);
    QTest::mouseClick(find<ColorPickerRow>(*m_view, "general.priceColor.downColor")->findChild<QAbstractButton *>(),
                      Qt::LeftButton);
    auto *const dialog = m_view->findChild<QColorDialog *>();
    QVERIFY(dialog);
    QCOMPARE(dialog->currentColor(), QColor(0xF6, 0x46, 0x5D));
    dialog->setCurrentColor(QColor(1, 2, 3));
    dialog->accept();
    QCOMPARE(m_settings->settings().customDownColorHex, QStringLiteral("#010203"));
}

void GeneralSettingsViewTest::opacity_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0.0 << QStringLiteral("0%");
    QTest::newRow("0.349") << 0.349 << QStringLiteral("35%");
    QTest::newRow("0.344") << 0.344 << QStringLiteral("34%");
    QTest::newRow("1") << 1.0 << QStringLiteral("100%");
    QTest::newRow("above") << 7.0 << QStringLiteral("100%");
    QTest::newRow("below") << -1.0 << QStringLiteral("0%");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << QStringLiteral("0%");
}

void GeneralSettingsViewTest::opacity()
{
    QFETCH(double, value);
    AppSettings settings = m_settings->settings();
    settings.desktopOverlayBackgroundOpacity = value;
    m_settings->update(settings);
    QTEST(find<QLabel>(*m_view, "opacityLabel")->text(), "text");
    // What shows is not written back.
    QVERIFY(!(m_settings->settings().desktopOverlayBackgroundOpacity != value && value == value));
}

void GeneralSettingsViewTest::opacitySliderEdits()
{
    auto *const slider = find<QSlider>(*m_view, "desktop.opacity");
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_End);
    QCOMPARE(m_settings->settings().desktopOverlayBackgroundOpacity, 1.0);
    QTest::keyClick(slider, Qt::Key_Left);
    QCOMPARE(m_settings->settings().desktopOverlayBackgroundOpacity, 0.99);
    QCOMPARE(find<QLabel>(*m_view, "opacityLabel")->text(), QStringLiteral("99%"));
    QTest::keyClick(slider, Qt::Key_Home);
    QCOMPARE(m_settings->settings().desktopOverlayBackgroundOpacity, 0.0);
}

void GeneralSettingsViewTest::adjustNeedsTheOverlay()
{
    auto *const adjust = find<QPushButton>(*m_view, "desktop.adjust.start");
    QSignalSpy requested(m_view.get(), &GeneralSettingsView::adjustOverlayRequested);
    QVERIFY(!adjust->isEnabled());
    find<QCheckBox>(*m_view, "general.desktop.overlay")->click();
    QVERIFY(adjust->isEnabled());
    adjust->click();
    QCOMPARE(requested.size(), 1);
}

void GeneralSettingsViewTest::desktopWithoutAnOverlay()
{
    const auto *const hint = find<QLabel>(*m_view, "desktop.unavailable");
    QVERIFY(!hint->isVisible());
    find<QCheckBox>(*m_view, "general.desktop.overlay")->click();
    m_view->setAbilities({.hasOverlay = false});
    QVERIFY(hint->isVisible());
    QVERIFY(!find<QPushButton>(*m_view, "desktop.adjust.start")->isEnabled());
    QVERIFY(find<QCheckBox>(*m_view, "general.desktop.overlay")->isEnabled());
}

void GeneralSettingsViewTest::hintWithoutAStatusItemHost_data()
{
    QTest::addColumn<StatusItemAvailability>("availability");
    QTest::addColumn<QString>("part");
    using Availability = StatusItemAvailability;
    QTest::newRow("unknown") << Availability::unknown << QString();
    QTest::newRow("shown") << Availability::shown << QString();
    QTest::newRow("GNOME") << Availability::needsExtension << QStringLiteral("AppIndicator");
    QTest::newRow("sway") << Availability::needsTrayBar << QStringLiteral("waybar");
    QTest::newRow("others") << Availability::needsPanel << QStringLiteral("tray");
}

void GeneralSettingsViewTest::hintWithoutAStatusItemHost()
{
    QFETCH(StatusItemAvailability, availability);
    QFETCH(QString, part);
    const auto *const hint = find<QLabel>(*m_view, "statusItemHint");
    QVERIFY(!hint->isVisible());
    m_view->setAbilities({.statusItem = availability});
    QCOMPARE(hint->isVisible(), !part.isEmpty());
    QVERIFY(hint->text().contains(part));
    test::useLanguage(AppLanguage::zhHans);
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(m_view.get(), &change);
    QCOMPARE(hint->text().contains(u'。'), !part.isEmpty());
    m_view->setAbilities({.statusItem = StatusItemAvailability::shown});
    QVERIFY(!hint->isVisible());
}

void GeneralSettingsViewTest::theWheelScrollsThePage()
{
    const auto turn = [](QWidget *control) {
        QWheelEvent wheel(control->rect().center(), control->mapToGlobal(control->rect().center()), {}, {0, -120},
                          Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(control, &wheel);
        return wheel.isAccepted();
    };
    auto *const currency = find<QComboBox>(*m_view, "general.display.currency");
    auto *const opacity = find<QSlider>(*m_view, "desktop.opacity");
    find<QCheckBox>(*m_view, "general.launch.atLogin")->setFocus();
    QVERIFY(!turn(currency) && !turn(opacity));
    QVERIFY(m_settings->settings() == AppSettings());
    QVERIFY(!currency->hasFocus());
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    currency->setFocus();
    turn(currency);
    QCOMPARE(m_settings->settings().baseCurrency, BaseCurrency::cny);
}

void GeneralSettingsViewTest::coinTitlesFollowTheCatalog()
{
    const auto *const picker = find<QComboBox>(*m_view, "general.display.menubarCoin");
    std::vector<CoinMetadata> coins = test::validCoins();
    coins[0].name = QStringLiteral("Bitcoin");
    m_catalog->publish(coins, test::noImages);
    QCOMPARE(picker->currentText(), QStringLiteral("BTC - Bitcoin"));
    QCOMPARE(m_defaults.writes, 0);
}

void GeneralSettingsViewTest::anEmptyCatalogLeavesTheIds()
{
    m_catalog->publish({}, test::noImages);
    auto *const picker = find<QComboBox>(*m_view, "general.display.menubarCoin");
    QCOMPARE(picker->itemText(1), QStringLiteral("ethereum"));
    choose(picker, 1);
    QCOMPARE(m_settings->settings().displayedCoinId, QStringLiteral("ethereum"));
}

void GeneralSettingsViewTest::aFullDiskIsALogLine()
{
    m_defaults.fails = true;
    const test::LogCapture log;
    auto *const toggle = find<QCheckBox>(*m_view, "general.launch.atLogin");
    toggle->click();
    QVERIFY(m_settings->settings().launchAtLogin);
    QVERIFY(toggle->isChecked());
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Settings")).size(), 1);
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void GeneralSettingsViewTest::twoViewsAgree()
{
    GeneralSettingsView other(*m_settings, *m_catalog);
    other.show();
    find<QCheckBox>(other, "general.display.textBackground")->click();
    QVERIFY(find<QCheckBox>(*m_view, "general.display.textBackground")->isChecked());
    choose(find<QComboBox>(*m_view, "general.display.currency"), 4);
    QCOMPARE(find<QComboBox>(other, "general.display.currency")->currentText(), QStringLiteral("JPY"));
    find<QSlider>(other, "desktop.opacity")->setValue(40);
    QCOMPARE(find<QLabel>(*m_view, "opacityLabel")->text(), QStringLiteral("40%"));
    QVERIFY(m_settings->settings().showMenuBarBackground);
    QCOMPARE(m_settings->settings().baseCurrency, BaseCurrency::jpy);
}

void GeneralSettingsViewTest::languageChangeWritesEveryText()
{
    QHash<QString, QString> english;
    for (const QCheckBox *const toggle : m_view->findChildren<QCheckBox *>())
        english[toggle->objectName()] = toggle->text();
    test::useLanguage(AppLanguage::zhHant);
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(m_view.get(), &change);
    for (const QCheckBox *const toggle : m_view->findChildren<QCheckBox *>())
        QVERIFY2(toggle->text() != english.value(toggle->objectName()), qPrintable(toggle->objectName()));
    for (const QGroupBox *const group : m_view->findChildren<QGroupBox *>())
        QCOMPARE(group->title(), localized(group->objectName()));
    QCOMPARE(find<QComboBox>(*m_view, "general.display.menubarContent")->itemText(1), title(MenuBarContent::icon));
    QCOMPARE(find<QComboBox>(*m_view, "general.language.label")->itemText(1), QStringLiteral("English"));
    QCOMPARE(find<QPushButton>(*m_view, "desktop.adjust.start")->text(),
             localized(QStringLiteral("desktop.adjust.start")));
}

void GeneralSettingsViewTest::controlsHaveNames()
{
    for (const QWidget *const widget : m_view->findChildren<QWidget *>()) {
        if (widget->focusPolicy() == Qt::NoFocus || qobject_cast<const QLabel *>(widget))
            continue;
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(const_cast<QWidget *>(widget));
        QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
    }
}

TICKWISE_WIDGET_TEST(GeneralSettingsViewTest)
#include "GeneralSettingsViewTest.moc"
