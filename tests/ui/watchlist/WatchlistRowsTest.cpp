#include "ui/watchlist/WatchlistRows.h"

#include "doubles/Catalogs.h"
#include "doubles/FakeMotion.h"
#include "doubles/Languages.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/Look.h"
#include "ui/watchlist/WatchlistAlertControls.h"
#include "ui/watchlist/WatchlistView.h"

#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QScrollBar>
#include <QSignalSpy>

using namespace tickwise;
using namespace tickwise::test;

namespace {

struct WatchlistRowsWorld
{
    explicit WatchlistRowsWorld(int watched)
        : coins(validCoins(watched))
    {
        AppSettings chosen = settings.settings();
        chosen.watchlistCoins.clear();
        for (const CoinMetadata &coin : coins)
            chosen.watchlistCoins.push_back({coin.id});
        settings.update(chosen);
        view.resize(look::scaled(700), look::scaled(480));
        view.show();
    }

    WatchlistRows &rows() { return view.rows(); }
    IconButton &handle(int row)
    {
        return *rows().rowAt(row)->findChild<IconButton *>(QStringLiteral("watchlist.reorder"));
    }
    QString idAt(std::size_t row) const { return settings.settings().watchlistCoins.at(row).coinId; }

    MemoryDefaults defaults;
    SettingsViewModel settings{UserDefaultsSettingsStore(defaults)};
    std::vector<CoinMetadata> coins;
    FixedCatalog catalog{coins};
    WatchlistViewModel viewModel{catalog, settings};
    FakeMotion motion;
    WatchlistView view{{settings, catalog, viewModel, nullptr, &motion}};
};

/// Moves the pressed pointer to that place of the screen.
void moveTo(QWidget &pressed, QPoint global)
{
    QTest::mouseMove(&pressed, pressed.mapFromGlobal(global));
}

} // namespace

class WatchlistRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { useLanguage(AppLanguage::en); }
    void aPointerAtRestDropsWhereTheListScrolledTo();
    void aRowHiddenDuringADragStartsTheNextOneAnew();
    void rowsFollowTheTextScale();

private:
    void checkLargeRows();
};

void WatchlistRowsTest::aPointerAtRestDropsWhereTheListScrolledTo()
{
    WatchlistRowsWorld world(12);
    QScrollBar &bar = *world.rows().verticalScrollBar();
    QVERIFY(bar.maximum() > 3 * 44);
    IconButton &handle = world.handle(0);
    const QPoint bottom = world.rows().viewport()->mapToGlobal(QPoint(20, world.rows().viewport()->height() - 2));
    QTest::mousePress(&handle, Qt::LeftButton);
    moveTo(handle, bottom);
    QVERIFY(world.view.session().insertionIndex() < 11);
    QTRY_COMPARE(bar.value(), bar.maximum());
    QTest::mouseRelease(&handle, Qt::LeftButton, {}, handle.mapFromGlobal(bottom));
    QCOMPARE(world.idAt(11), QStringLiteral("bitcoin"));
}

void WatchlistRowsTest::aRowHiddenDuringADragStartsTheNextOneAnew()
{
    WatchlistRowsWorld world(3);
    WatchlistRow &row = *world.rows().rowAt(0);
    IconButton &handle = world.handle(0);
    const QSignalSpy dragged(&row, &WatchlistRow::dragged);
    const auto pressAndMove = [&handle](int distance) {
        const QPoint start = handle.mapToGlobal(handle.rect().center());
        QTest::mousePress(&handle, Qt::LeftButton);
        moveTo(handle, start + QPoint(0, distance));
    };
    pressAndMove(20);
    QCOMPARE(dragged.size(), 1);
    row.hide();
    world.view.session().cancel();
    row.show();
    pressAndMove(1);
    QCOMPARE(dragged.size(), 1);
    QTest::mouseRelease(&handle, Qt::LeftButton);
    QCOMPARE(dragged.size(), 1);
}

/// A process has one text scale, so that the large rows are looked at in a process of their own.
void WatchlistRowsTest::rowsFollowTheTextScale()
{
    const QString dotsPerInch = QStringLiteral("192");
    if (qEnvironmentVariable("QT_FONT_DPI") == dotsPerInch)
        return checkLargeRows();
    QProcess large;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_FONT_DPI"), dotsPerInch);
    environment.insert(QStringLiteral("QT_ENABLE_HIGHDPI_SCALING"), QStringLiteral("0"));
    large.setProcessEnvironment(environment);
    large.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    large.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("WatchlistRowsTest"), QStringLiteral("rowsFollowTheTextScale")});
    QVERIFY(large.waitForFinished());
    QVERIFY2(large.exitCode() == 0, large.readAllStandardOutput().constData());
}

void WatchlistRowsTest::checkLargeRows()
{
    QCOMPARE(look::textScale(), 2.0);
    WatchlistRowsWorld world(12);
    QCOMPARE(world.rows().rowAt(1)->height(), 88);
    QCOMPARE(world.rows().rowAt(1)->y(), 88);
    QCOMPARE(world.rows().widget()->height(), 12 * 88);
    const auto *const alert = world.rows().rowAt(0)->findChild<WatchlistAlertControls *>();
    QCOMPARE(alert->findChild<QLabel *>()->width(), 64);
    QCOMPARE(alert->findChild<QLineEdit *>()->width(), 192);
    IconButton &handle = world.handle(0);
    const QPoint start = handle.mapToGlobal(handle.rect().center());
    QTest::mousePress(&handle, Qt::LeftButton);
    moveTo(handle, start + QPoint(0, 43));
    QCOMPARE(world.view.session().insertionIndex(), 0);
    moveTo(handle, start + QPoint(0, 45));
    QCOMPARE(world.view.session().insertionIndex(), 1);
    QCOMPARE(world.rows().rowAt(1)->y(), 0);
    QTest::mouseRelease(&handle, Qt::LeftButton, {}, handle.mapFromGlobal(start + QPoint(0, 45)));
    QCOMPARE(world.idAt(1), QStringLiteral("bitcoin"));
    QCOMPARE(world.rows().rowAt(1)->y(), 88);
}

TICKWISE_WIDGET_TEST(WatchlistRowsTest)
#include "WatchlistRowsTest.moc"
