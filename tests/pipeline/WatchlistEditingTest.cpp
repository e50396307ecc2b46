#include "pipeline/WatchlistEditing.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

const QString bitcoinId = QStringLiteral("bitcoin");
const QString solana = QStringLiteral("solana");

/// Settings whose watchlist has these ids, each with an alert of its own.
AppSettings watching(const QStringList &ids, const QString &displayed)
{
    AppSettings settings;
    settings.watchlistCoins.clear();
    double threshold = 100;
    for (const QString &id : ids)
        settings.watchlistCoins.push_back({id, CoinAlertKind::above, threshold++});
    settings.displayedCoinId = displayed;
    return settings;
}

QStringList ids(const AppSettings &settings)
{
    QStringList ids;
    for (const WatchlistCoin &coin : settings.watchlistCoins)
        ids.append(coin.coinId);
    return ids;
}

} // namespace

class WatchlistEditingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ordersByIds();
    void addingAppendsWithTheUsualAlert();
    void addingAPresentCoinChangesNothing();
    void addingHasNoUpperBound();
    void removes_data();
    void removes();
    void removingKeepsTheOtherEntries();
    void toggles();
};

void WatchlistEditingTest::addingAppendsWithTheUsualAlert()
{
    const AppSettings before = watching({QStringLiteral("ethereum"), bitcoinId}, QStringLiteral("ethereum"));
    AppSettings expected = before;
    expected.watchlistCoins.push_back({solana, CoinAlertKind::change, 2.0});
    QCOMPARE(withCoinAdded(before, solana), expected);
}

void WatchlistEditingTest::addingAPresentCoinChangesNothing()
{
    const AppSettings before = watching({bitcoinId, solana}, bitcoinId);
    QCOMPARE(withCoinAdded(before, solana), before);
    QCOMPARE(withCoinAdded(before, bitcoinId), before);
}

void WatchlistEditingTest::addingHasNoUpperBound()
{
    AppSettings settings = watching({}, bitcoinId);
    for (int i = 0; i < 1000; ++i)
        settings = withCoinAdded(std::move(settings), QString::number(i));
    QCOMPARE(settings.watchlistCoins.size(), std::size_t(1000));
    QCOMPARE(settings.watchlistCoins.back().coinId, QStringLiteral("999"));
}

void WatchlistEditingTest::removes_data()
{
    QTest::addColumn<QStringList>("watchlist");
    QTest::addColumn<QString>("displayed");
    QTest::addColumn<QString>("removed");
    QTest::addColumn<QStringList>("left");
    QTest::addColumn<QString>("displayedAfter");
    const auto row = [](const char *name, const char *watchlist, const char *displayed, const char *removed,
                        const char *left, const char *displayedAfter) {
        const auto words = [](const char *text) { return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts); };
        QTest::newRow(name) << words(watchlist) << QString::fromLatin1(displayed) << QString::fromLatin1(removed)
                            << words(left) << QString::fromLatin1(displayedAfter);
    };
    row("another than the displayed", "a b c", "a", "b", "a c", "a");
    row("the displayed, first", "a b c", "a", "a", "b c", "b");
    row("the displayed, not first", "a b c", "b", "b", "a c", "a");
    row("the displayed, last of all", "a", "a", "a", "", "bitcoin");
    row("another, last of all", "a", "b", "a", "", "b");
    row("every entry of the id", "a b a", "b", "a", "b", "b");
    row("not in the list", "a b", "a", "c", "a b", "a");
    row("not in the list but displayed", "a b", "c", "c", "a b", "a");
    row("from an empty list, displayed", "", "c", "c", "", "bitcoin");
    row("from an empty list", "", "c", "d", "", "c");
}

void WatchlistEditingTest::removes()
{
    QFETCH(QStringList, watchlist);
    QFETCH(QString, displayed);
    QFETCH(QString, removed);
    const AppSettings after = withCoinRemoved(watching(watchlist, displayed), removed);
    QTEST(ids(after), "left");
    QTEST(after.displayedCoinId, "displayedAfter");
}

void WatchlistEditingTest::removingKeepsTheOtherEntries()
{
    const AppSettings before = watching({bitcoinId, solana, QStringLiteral("tron")}, QStringLiteral("tron"));
    AppSettings expected = before;
    expected.watchlistCoins.erase(expected.watchlistCoins.begin() + 1);
    QCOMPARE(withCoinRemoved(before, solana), expected);
}

void WatchlistEditingTest::toggles()
{
    const AppSettings before = watching({bitcoinId}, bitcoinId);
    QVERIFY(!isInWatchlist(before, solana));
    const AppSettings with = withCoinToggled(before, solana);
    QVERIFY(isInWatchlist(with, solana));
    QCOMPARE(with, withCoinAdded(before, solana));
    QCOMPARE(withCoinToggled(with, solana), before);
    QCOMPARE(withCoinToggled(with, bitcoinId).displayedCoinId, solana);
}

void WatchlistEditingTest::ordersByIds()
{
    AppSettings settings;
    settings.watchlistCoins = {{QStringLiteral("a"), CoinAlertKind::above, 5},
                               {QStringLiteral("b")},
                               {QStringLiteral("c")},
                               {QStringLiteral("d"), CoinAlertKind::notSet, 1}};
    const AppSettings ordered =
        withWatchlistOrder(settings, {QStringLiteral("c"), QStringLiteral("unknown"), QStringLiteral("a")});
    QCOMPARE(ordered.watchlistCoins.size(), size_t(4));
    QVERIFY(ordered.watchlistCoins[0] == settings.watchlistCoins[2]);
    QVERIFY(ordered.watchlistCoins[1] == settings.watchlistCoins[0]);
    QVERIFY(ordered.watchlistCoins[2] == settings.watchlistCoins[1]);
    QVERIFY(ordered.watchlistCoins[3] == settings.watchlistCoins[3]);
    QVERIFY(withWatchlistOrder(settings, {}) == settings);
}

TICKWISE_TEST(WatchlistEditingTest)
#include "WatchlistEditingTest.moc"
