#include "SurfacesWorld.h"
#include "doubles/Languages.h"
#include "doubles/TestData.h"
#include "doubles/TestProgram.h"
#include "ui/settings/SettingsWindowFrame.h"
#include "ui/updates/UpdateWindow.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTranslator>

#include <cmath>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// The English texts with each word 40 percent longer.
class LongerTexts : public QTranslator
{
public:
    QString translate(const char *, const char *key, const char *, int) const override
    {
        QStringList words = localized(QString::fromUtf8(key), mainLocalizationBundle()).split(u' ');
        for (QString &word : words) {
            if (!word.contains(u'%'))
                word += QString(int(std::ceil(0.4 * double(word.size()))), u'n');
        }
        return words.join(u' ');
    }
    bool isEmpty() const override { return false; }
};

LocalizationBundle bundleNamed(const QString &name)
{
    if (name == QStringLiteral("longer"))
        return std::make_shared<const LongerTexts>();
    return openLocalizationBundle(name);
}

/// The keys that begin so.
QStringList keysOf(const QString &group)
{
    const QString keys = QString::fromUtf8(readData(QStringLiteral("localization-keys.txt")));
    return keys.split(u'\n').filter(QRegularExpression(u'^' + QRegularExpression::escape(group)));
}

int widthOf(const QWidget &widget, const QString &text)
{
    return widget.fontMetrics().horizontalAdvance(text);
}

bool fits(const QLabel &label)
{
    if (label.hasHeightForWidth())
        return label.heightForWidth(label.width()) <= label.height();
    return label.sizeHint().width() <= label.width() && label.sizeHint().height() <= label.height();
}

bool fits(const QComboBox &picker)
{
    QStyleOptionComboBox option;
    option.initFrom(&picker);
    option.subControls = QStyle::SC_All;
    const int room =
        picker.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &picker).width();
    for (int i = 0; i < picker.count(); ++i) {
        if (widthOf(picker, picker.itemText(i)) > room)
            return false;
    }
    return true;
}

bool fits(const QTabBar &tabs)
{
    return tabs.sizeHint().width() <= tabs.width();
}

bool fits(const QLineEdit &field)
{
    return widthOf(field, field.placeholderText()) <= field.width() - 8;
}

bool fits(const QWidget &widget)
{
    if (const auto *const label = qobject_cast<const QLabel *>(&widget))
        return fits(*label);
    if (const auto *const picker = qobject_cast<const QComboBox *>(&widget))
        return fits(*picker);
    if (const auto *const tabs = qobject_cast<const QTabBar *>(&widget))
        return fits(*tabs);
    if (const auto *const field = qobject_cast<const QLineEdit *>(&widget))
        return fits(*field);
    if (const auto *const group = qobject_cast<const QGroupBox *>(&widget))
        return group->minimumSizeHint().width() <= group->width();
    if (qobject_cast<const QAbstractButton *>(&widget))
        return widget.sizeHint().width() <= widget.width() && widget.sizeHint().height() <= widget.height();
    if (const auto *const area = qobject_cast<const QScrollArea *>(&widget))
        return area->horizontalScrollBar()->maximum() == 0;
    return true;
}

bool isInside(const QWidget &widget)
{
    const QWidget *const window = widget.window();
    const QRect box(widget.mapTo(window, QPoint()), widget.size());
    return box.left() >= 0 && box.right() < window->width();
}

/// The visible parts of a window whose text is cut.
QStringList cutTexts(const QWidget &window)
{
    QStringList cut;
    for (const QWidget *const widget : window.findChildren<QWidget *>()) {
        if (widget->isVisible() && !(fits(*widget) && isInside(*widget)))
            cut.append(QStringLiteral("%1 %2 %3")
                           .arg(QLatin1StringView(widget->metaObject()->className()), widget->objectName(),
                                widget->property("text").toString()));
    }
    return cut;
}

AppSettings settingsThatShowEverything()
{
    AppSettings settings;
    settings.language = AppLanguage::en;
    settings.colorScheme = PriceColorScheme::custom;
    settings.pollingInterval = 3600;
    return settings;
}

} // namespace

/// Whether every text fits at the smallest sizes: in each language, and in one whose texts are 40 percent longer.
class TextsFitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { useLanguage(AppLanguage::en); }
    void settingsWindow_data() { languages(); }
    void settingsWindow();
    void popover_data() { languages(); }
    void popover();
    void updateWindow_data() { languages(); }
    void updateWindow();
    void theTestSeesACutText();

private:
    static void languages();
};

void TextsFitTest::languages()
{
    QTest::addColumn<QString>("language");
    for (const char *const language : {"en", "zh-Hans", "zh-Hant", "longer"})
        QTest::newRow(language) << QString::fromLatin1(language);
}

void TextsFitTest::settingsWindow()
{
    QFETCH(QString, language);
    SurfacesWorld world(settingsThatShowEverything());
    world.windows->setStatusItemAvailability(StatusItemAvailability::needsExtension);
    world.windows->open(SettingsTab::general);
    setCurrentLocalizationBundle(bundleNamed(language));
    world.windows->retranslate();
    SettingsWindow &window = *world.windows->window();
    window.findChild<GeneralSettingsView *>()->setAbilities(
        {.hasOverlay = false, .statusItem = StatusItemAvailability::needsExtension});
    QVERIFY(QTest::qWaitForWindowActive(&window));
    window.resize(settingsWindowMinimum);
    for (const SettingsTab tab : allCases<SettingsTab>()) {
        world.windows->open(tab);
        QCoreApplication::processEvents();
        QCOMPARE(window.size(), settingsWindowMinimum);
        QCOMPARE(cutTexts(window), QStringList());
    }
    world.windows->open(SettingsTab::watchlist);
    world.control<QPushButton>(QStringLiteral("watchlist.addCoin"))->click();
    QTest::keyClicks(world.control<QLineEdit>(QStringLiteral("searchField")), QStringLiteral("no such coin"));
    QCoreApplication::processEvents();
    QCOMPARE(cutTexts(window), QStringList());
}

void TextsFitTest::popover()
{
    QFETCH(QString, language);
    SurfacesWorld world(settingsThatShowEverything());
    world.delegate->activate();
    setCurrentLocalizationBundle(bundleNamed(language));
    world.delegate->popover()->retranslate();
    QCOMPARE(cutTexts(*world.delegate->popover()->window()), QStringList());
    auto *const status = world.delegate->popover()->window()->findChild<QLabel *>(QStringLiteral("status"));
    for (const QString &key : keysOf(QStringLiteral("failure."))) {
        status->setText(localized(key).arg(QStringLiteral("23:59:59")));
        QVERIFY2(fits(*status), qPrintable(key));
    }
    world.change([](AppSettings &settings) { settings.watchlistCoins.clear(); });
    QCoreApplication::processEvents();
    QCOMPARE(cutTexts(*world.delegate->popover()->window()), QStringList());
}

void TextsFitTest::updateWindow()
{
    QFETCH(QString, language);
    setCurrentLocalizationBundle(bundleNamed(language));
    for (int phase = 0; phase <= int(UpdatePhase::failed); ++phase) {
        UpdateState state{.phase = UpdatePhase(phase), .runningVersion = QStringLiteral("1.0")};
        state.item = AppcastItem{};
        if (state.phase == UpdatePhase::manualInstallation)
            state.packagePath = QStringLiteral("/home/user/Downloads/tickwise_amd64.deb");
        if (state.phase == UpdatePhase::failed)
            state.failure = UpdateFailureKind::noUpdateForSystem;
        UpdateWindow window;
        window.setContent(updateWindowContent(state));
        window.show();
        QCoreApplication::processEvents();
        QCOMPARE(cutTexts(window), QStringList());
    }
}

/// A label that is narrower than its text.
void TextsFitTest::theTestSeesACutText()
{
    QWidget window;
    auto *const label = new QLabel(QStringLiteral("A text that needs its width"), &window);
    label->resize(30, 20);
    auto *const picker = new QComboBox(&window);
    picker->addItem(label->text());
    picker->setGeometry(0, 30, 60, 25);
    window.show();
    QCOMPARE(cutTexts(window).size(), 2);
}

TICKWISE_WIDGET_TEST(TextsFitTest)
#include "TextsFitTest.moc"
