#include "app/StatusMenu.h"

#include "doubles/Catalogs.h"
#include "doubles/TestProgram.h"
#include "support/Localization.h"
#include "support/drawing/TintedSvg.h"

using namespace tickwise;

namespace {

AppSettings watching(const QStringList &ids, const QString &displayed)
{
    AppSettings settings;
    settings.watchlistCoins.clear();
    for (const QString &id : ids)
        settings.watchlistCoins.push_back({id});
    settings.displayedCoinId = displayed;
    return settings;
}

StatusMenuActions allActions(QStringList &calls)
{
    const auto note = [&calls](const char *name) {
        return [&calls, name] { calls.append(QString::fromLatin1(name)); };
    };
    return {.changeCoin = [&calls](const QString &id) { calls.append(id); },
            .openSettings = note("settings"),
            .openAbout = note("about"),
            .checkForUpdates = note("updates"),
            .quit = note("quit")};
}

Menu menuWith(const StatusMenuActions &actions, bool canCheckForUpdates = true)
{
    static const test::FixedCatalog catalog(test::validCoins());
    return statusMenu(watching({QStringLiteral("ethereum"), QStringLiteral("unheard-of"), QStringLiteral("bitcoin")},
                               QStringLiteral("bitcoin")),
                      catalog, canCheckForUpdates, actions);
}

QStringList textsOf(const Menu &menu)
{
    QStringList textsOf;
    for (const MenuEntry &entry : menu)
        textsOf.append(entry.kind == MenuEntry::Kind::separator ? QStringLiteral("-") : entry.text);
    return textsOf;
}

QStringList keysToTexts(const QStringList &keys)
{
    QStringList textsOf;
    for (const QString &key : keys)
        textsOf.append(key == QStringLiteral("-") ? key : localized(key));
    return textsOf;
}

} // namespace

class StatusMenuTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesInTheirOrder();
    void entriesDoWhatTheySay();
    void coinsInSettingsOrder();
    void updatesAreOffWhileNoCheckIsPossible();
    void everyWindowEntryHasAnIcon();
};

void StatusMenuTest::entriesInTheirOrder()
{
    QStringList calls;
    QCOMPARE(textsOf(menuWith(allActions(calls))),
             keysToTexts({QStringLiteral("menu.change"), QStringLiteral("-"), QStringLiteral("menu.setting"),
                          QStringLiteral("menu.about"), QStringLiteral("menu.checkForUpdates"), QStringLiteral("-"),
                          QStringLiteral("menu.quit")}));
}

void StatusMenuTest::entriesDoWhatTheySay()
{
    QStringList calls;
    const Menu menu = menuWith(allActions(calls));
    menu[0].children[1].activate();
    for (const std::size_t entry : {2U, 3U, 4U, 6U})
        menu[entry].activate();
    QCOMPARE(calls, (QStringList{QStringLiteral("bitcoin"), QStringLiteral("settings"), QStringLiteral("about"),
                                 QStringLiteral("updates"), QStringLiteral("quit")}));
}

void StatusMenuTest::coinsInSettingsOrder()
{
    QStringList calls;
    const MenuEntry change = menuWith(allActions(calls)).front();
    QVERIFY(change.kind == MenuEntry::Kind::submenu);
    QCOMPARE(textsOf(change.children), (QStringList{QStringLiteral("ETH - ETH"), QStringLiteral("BTC - BTC")}));
    QCOMPARE(change.children[0].checked, std::optional(false));
    QCOMPARE(change.children[1].checked, std::optional(true));
}

void StatusMenuTest::updatesAreOffWhileNoCheckIsPossible()
{
    QStringList calls;
    QVERIFY(menuWith(allActions(calls), true)[4].enabled);
    const Menu menu = menuWith(allActions(calls), false);
    QVERIFY(!menu[4].enabled);
    for (const std::size_t other : {0U, 2U, 3U, 6U})
        QVERIFY(menu[other].enabled);
}

void StatusMenuTest::everyWindowEntryHasAnIcon()
{
    QStringList calls;
    const Menu menu = menuWith(allActions(calls));
    QStringList names;
    for (const std::size_t entry : {2U, 3U, 4U, 6U}) {
        QVERIFY2(!tintedSymbol(menu[entry].iconName, 16, Qt::black).isNull(), qPrintable(menu[entry].iconName));
        names.append(menu[entry].iconName);
    }
    QCOMPARE(names.removeDuplicates(), 0);
}

TICKWISE_TEST(StatusMenuTest)
#include "StatusMenuTest.moc"
