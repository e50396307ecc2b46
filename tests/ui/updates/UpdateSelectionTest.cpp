#include "ui/updates/UpdateSelection.h"
#include "doubles/TestProgram.h"

#include "doubles/TestClock.h"

using namespace tickwise;
using namespace tickwise::test;

Q_DECLARE_METATYPE(tickwise::UpdateOutcome)

namespace {

/// Items written as "version" or "version@minimum system", with blanks between them.
std::vector<AppcastItem> itemsOf(const QString &text)
{
    std::vector<AppcastItem> items;
    for (const QString &word : text.split(u' ', Qt::SkipEmptyParts)) {
        AppcastItem item;
        item.version = word.section(u'@', 0, 0);
        item.minimumSystemVersion = word.section(u'@', 1);
        items.push_back(item);
    }
    return items;
}

} // namespace

class UpdateSelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void selects_data();
    void selects();
    void newest();
    void rollBack_data();
    void rollBack();
};

void UpdateSelectionTest::selects_data()
{
    QTest::addColumn<QString>("items");
    QTest::addColumn<QString>("running");
    QTest::addColumn<QString>("system");
    QTest::addColumn<QString>("skipped");
    QTest::addColumn<bool>("userInitiated");
    QTest::addColumn<UpdateOutcome>("outcome");
    QTest::addColumn<QString>("version");
    const auto row = [](const char *name, const char *items, const char *system, const char *skipped,
                        bool userInitiated, UpdateOutcome outcome, const char *version = "") {
        QTest::newRow(name) << QString::fromLatin1(items) << QStringLiteral("1.0") << QString::fromLatin1(system)
                            << QString::fromLatin1(skipped) << userInitiated << outcome << QString::fromLatin1(version);
    };
    using enum UpdateOutcome;
    row("empty feed", "", "12", "", false, upToDate);
    row("newer", "1.1", "12", "", false, found, "1.1");
    row("equal", "1.0", "12", "", true, upToDate);
    row("equal, written longer", "1.0.0", "12", "", true, upToDate);
    row("downgrade", "0.9", "12", "", true, upToDate);
    row("its own beta", "1.0b3", "12", "", true, upToDate);
    row("newest of several, in any order", "1.2 1.10 1.9 0.5", "12", "", false, found, "1.10");
    row("system too old", "1.1@13", "12", "", true, noUpdateForSystem);
    row("system just right", "1.1@12", "12", "", false, found, "1.1");
    row("system newer", "1.1@12.4", "22.04", "", false, found, "1.1");
    row("numbers, not text", "1.1@9", "12", "", false, found, "1.1");
    row("newest for this system", "1.3@13 1.2@12 1.1", "12", "", false, found, "1.2");
    row("old ones for newer systems do not count", "0.9@13", "12", "", true, upToDate);
    row("no system version", "1.1@13", "", "", false, found, "1.1");
    row("unknown system version", "1.1@13", "unknown", "", false, found, "1.1");
    row("skipped", "1.1", "12", "1.1", false, skipped);
    row("skipped, but asked for", "1.1", "12", "1.1", true, found, "1.1");
    row("newer than the skipped one", "1.2 1.1", "12", "1.1", false, found, "1.2");
    row("older than the skipped one", "1.1", "12", "1.2", false, skipped);
    row("skipped one no longer newer", "1.0", "12", "1.0", false, upToDate);
}

void UpdateSelectionTest::selects()
{
    QFETCH(QString, items);
    QFETCH(QString, running);
    QFETCH(QString, system);
    QFETCH(QString, skipped);
    QFETCH(bool, userInitiated);
    QFETCH(UpdateOutcome, outcome);
    QFETCH(QString, version);
    const UpdateSelection selection = selectUpdate(itemsOf(items), {running, system, skipped, userInitiated});
    QCOMPARE(selection.outcome, outcome);
    QCOMPARE(selection.item.has_value(), outcome == UpdateOutcome::found);
    QCOMPARE(selection.item ? selection.item->version : QString(), version);
}

void UpdateSelectionTest::newest()
{
    QCOMPARE(newestVersion({}), QString());
    QCOMPARE(newestVersion(itemsOf(QStringLiteral("1.9 1.10@99 1.2"))), QStringLiteral("1.10"));
}

void UpdateSelectionTest::rollBack_data()
{
    QTest::addColumn<QString>("newest");
    QTest::addColumn<QString>("seen");
    QTest::addColumn<double>("daysAgo");
    QTest::addColumn<bool>("expected");
    const auto row = [](const char *name, const char *newest, const char *seen, double daysAgo, bool expected) {
        QTest::newRow(name) << QString::fromLatin1(newest) << QString::fromLatin1(seen) << daysAgo << expected;
    };
    row("nothing seen", "1.0", "", 1, false);
    row("newer", "1.2", "1.1", 1, false);
    row("same", "1.1", "1.1", 1, false);
    row("older", "1.0", "1.1", 1, true);
    row("emptied feed", "", "1.1", 1, true);
    row("older, just within two weeks", "1.0", "1.1", 13.99, true);
    row("older, two weeks later", "1.0", "1.1", 14, false);
    row("seen in the future", "1.0", "1.1", -1, false);
}

void UpdateSelectionTest::rollBack()
{
    QFETCH(QString, newest);
    QFETCH(QString, seen);
    QFETCH(double, daysAgo);
    QFETCH(bool, expected);
    const TimePoint now = TestClock().now();
    std::optional<SeenVersion> memory;
    if (!seen.isEmpty())
        memory = SeenVersion{seen, now - secondsDuration(daysAgo * 86400)};
    QCOMPARE(isRolledBack(newest, memory, now), expected);
}

TICKWISE_TEST(UpdateSelectionTest)
#include "UpdateSelectionTest.moc"
