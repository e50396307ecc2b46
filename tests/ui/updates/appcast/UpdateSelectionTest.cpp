#include "ui/updates/appcast/UpdateSelection.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

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
    row("minimum that is no version", "1.1@Bookworm", "12", "", true, noUpdateForSystem);
    row("minimum that is no version, unknown system", "1.1@new", "", "", true, noUpdateForSystem);
    row("other items count on", "1.2@new 1.1", "12", "", false, found, "1.1");
    row("skipped", "1.1", "12", "1.1", false, upToDate);
    row("skipped, but asked for", "1.1", "12", "1.1", true, found, "1.1");
    row("newer than the skipped one", "1.2 1.1", "12", "1.1", false, found, "1.2");
    row("older than the skipped one", "1.1", "12", "1.2", false, upToDate);
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

TICKWISE_TEST(UpdateSelectionTest)
#include "UpdateSelectionTest.moc"
