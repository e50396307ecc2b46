#include "pipeline/AlertRule.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

/// The prices at which an alert fires, feeding each decision's baseline to the next update.
QList<double> firing(const WatchlistCoin &alert, const QList<double> &prices, double rate = 1.0,
                     std::optional<double> reference = std::nullopt)
{
    QList<double> fired;
    for (const double price : prices) {
        const AlertDecision decision = evaluateAlert(price, reference, &alert, rate);
        if (decision.fires)
            fired.append(price);
        reference = decision.referencePrice;
    }
    return fired;
}

WatchlistCoin alert(CoinAlertKind kind, double threshold)
{
    return {QStringLiteral("bitcoin"), kind, threshold};
}

} // namespace

class AlertRuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sequences_data();
    void sequences();
    void aboveFromABaselineBelow();
    void belowIsTheMirror();
    void changeKeepsItsBaselineUntilItFires();
    void changeOf102ThenBack();
    void zeroBaselineNeverDivides();
    void thresholdZeroFiresOnEveryUpdate();
    void rateScalesTheLevel();
    void withoutARateTheDollarsCount();
    void firstPriceNeverFiresALevel();
    void withoutAnAlertOnlyAnAbsentBaselineIsSet();
    void rearming_data();
    void rearming();
};

void AlertRuleTest::sequences_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("threshold");
    QTest::addColumn<QList<double>>("prices");
    QTest::addColumn<QList<double>>("fired");
    const auto row = [](const char *name, CoinAlertKind kind, double threshold, const QList<double> &prices,
                        const QList<double> &fired) {
        QTest::newRow(name) << static_cast<int>(kind) << threshold << prices << fired;
    };
    row("above fires at each crossing", CoinAlertKind::above, 100, {90, 95, 101, 102, 99, 100}, {101, 100});
    row("above reached exactly", CoinAlertKind::above, 100, {99, 100}, {100});
    row("above from the level itself", CoinAlertKind::above, 100, {100, 101}, {});
    row("below fires at each crossing", CoinAlertKind::below, 100, {110, 105, 99, 98, 101, 100}, {99, 100});
    row("below reached exactly", CoinAlertKind::below, 100, {101, 100}, {100});
    row("below from the level itself", CoinAlertKind::below, 100, {100, 99}, {});
    row("change up and down", CoinAlertKind::change, 2, {100, 101.9, 102, 99.45}, {102, 99.45});
    row("change of exactly minus two", CoinAlertKind::change, 2, {100, 101.9, 98, 98.5}, {98});
    row("change drifts from the baseline, not step by step", CoinAlertKind::change, 2, {100, 101, 101.5, 102.1},
        {102.1});
    row("not set", CoinAlertKind::notSet, 0, {1, 1000, 1}, {});
}

void AlertRuleTest::sequences()
{
    QFETCH(int, kind);
    QFETCH(double, threshold);
    QFETCH(QList<double>, prices);
    QTEST(firing(alert(static_cast<CoinAlertKind>(kind), threshold), prices), "fired");
}

void AlertRuleTest::aboveFromABaselineBelow()
{
    const WatchlistCoin above = alert(CoinAlertKind::above, 100);
    QCOMPARE(evaluateAlert(99, 95, &above, 1).fires, false);
    const AlertDecision crossed = evaluateAlert(101, 95, &above, 1);
    QVERIFY(crossed.fires);
    QCOMPARE(crossed.referencePrice, std::optional(101.0));
    QCOMPARE(evaluateAlert(102, 101, &above, 1), (AlertDecision{false, (102.0 - 101) / 101 * 100, 101.0}));
    const AlertDecision back = evaluateAlert(97, 101, &above, 1);
    QVERIFY(!back.fires);
    QCOMPARE(back.referencePrice, std::optional(97.0));
    QVERIFY(evaluateAlert(100, 97, &above, 1).fires);
}

void AlertRuleTest::belowIsTheMirror()
{
    const WatchlistCoin below = alert(CoinAlertKind::below, 100);
    QVERIFY(evaluateAlert(99, 105, &below, 1).fires);
    QVERIFY(!evaluateAlert(98, 99, &below, 1).fires);
    QCOMPARE(evaluateAlert(103, 99, &below, 1).referencePrice, std::optional(103.0));
}

void AlertRuleTest::changeKeepsItsBaselineUntilItFires()
{
    const WatchlistCoin change = alert(CoinAlertKind::change, 2);
    const AlertDecision held = evaluateAlert(101.9, 100, &change, 1);
    QVERIFY(!held.fires);
    QCOMPARE(held.referencePrice, std::optional(100.0));
    const AlertDecision fired = evaluateAlert(98, 100, &change, 1);
    QVERIFY(fired.fires);
    QCOMPARE(fired.changePercent, -2.0);
    QCOMPARE(fired.referencePrice, std::optional(98.0));
}

void AlertRuleTest::changeOf102ThenBack()
{
    const WatchlistCoin change = alert(CoinAlertKind::change, 2);
    QCOMPARE(evaluateAlert(102, 100, &change, 1).changePercent, 2.0);
    QCOMPARE(evaluateAlert(99.45, 102, &change, 1).changePercent, -2.5);
    QCOMPARE(evaluateAlert(0.75, 0.5, &change, 1), (AlertDecision{true, 50, 0.75}));
}

void AlertRuleTest::zeroBaselineNeverDivides()
{
    const WatchlistCoin change = alert(CoinAlertKind::change, 2);
    QCOMPARE(evaluateAlert(5, 0, &change, 1), (AlertDecision{false, 0, 0.0}));
    QCOMPARE(evaluateAlert(0, std::nullopt, &change, 1), (AlertDecision{false, 0, 0.0}));
}

void AlertRuleTest::thresholdZeroFiresOnEveryUpdate()
{
    QCOMPARE(firing(alert(CoinAlertKind::change, 0), {100, 100, 100}), (QList<double>{100, 100, 100}));
}

void AlertRuleTest::rateScalesTheLevel()
{
    QCOMPARE(firing(alert(CoinAlertKind::above, 100), {690, 710, 720}, 7.0), QList<double>{710});
    QCOMPARE(alertLevel(100, 7), 700.0);
    QCOMPARE(alertLevel(100, 0.5), 50.0);
    QCOMPARE(firing(alert(CoinAlertKind::below, 100), {60, 51, 50}, 0.5), QList<double>{50});
}

void AlertRuleTest::withoutARateTheDollarsCount()
{
    QCOMPARE(firing(alert(CoinAlertKind::below, 100), {110, 99}, 0), QList<double>{99});
    QCOMPARE(alertLevel(100, 0), 100.0);
    QCOMPARE(alertLevel(100, -1), 100.0);
}

void AlertRuleTest::firstPriceNeverFiresALevel()
{
    for (const CoinAlertKind kind : {CoinAlertKind::above, CoinAlertKind::below}) {
        const WatchlistCoin level = alert(kind, 100);
        for (const double price : {50.0, 100.0, 150.0})
            QCOMPARE(evaluateAlert(price, std::nullopt, &level, 1), (AlertDecision{false, 0, price}));
    }
}

void AlertRuleTest::withoutAnAlertOnlyAnAbsentBaselineIsSet()
{
    QCOMPARE(evaluateAlert(50, std::nullopt, nullptr, 1), (AlertDecision{false, 0, 50.0}));
    QCOMPARE(evaluateAlert(50, 40, nullptr, 1), (AlertDecision{false, 25, 40.0}));
}

void AlertRuleTest::rearming_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("price");
    QTest::addColumn<double>("reference");
    QTest::addColumn<double>("after");
    const auto row = [](const char *name, CoinAlertKind kind, double price, double reference, double after) {
        QTest::newRow(name) << static_cast<int>(kind) << price << reference << after;
    };
    row("above, below the level", CoinAlertKind::above, 90, 95, 90);
    row("above, beyond the level", CoinAlertKind::above, 130, 120, 120);
    row("above, at the level", CoinAlertKind::above, 100, 120, 120);
    row("below, at the level", CoinAlertKind::below, 100, 80, 80);
    row("below, above the level", CoinAlertKind::below, 120, 110, 120);
    row("below, beyond the level", CoinAlertKind::below, 70, 80, 80);
    row("change", CoinAlertKind::change, 101, 100, 100);
    row("not set", CoinAlertKind::notSet, 500, 100, 100);
}

void AlertRuleTest::rearming()
{
    QFETCH(int, kind);
    QFETCH(double, price);
    QFETCH(double, reference);
    QFETCH(double, after);
    const WatchlistCoin watched = alert(static_cast<CoinAlertKind>(kind), 100);
    const AlertDecision decision = evaluateAlert(price, reference, &watched, 1);
    QVERIFY(!decision.fires);
    QCOMPARE(decision.referencePrice, std::optional(after));
}

TICKWISE_TEST(AlertRuleTest)
#include "AlertRuleTest.moc"
