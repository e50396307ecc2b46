// The popover against a bare list window with the same rows of text: opening it for the first time and again, one
// scroll step, one update of all prices, with 8 and with 1000 coins. `real_time` of the popover over that of the list
// is the figure.

#include "doubles/CoinListWorld.h"
#include "ui/popover/CoinPopoverView.h"
#include "ui/popover/PopoverWindow.h"
#include "ui/updates/UpdateController.h"

#include <QApplication>
#include <QListView>
#include <QScrollBar>
#include <QStringListModel>

#include <benchmark/benchmark.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr QSize windowSize(320, 506);

/// Until the window has painted.
void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

QStringList rowTexts(const CoinListViewModel &coinList)
{
    QStringList texts;
    for (const Coin &coin : coinList.coins())
        texts.append(QStringLiteral("%1 %2\n+1.00%").arg(coin.symbol).arg(coin.currentPrice.value_or(0), 0, 'f', 2));
    return texts;
}

/// The bare list.
class ListSubject
{
public:
    explicit ListSubject(CoinListWorld &world)
        : m_world(world)
    {
        m_list.setUniformItemSizes(true);
        m_list.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        m_model.setStringList(rowTexts(*world.coinList));
        m_list.setModel(&m_model);
        m_list.setAttribute(Qt::WA_TranslucentBackground); // the same kind of backing store
        m_list.resize(windowSize);
    }

    void open() { m_list.show(); }
    void close() { m_list.hide(); }
    void update() { m_model.setStringList(rowTexts(*m_world.coinList)); }
    QListView &list() { return m_list; }

private:
    CoinListWorld &m_world;
    QStringListModel m_model;
    QListView m_list;
};

class PopoverSubject
{
public:
    explicit PopoverSubject(CoinListWorld &world)
        : m_view(new CoinPopoverView(
              {*world.coinList, world.settings, m_updates, nullptr, [](SettingsTab) {}, [] {}, world.clock.clock()}))
        , m_window(m_view)
    {
        m_window.setAttribute(Qt::WA_TranslucentBackground);
    }

    void open()
    {
        const int margin = PopoverWindow::shadowMargin();
        if (std::exchange(m_isOpened, true))
            m_view->refresh();
        m_view->rewind();
        m_window.resize(windowSize + QSize(2 * margin, 2 * margin));
        m_window.place({QRect(QPoint(margin, margin), windowSize), true, true});
        m_window.show();
    }
    void close() { m_window.hide(); }
    void update() {} // it follows the coin list
    QListView &list() { return m_view->list(); }

private:
    UpdateController m_updates;
    CoinPopoverView *m_view; ///< the window's
    PopoverWindow m_window;
    bool m_isOpened = false;
};

template<class Subject>
void openCold(benchmark::State &state)
{
    CoinListWorld world(int(state.range(0)));
    world.price(100);
    for (auto _ : state) {
        Subject subject(world);
        subject.open();
        settle();
    }
}

template<class Subject>
void openWarm(benchmark::State &state)
{
    CoinListWorld world(int(state.range(0)));
    world.price(100);
    Subject subject(world);
    subject.open();
    settle();
    for (auto _ : state) {
        subject.close();
        settle();
        subject.open();
        settle();
    }
}

template<class Subject>
void scrollStep(benchmark::State &state)
{
    CoinListWorld world(int(state.range(0)));
    world.price(100);
    Subject subject(world);
    subject.open();
    settle();
    QScrollBar &bar = *subject.list().verticalScrollBar();
    int step = 20;
    for (auto _ : state) {
        if (bar.value() + step > bar.maximum() || bar.value() + step < 0)
            step = -step;
        bar.setValue(bar.value() + step);
        settle();
    }
}

/// The merging of the prices is in both.
template<class Subject>
void updatePrices(benchmark::State &state)
{
    CoinListWorld world(int(state.range(0)));
    Subject subject(world);
    subject.open();
    settle();
    double price = 100;
    for (auto _ : state) {
        world.price(price += 0.25);
        subject.update();
        settle();
    }
}

BENCHMARK(openCold<ListSubject>)->Arg(8)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(openCold<PopoverSubject>)->Arg(8)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(openWarm<ListSubject>)->Arg(8)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(openWarm<PopoverSubject>)->Arg(8)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(scrollStep<ListSubject>)->Arg(50)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(scrollStep<PopoverSubject>)->Arg(50)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(updatePrices<ListSubject>)->Arg(8)->Arg(1000)->Unit(benchmark::kMicrosecond);
BENCHMARK(updatePrices<PopoverSubject>)->Arg(8)->Arg(1000)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
