#include "app/Application.h"
#include "demo/LoopbackMarket.h"

#include <QApplication>

#include <cstdio>

using namespace tickwise;

namespace {

constexpr std::chrono::milliseconds priceMove{500};
constexpr double pollingInterval = 2; // seconds: prices on this machine cost nobody anything

/// The demo's identity: it never touches the user's own settings and files.
ApplicationConfiguration demoConfiguration(const LoopbackMarket &market)
{
    ApplicationConfiguration configuration;
    configuration.identifier += QStringLiteral(".demo");
    configuration.appGroup += QStringLiteral(".demo");
    configuration.endpoints = market.endpoints();
    configuration.authorities = LoopbackMarket::authorities();
    return configuration;
}

void seedSettings(const ApplicationConfiguration &configuration)
{
    UserDefaults defaults(configuration.identifier);
    UserDefaultsSettingsStore store(defaults);
    if (store.load())
        return;
    AppSettings settings;
    settings.pollingInterval = pollingInterval;
    store.save(settings);
}

void printContent(const StatusItemContent &content)
{
    QString line = content.title;
    if (!content.logo)
        line += content.trend == StatusTrend::down ? QStringLiteral(" \u25BC") : QStringLiteral(" \u25B2");
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    if (!prepareProcess())
        return 1;
    const QApplication qtApplication(argc, argv);
    LoopbackMarket market(LoopbackMarket::Options{.transport = LoopbackMarket::Transport::tls});
    market.addCatalogCoins();
    market.startMoving(priceMove);

    const ApplicationConfiguration configuration = demoConfiguration(market);
    seedSettings(configuration);
    Application application(configuration);
    const MenuBarViewModel &menuBar = application.delegate().menuBarViewModel();
    QObject::connect(&menuBar, &MenuBarViewModel::contentChanged, [&menuBar] { printContent(menuBar.content()); });
    return application.run();
}
