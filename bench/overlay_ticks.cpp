// The desktop overlay, or its floor: an empty translucent window of the same size that is repainted as often. Runs ten
// minutes of ticks, as many as the application polls in that time and faster than it does, and prints the CPU seconds
// of the process and the number of ticks. At each tick every price moves, the event loop wakes, and what was painted
// goes to the X server.
//
// Usage: overlay_ticks empty|backdrop|halos COINS [MILLISECONDS-BETWEEN-TICKS]

#include "overlay/DesktopOverlayPlacement.h"
#include "overlay/DesktopOverlayWindow.h"

#include <QApplication>
#include <QTimer>

#include <cstdio>
#include <ctime>
#include <random>

using namespace tickwise;

namespace {

constexpr double tenMinutes = 600; // seconds
constexpr std::chrono::milliseconds usualInterval{10};
constexpr double haloOpacity = 0.1;
constexpr double largestMove = 0.002; // of a price between two polls

int tickCount()
{
    return int(tenMinutes / AppSettings{}.pollingInterval);
}

WidgetEntryContent firstContent(int coins)
{
    static const QStringList shipped{QStringLiteral("bitcoin"), QStringLiteral("ethereum"), QStringLiteral("solana"),
                                     QStringLiteral("ripple"),  QStringLiteral("cardano"),  QStringLiteral("dogecoin")};
    static const std::vector<double> prices{67432.1, 3456.78, 145.2, 0.5123, 0.3891, 0.1234};
    WidgetEntryContent content;
    content.language = AppLanguage::en;
    content.updatedAt = systemClock();
    content.upColorHex = greenPriceHex;
    content.downColorHex = redPriceHex;
    for (int i = 0; i < coins; ++i) {
        WidgetRow row{.id = QStringLiteral("coin-%1").arg(i), .symbol = QStringLiteral("C%1").arg(i)};
        row.name = QStringLiteral("Coin number %1").arg(i);
        row.logoAssetName = QStringLiteral("coin-") + shipped[i % shipped.size()];
        row.hasMarket = true;
        row.price = prices[std::size_t(i) % prices.size()];
        row.change24hPercent = i % 2 == 0 ? 1.5 : -1.5;
        content.rows.push_back(row);
    }
    return content;
}

/// The content of each tick, the first one before all of them.
std::vector<WidgetEntryContent> contents(int coins)
{
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same prices in each run
    std::uniform_real_distribution<double> move(-largestMove, largestMove);
    const auto interval = std::chrono::duration<double>(AppSettings{}.pollingInterval);
    std::vector<WidgetEntryContent> all{firstContent(coins)};
    while (int(all.size()) <= tickCount()) {
        WidgetEntryContent next = all.back();
        *next.updatedAt += std::chrono::duration_cast<TimePoint::duration>(interval);
        for (WidgetRow &row : next.rows) {
            const double moved = move(random);
            *row.price *= 1 + moved;
            *row.change24hPercent += 100 * moved;
        }
        all.push_back(std::move(next));
    }
    return all;
}

double cpuSeconds()
{
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// Calls back at each tick, then ends the program and prints what it took.
class Ticks
{
public:
    explicit Ticks(std::function<void(int)> tick)
        : m_tick(std::move(tick))
    {
        const int asked = QCoreApplication::arguments().value(3).toInt();
        const std::chrono::milliseconds interval = asked > 0 ? std::chrono::milliseconds(asked) : usualInterval;
        QObject::connect(&m_timer, &QTimer::timeout, [this] { next(); });
        QObject::connect(&m_start, &QTimer::timeout, [this, interval] {
            m_before = cpuSeconds();
            m_timer.start(interval);
        });
        m_start.setSingleShot(true);
        m_start.start(std::chrono::milliseconds(500));
    }

private:
    void next()
    {
        if (m_done < tickCount())
            return m_tick(++m_done);
        std::printf("%.6f %d\n", cpuSeconds() - m_before, tickCount());
        QCoreApplication::quit();
    }

    int m_done = 0;
    std::function<void(int)> m_tick;
    QTimer m_start; ///< until the window has painted itself
    QTimer m_timer;
    double m_before = 0;
};

void show(QWidget &window, int coins)
{
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.resize(desktopOverlaySize(DesktopOverlayTextSize::normal, coins).toSize());
    window.show();
}

int runEmpty(int coins)
{
    QWidget window;
    show(window, coins);
    const Ticks run([&](int) { window.update(); });
    return QCoreApplication::exec();
}

int runOverlay(double opacity, int coins)
{
    const std::vector<WidgetEntryContent> all = contents(coins);
    DesktopOverlayModel model;
    model.setBackgroundOpacity(opacity);
    model.setContent(all.front());
    DesktopOverlayWindow window(new DesktopOverlayView(model, {}));
    show(window, coins);
    const Ticks run([&](int tick) { model.setContent(all[std::size_t(tick)]); });
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString subject = arguments.value(1);
    const int coins = arguments.value(2).toInt();
    if (subject == QStringLiteral("empty"))
        return runEmpty(coins);
    return runOverlay(subject == QStringLiteral("halos") ? haloOpacity : 1, coins);
}
