// The whole application over a market of its own, commanded by the lines of the standard input; see `Probe::execute`.
// Commands before "start" prepare the world. What happens is printed, one event a line:
//   content {...}        the status item shows something else
//   polled [REASON]      a fetch ended, with the reason when it failed
//   activated [TOKEN]    somebody wants to see the application
//   settingsWindow TAB   somebody wants the settings window on that tab
//   windows [{...}]      the answer to "windows"

#include "app/Application.h"
#include "demo/LoopbackMarket.h"
#include "doubles/SigningKey.h"
#include "pipeline/StatusItemContent.h"
#include "settings/AppSettingsCoding.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <cstdio>

#include <unistd.h>

using namespace tickwise;

namespace {

const QString feedPath = QStringLiteral("/appcast.xml");
const QString packagePath = QStringLiteral("/tickwise_amd64.deb");

constexpr std::array endpointNames{"binanceMain",        "binanceData",         "okx",  "bybit", "exchangeRateApi",
                                   "currencyApiPrimary", "currencyApiFallback", "files"};

void print(const QString &event, const QString &details = {})
{
    std::puts(qUtf8Printable(details.isEmpty() ? event : event + QLatin1Char(' ') + details));
    std::fflush(stdout);
}

QString compact(const QJsonDocument &document)
{
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact));
}

QJsonValue nameOf(const std::optional<QColor> &color)
{
    return color ? QJsonValue(color->name()) : QJsonValue();
}

QJsonObject describe(const StatusItemContent &content)
{
    return {{QStringLiteral("logo"), content.logo},
            {QStringLiteral("text"), content.text},
            {QStringLiteral("color"), nameOf(content.textColor)},
            {QStringLiteral("pill"), nameOf(content.pillColor)},
            {QStringLiteral("title"), content.title},
            {QStringLiteral("toolTipTitle"), content.toolTipTitle},
            {QStringLiteral("toolTipBody"), content.toolTipBody}};
}

/// A visible window: its title, its texts, and where its buttons are on the screen.
QJsonObject describe(const QWidget &window)
{
    QJsonArray texts;
    for (const QLabel *const label : window.findChildren<QLabel *>()) {
        if (label->isVisible() && !label->text().isEmpty())
            texts.append(label->text());
    }
    QJsonObject buttons;
    for (const QAbstractButton *const button : window.findChildren<QAbstractButton *>()) {
        const QPoint middle = button->mapToGlobal(button->rect().center());
        if (button->isVisible())
            buttons.insert(button->text().isEmpty() ? button->accessibleName() : button->text(),
                           QJsonArray{middle.x(), middle.y()});
    }
    const auto *const popover = window.findChild<QWidget *>(QStringLiteral("coinPopover"));
    const QRect place(popover ? popover->mapToGlobal(QPoint()) : window.pos(),
                      popover ? popover->size() : window.size());
    return {{QStringLiteral("title"), window.windowTitle()},
            {QStringLiteral("texts"), texts},
            {QStringLiteral("buttons"), buttons},
            {QStringLiteral("place"), QJsonArray{place.x(), place.y(), place.width(), place.height()}}};
}

Fault faultNamed(const QString &kind)
{
    if (kind == u"reset")
        return faults::reset();
    if (kind == u"garbage")
        return faults::garbage();
    if (kind == u"hang")
        return faults::hang();
    if (kind.startsWith(u"status-"))
        return faults::status(kind.mid(7).toInt());
    qFatal("no fault is called %s", qUtf8Printable(kind));
}

std::vector<MarketEndpoint> endpointsNamed(const QString &name)
{
    if (name == u"exchanges")
        return {MarketEndpoint::binanceMain, MarketEndpoint::binanceData, MarketEndpoint::okx, MarketEndpoint::bybit};
    const auto found = std::find(endpointNames.begin(), endpointNames.end(), name.toLatin1());
    if (found == endpointNames.end())
        qFatal("no endpoint is called %s", qUtf8Printable(name));
    return {static_cast<MarketEndpoint>(found - endpointNames.begin())};
}

AppSettings settingsOf(const QString &json)
{
    const Result<AppSettings> settings = decodeSettings(json.toUtf8());
    if (!settings)
        qFatal("no settings: %s", qUtf8Printable(json));
    return *settings;
}

QByteArray package()
{
    return QByteArray("package ").repeated(4000);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no file %s", qUtf8Printable(path));
    return file.readAll();
}

/// The complete lines of the standard input, as they come.
class Input
{
public:
    /// Reads once. False at the end of the input.
    bool read()
    {
        char chunk[4096];
        const ssize_t length = ::read(STDIN_FILENO, chunk, sizeof chunk);
        if (length <= 0)
            return false;
        m_buffer.append(chunk, length);
        return true;
    }
    std::optional<QString> takeLine()
    {
        const qsizetype end = m_buffer.indexOf('\n');
        if (end < 0)
            return std::nullopt;
        const QString line = QString::fromUtf8(m_buffer.left(end));
        m_buffer.remove(0, end + 1);
        return line;
    }

private:
    QByteArray m_buffer;
};

class Probe
{
public:
    Probe();

    /// Runs lines until one says "start". False when none did.
    bool prepare();
    int run();

private:
    void execute(const QString &line);
    void applySettings(const AppSettings &settings);
    void setFault(const QString &endpoint, const QString &kind);
    void publishUpdate(const QString &version, const QByteArray &signature);
    void follow();
    void printPoll(const CoinListViewModel &coinList) const;
    void printWindows() const;

    LoopbackMarket m_market;
    test::SigningKey m_key;
    ApplicationConfiguration m_configuration;
    std::unique_ptr<Application> m_application;
    Input m_input;
    bool m_follows = false;
};

Probe::Probe()
    : m_market(LoopbackMarket::Options{.transport = LoopbackMarket::Transport::tls})
{
    m_configuration.identifier += QStringLiteral(".probe");
    m_configuration.appGroup += QStringLiteral(".probe");
    m_configuration.endpoints = m_market.endpoints();
    m_configuration.authorities = LoopbackMarket::authorities();
}

bool Probe::prepare()
{
    for (;;) {
        const std::optional<QString> line = m_input.takeLine();
        if (line == QStringLiteral("start"))
            return true;
        if (line)
            execute(*line);
        else if (!m_input.read())
            return false;
    }
}

int Probe::run()
{
    m_application = std::make_unique<Application>(m_configuration);
    AppDelegate &delegate = m_application->delegate();
    QObject::connect(&delegate.menuBarViewModel(), &MenuBarViewModel::contentChanged, [this] { follow(); });
    QObject::connect(&delegate, &AppDelegate::activationRequested,
                     [](const QString &token) { print(QStringLiteral("activated"), token); });
    QObject::connect(&delegate, &AppDelegate::settingsWindowRequested,
                     [](SettingsTab tab) { print(QStringLiteral("settingsWindow"), rawValue(tab)); });
    QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [this] {
        if (!m_input.read())
            QCoreApplication::quit();
        while (const std::optional<QString> line = m_input.takeLine())
            execute(*line);
    });
    return m_application->run();
}

void Probe::follow()
{
    AppDelegate &delegate = m_application->delegate();
    print(QStringLiteral("content"), compact(QJsonDocument(describe(delegate.menuBarViewModel().content()))));
    if (std::exchange(m_follows, true))
        return;
    const CoinListViewModel &coinList = delegate.coinListViewModel();
    QObject::connect(&coinList, &CoinListViewModel::isLoadingChanged, [this, &coinList] { printPoll(coinList); });
}

void Probe::printPoll(const CoinListViewModel &coinList) const
{
    if (coinList.isLoading())
        return;
    const std::optional<ProviderFailure> failure = coinList.lastFetchFailure();
    print(QStringLiteral("polled"), failure ? failureText(*failure, systemClock()) : QString());
}

void Probe::printWindows() const
{
    QJsonArray windows;
    for (const QWidget *const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && !window->windowTitle().isEmpty())
            windows.append(describe(*window));
    }
    print(QStringLiteral("windows"), compact(QJsonDocument(windows)));
}

void Probe::applySettings(const AppSettings &settings)
{
    if (m_application)
        return m_application->delegate().settingsViewModel().update(settings);
    UserDefaults defaults(m_configuration.identifier);
    UserDefaultsSettingsStore(defaults).save(settings);
}

void Probe::setFault(const QString &name, const QString &kind)
{
    const QString missing = QStringLiteral("missing:");
    for (const MarketEndpoint endpoint : endpointsNamed(name)) {
        if (kind.startsWith(missing))
            m_market.removeSymbol(endpoint, kind.mid(missing.size()));
        else
            m_market.script(endpoint, faultNamed(kind), LoopbackMarket::Repeat::always);
    }
}

void Probe::publishUpdate(const QString &version, const QByteArray &signature)
{
    const QByteArray url = m_market.url(MarketEndpoint::files, packagePath).toEncoded();
    const QByteArray feed =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?><rss version=\"2.0\" "
        "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><item><sparkle:version>" +
        version.toUtf8() +
        "</sparkle:version><description><![CDATA[<ul><li>Alerts arrive sooner</li><li>Clearer texts</li></ul>]]>"
        "</description><enclosure url=\"" +
        url + "\" type=\"application/octet-stream\" sparkle:edSignature=\"" + signature + "\"/></item></channel></rss>";
    m_market.addFile(feedPath, feed, "application/rss+xml");
}

/// One line: a word and what it is about.
void Probe::execute(const QString &line)
{
    const QString command = line.section(u' ', 0, 0);
    const QString details = line.section(u' ', 1);
    const QStringList words = details.split(u' ');
    if (command == u"price") { // SYMBOL USD [CHANGE]
        m_market.setPrice(words[0], words[1].toDouble(), words.value(2).toDouble());
    } else if (command == u"rate") { // CODE VALUE
        m_market.setRate(words[0], words[1].toDouble());
    } else if (command == u"fault") { // ENDPOINT KIND
        setFault(words[0], words[1]);
    } else if (command == u"heal") { // ENDPOINT
        for (const MarketEndpoint endpoint : endpointsNamed(details))
            m_market.clearScript(endpoint);
    } else if (command == u"settings") { // JSON
        applySettings(settingsOf(details));
    } else if (command == u"updater") { // before the start: makes a build that has one
        m_configuration.feedUrl = m_market.url(MarketEndpoint::files, feedPath).toString();
        m_configuration.feedKey = m_key.publicKey();
        m_market.addFile(packagePath, package(), "application/octet-stream");
    } else if (command == u"signedUpdate") { // VERSION
        publishUpdate(details, m_key.sign(package()));
    } else if (command == u"forgedUpdate") { // VERSION
        publishUpdate(details, test::SigningKey().sign(package()));
    } else if (command == u"unsignedUpdate") { // VERSION
        publishUpdate(details, {});
    } else if (command == u"file") { // PATH FILE
        m_market.addFile(words[0], contentOf(words[1]), "application/octet-stream");
    } else if (command == u"poll") {
        m_application->delegate().coinListViewModel().fetchPrices();
    } else if (command == u"checkForUpdates") {
        m_application->delegate().updateController().checkForUpdates();
    } else if (command == u"adjustOverlay") {
        m_application->delegate().notificationCenter().post(NotificationCenter::adjustDesktopOverlay);
    } else if (command == u"windows") {
        printWindows();
    } else if (command == u"quit") {
        QCoreApplication::quit();
    } else {
        qFatal("no command is called %s", qUtf8Printable(command));
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (!prepareProcess())
        return 1;
    const QApplication qtApplication(argc, argv);
    Probe probe;
    return probe.prepare() ? probe.run() : 1;
}
