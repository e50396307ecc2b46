// The desktop overlay against an empty translucent window of the same size that is repainted as often: one update of
// all prices, with 2, 8 and 25 coins, on its backdrop and with halos. `cpu_time` of the overlay over that of the window
// is the figure.

#include "overlay/DesktopOverlayPlacement.h"
#include "overlay/DesktopOverlayWindow.h"

#include <QApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

using namespace tickwise;

namespace {

/// Until the window has painted.
void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

WidgetEntryContent contentOf(int coins, double price)
{
    static const QStringList shipped{QStringLiteral("bitcoin"), QStringLiteral("ethereum"), QStringLiteral("solana"),
                                     QStringLiteral("ripple"),  QStringLiteral("cardano"),  QStringLiteral("dogecoin")};
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
        row.price = price * (i + 1);
        row.change24hPercent = i % 2 == 0 ? price / 100 : -price / 100;
        content.rows.push_back(row);
    }
    return content;
}

/// The floor.
class EmptyWindow : public QWidget
{
public:
    explicit EmptyWindow(int coins)
    {
        setAttribute(Qt::WA_TranslucentBackground);
        resize(desktopOverlaySize(DesktopOverlayTextSize::normal, coins).toSize());
        show();
        settle();
    }
};

void repaintEmpty(benchmark::State &state)
{
    EmptyWindow window(int(state.range(0)));
    for (auto _ : state) {
        window.update();
        settle();
    }
}

void updatePrices(benchmark::State &state, double opacity)
{
    const int coins = int(state.range(0));
    DesktopOverlayModel model;
    model.setBackgroundOpacity(opacity);
    model.setContent(contentOf(coins, 100));
    DesktopOverlayWindow window(new DesktopOverlayView(model, {}));
    window.setAttribute(Qt::WA_TranslucentBackground);
    window.resize(desktopOverlaySize(DesktopOverlayTextSize::normal, coins).toSize());
    window.show();
    settle();
    double price = 100;
    for (auto _ : state) {
        model.setContent(contentOf(coins, price += 1.25));
        settle();
    }
}

void updateOnBackdrop(benchmark::State &state)
{
    updatePrices(state, 1);
}

void updateWithHalos(benchmark::State &state)
{
    updatePrices(state, 0.1);
}

BENCHMARK(repaintEmpty)->Arg(2)->Arg(8)->Arg(25)->Unit(benchmark::kMicrosecond);
BENCHMARK(updateOnBackdrop)->Arg(2)->Arg(8)->Arg(25)->Unit(benchmark::kMicrosecond);
BENCHMARK(updateWithHalos)->Arg(2)->Arg(8)->Arg(25)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
