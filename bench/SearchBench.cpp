// A key press in the search over all coins: the search panel against a bare list window under a text field, whose rows
// are filtered with the same question. `real_time` of the panel over that of the list is the figure.

#include "doubles/Catalogs.h"
#include "doubles/MemoryDefaults.h"
#include "ui/watchlist/CoinToggleList.h"
#include "ui/watchlist/WatchlistAddCoinPanel.h"
#include "ui/watchlist/WatchlistReorderSession.h"
#include "ui/watchlist/WatchlistViewModel.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStringListModel>
#include <QVBoxLayout>

#include <benchmark/benchmark.h>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr QSize windowSize(468, 528);

/// Until the window has painted.
void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

void press(QWidget &field, int key, const QString &text)
{
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&field, &down);
}

/// The bare list under a field.
class ListSubject
{
public:
    explicit ListSubject(const FixedCatalog &catalog)
        : m_list(new QListView)
        , m_field(new QLineEdit)
    {
        for (const CoinMetadata &coin : catalog.coins())
            m_rows.append(coin.symbol + QLatin1Char('\n') + coin.name);
        m_model.setStringList(m_rows);
        m_list->setUniformItemSizes(true);
        m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        m_list->setModel(&m_model);
        auto *const column = new QVBoxLayout(&m_window);
        column->addWidget(m_field);
        column->addWidget(m_list);
        QObject::connect(m_field, &QLineEdit::textEdited, &m_window, [this](const QString &text) {
            m_model.setStringList(m_rows.filter(text, Qt::CaseInsensitive));
        });
        m_window.resize(windowSize);
        m_window.show();
        m_field->setFocus();
    }
    QLineEdit &field() { return *m_field; }

private:
    QStringList m_rows;
    QStringListModel m_model;
    QWidget m_window;
    QListView *m_list;
    QLineEdit *m_field;
};

class PanelSubject
{
public:
    explicit PanelSubject(FixedCatalog &catalog)
        : m_viewModel(catalog, m_settings)
    {
        m_window.resize(windowSize);
        m_window.show();
        auto *const panel = new WatchlistAddCoinPanel(m_viewModel, m_settings, m_session, nullptr, &m_window);
        panel->open();
        m_field = panel->findChild<QLineEdit *>();
    }
    QLineEdit &field() { return *m_field; }

private:
    MemoryDefaults m_defaults;
    SettingsViewModel m_settings{UserDefaultsSettingsStore(m_defaults)};
    WatchlistViewModel m_viewModel;
    WatchlistReorderSession m_session;
    QWidget m_window;
    QLineEdit *m_field = nullptr;
};

/// Types a symbol and takes it back, over and over.
template<class Subject>
void keyPress(benchmark::State &state)
{
    FixedCatalog catalog(validCoins(int(state.range(0))));
    Subject subject(catalog);
    settle();
    const QString word = QStringLiteral("c123");
    qsizetype typed = 0;
    bool isTyping = true;
    for (auto _ : state) {
        if (isTyping)
            press(subject.field(), Qt::Key_A, word.mid(typed++, 1));
        else
            press(subject.field(), Qt::Key_Backspace, QStringLiteral("\b")), --typed;
        if (typed == 0 || typed == word.size())
            isTyping = !isTyping;
        settle();
    }
}

BENCHMARK(keyPress<ListSubject>)->Arg(200)->Arg(1000)->Arg(5000)->Unit(benchmark::kMicrosecond);
BENCHMARK(keyPress<PanelSubject>)->Arg(200)->Arg(1000)->Arg(5000)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
