// The settings window against a bare tab widget with as many controls of each kind: opening it for the first time in a
// process, opening it again (a new window each time, as in the application), and the memory that it takes.
// `real_time` of the window over that of the tabs is the figure of the benchmarks; the lines after them are the medians
// of processes that open one window.

#include "doubles/CoinListWorld.h"
#include "ui/settings/AboutView.h"
#include "ui/settings/GeneralSettingsView.h"
#include "ui/settings/SettingsWindow.h"
#include "ui/updates/UpdateController.h"
#include "ui/watchlist/WatchlistView.h"
#include "ui/watchlist/WatchlistViewModel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSlider>
#include <QTabWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr QSize windowSize(786, 500);
constexpr int watchedCoins = 5;
constexpr int rounds = 15;

/// Until the window has painted.
void settle()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

/// The settings window over five coins.
class WindowSubject
{
public:
    std::unique_ptr<QWidget> open()
    {
        auto *const general = new GeneralSettingsView(m_world.settings, m_world.catalog);
        auto *const watchlist = new WatchlistView({m_world.settings, m_world.catalog, m_watchlist, nullptr});
        auto *const about = new AboutView(m_world.settings, m_updates, m_information);
        auto window = std::make_unique<SettingsWindow>(m_world.settings, m_world.storage,
                                                       SettingsWindow::Pages{general, watchlist, about});
        window->show();
        settle();
        return window;
    }

private:
    CoinListWorld m_world{watchedCoins};
    WatchlistViewModel m_watchlist{m_world.catalog, m_world.settings};
    UpdateController m_updates;
    AboutInformation m_information{QStringLiteral("Tickwise"), QStringLiteral("1"), QStringLiteral("a@example.org"),
                                   QStringLiteral("https://example.org")};
};

enum Kind
{
    toggles,
    pickers,
    choices, ///< of all pickers together
    fields,
    sliders,
    labels,
    buttons,
    groups,
    kinds
};

/// How many controls of each kind a page has.
using PageCounts = std::array<int, kinds>;

PageCounts countsOf(const QWidget &page)
{
    PageCounts counts{};
    const QList<QComboBox *> found = page.findChildren<QComboBox *>();
    for (const QComboBox *const picker : found)
        counts[choices] += picker->count();
    counts[pickers] = int(found.size());
    counts[toggles] = int(page.findChildren<QCheckBox *>().size());
    counts[fields] = int(page.findChildren<QLineEdit *>().size());
    counts[sliders] = int(page.findChildren<QSlider *>().size());
    counts[labels] = int(page.findChildren<QLabel *>().size());
    counts[buttons] = int(page.findChildren<QAbstractButton *>().size()) - counts[toggles];
    counts[groups] = int(page.findChildren<QGroupBox *>().size());
    return counts;
}

/// The counts of the settings window's pages.
std::vector<PageCounts> countedPages()
{
    WindowSubject subject;
    const std::unique_ptr<QWidget> window = subject.open();
    const auto *const tabs = window->findChild<QTabWidget *>();
    std::vector<PageCounts> pages;
    pages.reserve(size_t(tabs->count()));
    for (int i = 0; i < tabs->count(); ++i)
        pages.push_back(countsOf(*tabs->widget(i)));
    return pages;
}

/// A bare tab widget with those controls.
class TabsSubject
{
public:
    explicit TabsSubject(std::vector<PageCounts> pages = countedPages())
        : m_pages(std::move(pages))
    {
    }

    std::unique_ptr<QWidget> open() const
    {
        auto tabs = std::make_unique<QTabWidget>();
        for (const PageCounts &counts : m_pages)
            tabs->addTab(page(counts), QStringLiteral("Page"));
        tabs->resize(windowSize);
        tabs->show();
        settle();
        return tabs;
    }

private:
    static QWidget *page(const PageCounts &counts)
    {
        auto *const content = new QWidget;
        auto *const column = new QVBoxLayout(content);
        QFormLayout *form = nullptr;
        for (int i = 0; i < std::max(counts[groups], 1); ++i) {
            auto *const group = new QGroupBox(QStringLiteral("Section"));
            form = new QFormLayout(group);
            column->addWidget(group);
        }
        addControls(*form, counts);
        auto *const area = new QScrollArea;
        area->setWidgetResizable(true);
        area->setWidget(content);
        return area;
    }

    static void addControls(QFormLayout &form, const PageCounts &counts)
    {
        for (int i = 0; i < counts[toggles]; ++i)
            form.addRow(new QCheckBox(QStringLiteral("A setting that is on or off")));
        for (int i = 0; i < counts[pickers]; ++i) {
            auto *const picker = new QComboBox;
            for (int choice = 0; choice < counts[choices] / counts[pickers]; ++choice)
                picker->addItem(QStringLiteral("Choice %1").arg(choice));
            form.addRow(picker);
        }
        for (int i = 0; i < counts[fields]; ++i)
            form.addRow(new QLineEdit(QStringLiteral("2")));
        for (int i = 0; i < counts[sliders]; ++i)
            form.addRow(new QSlider(Qt::Horizontal));
        for (int i = 0; i < counts[labels]; ++i)
            form.addRow(new QLabel(QStringLiteral("A label")));
        for (int i = 0; i < counts[buttons]; ++i)
            form.addRow(new QPushButton(QStringLiteral("Button")));
    }

    std::vector<PageCounts> m_pages;
};

template<class Subject>
void openAgain(benchmark::State &state)
{
    Subject subject;
    subject.open();
    for (auto _ : state)
        subject.open();
}

BENCHMARK(openAgain<TabsSubject>)->Unit(benchmark::kMicrosecond);
BENCHMARK(openAgain<WindowSubject>)->Unit(benchmark::kMicrosecond);

double anonymousMegabytes()
{
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    static const QRegularExpression line(QStringLiteral("Anonymous: +([0-9]+) kB"));
    return line.match(QString::fromLatin1(file.readAll())).captured(1).toDouble() / 1024;
}

double processMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1000 + double(time.tv_nsec) / 1e6;
}

/// What opening one window costs: CPU milliseconds, and megabytes of anonymous memory open and after closing.
using FirstOpening = std::array<double, 3>;

template<class Subject>
void printFirstOpening(Subject subject)
{
    const double memory = anonymousMegabytes();
    const double start = processMilliseconds();
    std::unique_ptr<QWidget> window = subject.open();
    const double opening = processMilliseconds() - start;
    const double open = anonymousMegabytes() - memory;
    window.reset();
    settle();
    std::printf("%f %f %f\n", opening, open, anonymousMegabytes() - memory);
}

/// As an argument for another process.
QString text(const std::vector<PageCounts> &pages)
{
    QStringList numbers;
    for (const PageCounts &page : pages) {
        for (const int count : page)
            numbers.append(QString::number(count));
    }
    return numbers.join(u',');
}

std::vector<PageCounts> pagesIn(const QString &text)
{
    const QStringList numbers = text.split(u',');
    std::vector<PageCounts> pages(size_t(numbers.size()) / kinds);
    for (size_t i = 0; i < pages.size() * kinds; ++i)
        pages[i / kinds].at(i % kinds) = numbers[qsizetype(i)].toInt();
    return pages;
}

/// The medians of processes of their own.
FirstOpening firstOpening(const QStringList &arguments)
{
    std::array<std::vector<double>, 3> figures;
    for (int round = 0; round < rounds; ++round) {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("--first")} + arguments);
        process.waitForFinished();
        const QList<QByteArray> words = process.readAllStandardOutput().simplified().split(' ');
        for (size_t i = 0; i < figures.size(); ++i)
            figures.at(i).push_back(words.value(qsizetype(i)).toDouble());
    }
    FirstOpening medians{};
    for (size_t i = 0; i < figures.size(); ++i) {
        std::ranges::sort(figures.at(i));
        medians.at(i) = figures.at(i)[rounds / 2];
    }
    return medians;
}

void compareFirstOpenings()
{
    const FirstOpening tabs = firstOpening({text(countedPages())});
    const FirstOpening window = firstOpening({});
    std::printf("first opening, CPU ms: %.1f, tabs %.1f, ratio %.2f\n", window[0], tabs[0], window[0] / tabs[0]);
    std::printf("anonymous memory while open, MB: %.2f, tabs %.2f\n", window[1], tabs[1]);
    std::printf("anonymous memory after closing, MB: %.2f, tabs %.2f\n", window[2], tabs[2]);
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QStringLiteral("--first")) {
        if (arguments.size() > 2)
            printFirstOpening(TabsSubject(pagesIn(arguments[2])));
        else
            printFirstOpening(WindowSubject());
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    compareFirstOpenings();
    return 0;
}
