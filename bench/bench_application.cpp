// The application as it ships, with an identity of its own and the market of the measurements. The first line of its
// input is a JSON object: "endpoints", "authorities" (PEM), "coins" (ids of the watchlist) and "pollingInterval"
// (seconds). Then commands:
//
//   polls N [MILLISECONDS]   polls N times, with that pause after each or none, and prints
//                            "polls N <CPU seconds of this process>"
//   overlay 0|1              hides or shows the desktop overlay
//   quit
//
// Prints "content <CLOCK_MONOTONIC seconds>" when the status item first shows a price.
#include "app/Application.h"
#include "catalog/logos/CoinLogoCache.h"
#include "platform/storage/AppGroupContainer.h"

#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <cstdio>
#include <ctime>
#include <iostream>

#include <sys/resource.h>
#include <unistd.h>

using namespace tickwise;

namespace {

Endpoints endpointsFrom(const QJsonObject &json)
{
    const auto url = [&json](const char *name) { return json.value(QLatin1String(name)).toString(); };
    return {url("binanceMain"),        url("binanceData"),        url("okx"), url("bybit"), url("exchangeRateApi"),
            url("currencyApiPrimary"), url("currencyApiFallback")};
}

ApplicationConfiguration benchConfiguration(const QJsonObject &json)
{
    ApplicationConfiguration configuration;
    configuration.identifier += QStringLiteral(".bench");
    configuration.appGroup += QStringLiteral(".bench");
    configuration.endpoints = endpointsFrom(json.value(QStringLiteral("endpoints")).toObject());
    configuration.authorities = json.value(QStringLiteral("authorities")).toString().toLatin1();
    return configuration;
}

/// Logos as an earlier start has left them: the first start alone downloads them.
void seedLogos(const ApplicationConfiguration &configuration, const QJsonObject &json)
{
    QImage picture(64, 64, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG");
    const CoinLogoCache cache = CoinLogoCache::inContainer(appGroupContainer(configuration.appGroup));
    for (const QJsonValue id : json.value(QStringLiteral("coins")).toArray())
        (void)cache.write(id.toString(), bytes);
}

void seed(const ApplicationConfiguration &configuration, const QJsonObject &json)
{
    UserDefaults defaults(configuration.identifier);
    UserDefaultsSettingsStore store(defaults);
    if (store.load())
        return;
    AppSettings settings;
    settings.pollingInterval = json.value(QStringLiteral("pollingInterval")).toDouble();
    settings.watchlistCoins.clear();
    for (const QJsonValue id : json.value(QStringLiteral("coins")).toArray())
        settings.watchlistCoins.push_back({id.toString(), CoinAlertKind::above, 1e9});
    store.save(settings);
    seedLogos(configuration, json);
}

double seconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void printFirstPrice(const MenuBarViewModel &menuBar)
{
    static bool printed = false;
    const QString &price = menuBar.content().price;
    if (printed || std::none_of(price.begin(), price.end(), [](QChar c) { return c.isDigit(); }))
        return;
    printed = true;
    std::timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    std::printf("content %lld.%09ld\n", static_cast<long long>(now.tv_sec), now.tv_nsec);
    std::fflush(stdout);
}

/// Polls one after the other.
class PollRun : public QObject
{
public:
    explicit PollRun(CoinListViewModel &coins)
        : m_coins(coins)
    {
        m_pause.setSingleShot(true);
        connect(&m_pause, &QTimer::timeout, &coins, &CoinListViewModel::fetchPrices);
        connect(&coins, &CoinListViewModel::isLoadingChanged, this, &PollRun::next, Qt::QueuedConnection);
    }

    void start(int count, std::chrono::milliseconds pause)
    {
        m_count = m_left = count;
        m_pause.setInterval(pause);
        m_before = cpuSeconds();
        next();
    }

private:
    void next()
    {
        if (m_count == 0 || m_coins.isLoading())
            return;
        if (m_left-- > 0)
            return m_pause.interval() > 0 ? m_pause.start() : m_coins.fetchPrices();
        std::printf("polls %d %.6f\n", m_count, cpuSeconds() - m_before);
        std::fflush(stdout);
        m_count = 0;
    }

    CoinListViewModel &m_coins;
    QTimer m_pause;
    int m_count = 0;
    int m_left = 0;
    double m_before = 0;
};

void showOverlay(SettingsViewModel &viewModel, bool shown)
{
    AppSettings settings = viewModel.settings();
    settings.desktopOverlayEnabled = shown;
    viewModel.update(settings);
}

void obey(const QByteArray &command, Application &application, PollRun &polls)
{
    const QList<QByteArray> words = command.split(' ');
    if (words.first() == "polls")
        polls.start(words.value(1).toInt(), std::chrono::milliseconds(words.value(2).toInt()));
    else if (words.first() == "overlay")
        showOverlay(application.delegate().settingsViewModel(), words.value(1) == "1");
    else
        QCoreApplication::quit();
}

QByteArray readSome()
{
    std::array<char, 256> bytes{};
    const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
    return QByteArray(bytes.data(), std::max<ssize_t>(count, 0)).trimmed();
}

} // namespace

int main(int argc, char **argv)
{
    if (!prepareProcess())
        return 1;
    const QApplication qtApplication(argc, argv);
    std::string line;
    std::getline(std::cin, line);
    const QJsonObject json = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
    const ApplicationConfiguration configuration = benchConfiguration(json);
    seed(configuration, json);
    Application application(configuration);

    const MenuBarViewModel &menuBar = application.delegate().menuBarViewModel();
    QObject::connect(&menuBar, &MenuBarViewModel::contentChanged, [&menuBar] { printFirstPrice(menuBar); });
    std::optional<PollRun> polls;
    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        if (!polls)
            polls.emplace(application.delegate().coinListViewModel());
        obey(readSome(), application, *polls);
    });
    return application.run();
}
