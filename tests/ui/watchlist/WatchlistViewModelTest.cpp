#include "ui/watchlist/WatchlistViewModel.h"

#include "catalog/ShippedImages.h"
#include "doubles/Catalogs.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "ui/watchlist/WatchlistReorderSession.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString bitcoinId = QStringLiteral("bitcoin");
const QString ethereumId = QStringLiteral("ethereum");

QStringList symbols(const std::vector<CoinMetadata> &coins)
{
    QStringList symbols;
    for (const CoinMetadata &coin : coins)
        symbols.append(coin.symbol);
    return symbols;
}

} // namespace

class WatchlistViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shippedRecommendationsAreCoins();
    void unreadableRecommendationsAreNone_data();
    void unreadableRecommendationsAreNone();
    void recommendsCoinsOfTheWatchlistToo();
    void searchTextIsKeptAsTyped();
    void showsTheSearchedCoins();
    void followsTheCatalog();
    void toggleSavesTheWatchlist();
    void toggleEndsADragWithoutItsOrder();

private:
    MemoryDefaults m_storage;
    SettingsViewModel m_settings{UserDefaultsSettingsStore(m_storage)};
    QTemporaryDir m_directory;
};

void WatchlistViewModelTest::shippedRecommendationsAreCoins()
{
    CoinCatalog catalog(QStringLiteral(":/coins.json"), shippedImageExists);
    const WatchlistViewModel model(catalog, m_settings);
    QVERIFY(!model.recommendedSymbols().isEmpty());
    QCOMPARE(symbols(model.recommendedCoins()), model.recommendedSymbols());
}

void WatchlistViewModelTest::unreadableRecommendationsAreNone_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << QStringLiteral(":/nothing.json");
    QTest::newRow("folder") << QStringLiteral(":/logos");
    QTest::newRow("no array of texts") << QStringLiteral(":/coins.json");
}

void WatchlistViewModelTest::unreadableRecommendationsAreNone()
{
    QFETCH(QString, path);
    FixedCatalog catalog(validCoins());
    const WatchlistViewModel model(catalog, m_settings, path);
    QCOMPARE(model.recommendedSymbols(), QStringList());
    QVERIFY(model.recommendedCoins().empty());
    QCOMPARE(model.visibleCoins().size(), std::size_t(200));
}

void WatchlistViewModelTest::recommendsCoinsOfTheWatchlistToo()
{
    const QString path = m_directory.filePath(QStringLiteral("recommended.json"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"([" c7 ","unknown","BTC"])");
    file.close();
    FixedCatalog catalog(validCoins());
    const WatchlistViewModel model(catalog, m_settings, path);
    QCOMPARE(model.recommendedSymbols(),
             (QStringList{QStringLiteral("C7"), QStringLiteral("UNKNOWN"), QStringLiteral("BTC")}));
    QCOMPARE(symbols(model.recommendedCoins()), (QStringList{QStringLiteral("C7"), QStringLiteral("BTC")}));
    QVERIFY(model.isAdded(bitcoinId));
    QVERIFY(!model.isAdded(QStringLiteral("coin-7")));
}

void WatchlistViewModelTest::searchTextIsKeptAsTyped()
{
    FixedCatalog catalog(validCoins());
    WatchlistViewModel model(catalog, m_settings);
    QCOMPARE(model.searchText(), QString());
    QSignalSpy changed(&model, &WatchlistViewModel::searchTextChanged);
    model.setSearchText(QStringLiteral("  BtC "));
    QCOMPARE(model.searchText(), QStringLiteral("  BtC "));
    QCOMPARE(changed.count(), 1);
    model.setSearchText(QStringLiteral("  BtC "));
    QCOMPARE(changed.count(), 1);
}

void WatchlistViewModelTest::showsTheSearchedCoins()
{
    FixedCatalog catalog(validCoins());
    WatchlistViewModel model(catalog, m_settings);
    QCOMPARE(model.visibleCoins(), catalog.coins());
    model.setSearchText(QStringLiteral(" c19"));
    QCOMPARE(model.visibleCoins().size(), std::size_t(11));
    QCOMPARE(model.visibleCoins(), model.searchResults(QStringLiteral("C19")));
    model.setSearchText(QStringLiteral("\n"));
    QVERIFY(model.visibleCoins().empty());
    model.setSearchText(QStringLiteral("  "));
    QCOMPARE(model.visibleCoins(), catalog.coins());
    QVERIFY(model.searchResults(model.searchText()).empty());
}

void WatchlistViewModelTest::followsTheCatalog()
{
    FixedCatalog catalog({});
    WatchlistViewModel model(catalog, m_settings);
    QVERIFY(model.visibleCoins().empty());
    QVERIFY(model.recommendedCoins().empty());
    QSignalSpy changed(&model, &WatchlistViewModel::coinsChanged);
    catalog.publish(validCoins(), noImages);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(model.visibleCoins(), catalog.coins());
    QCOMPARE(model.recommendedCoins().front().id, bitcoinId);
}

void WatchlistViewModelTest::toggleSavesTheWatchlist()
{
    FixedCatalog catalog(validCoins());
    WatchlistViewModel model(catalog, m_settings);
    const AppSettings before = m_settings.settings();
    QSignalSpy changed(&m_settings, &SettingsViewModel::settingsChanged);
    const int writes = m_storage.writes;
    model.toggle(QStringLiteral("coin-7"), nullptr);
    QVERIFY(model.isAdded(QStringLiteral("coin-7")));
    QCOMPARE(m_settings.settings().watchlistCoins.back().coinId, QStringLiteral("coin-7"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(m_storage.writes, writes + 1);
    model.toggle(QStringLiteral("coin-7"), nullptr);
    QCOMPARE(m_settings.settings(), before);
}

void WatchlistViewModelTest::toggleEndsADragWithoutItsOrder()
{
    FixedCatalog catalog(validCoins());
    WatchlistViewModel model(catalog, m_settings);
    WatchlistReorderSession session;
    session.setReduceMotion(true);
    session.setViewportHeight(1000);
    int commits = 0;
    const QStringList order{bitcoinId, ethereumId};
    session.begin(bitcoinId, 0, 0, order, [&](const QStringList &) { ++commits; });
    session.drag(1000);
    QCOMPARE(session.draggedID(), std::optional(bitcoinId));
    std::optional<QString> draggedWhenPublished = bitcoinId;
    connect(&m_settings, &SettingsViewModel::settingsChanged, &session,
            [&] { draggedWhenPublished = session.draggedID(); });
    model.toggle(ethereumId, &session);
    QCOMPARE(draggedWhenPublished, std::nullopt);
    session.end();
    QCOMPARE(commits, 0);
    QVERIFY(!model.isAdded(ethereumId));
    QVERIFY(model.isAdded(bitcoinId));
}

TICKWISE_TEST(WatchlistViewModelTest)
#include "WatchlistViewModelTest.moc"
