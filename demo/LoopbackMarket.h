#pragma once

#include "demo/LoopbackHttpServer.h"
#include "demo/LoopbackTls.h"
#include "demo/MarketWorld.h"
#include "market/Endpoints.h"

#include <QSet>

#include <array>
#include <deque>

namespace tickwise {

/// The services of the loopback world; each has a port of its own.
enum class MarketEndpoint
{
    binanceMain,
    binanceData,
    okx,
    bybit,
    exchangeRateApi,
    currencyApiPrimary,
    currencyApiFallback,
    files, ///< logos, feeds and downloads
};
inline constexpr int marketEndpointCount = 8;

/// The exchanges, the rate services and a file host on 127.0.0.1, over HTTP or TLS, with prices that can be set or move
/// by themselves, and with every fault that networks have.
class LoopbackMarket : public QObject
{
    Q_OBJECT

public:
    enum class Transport
    {
        plain,
        tls
    };
    enum class Repeat
    {
        once,
        always
    };
    struct Options
    {
        Transport transport = Transport::plain;
        LoopbackCertificate certificate = LoopbackCertificate::valid;
        Clock clock = systemClock;
        quint64 seed = 1; ///< of the moving prices
    };
    struct Request : LoopbackRequest
    {
        MarketEndpoint endpoint = MarketEndpoint::files;
    };

    LoopbackMarket();
    explicit LoopbackMarket(Options options);
    ~LoopbackMarket() override;

    /// The base URLs of the services.
    Endpoints endpoints() const;
    QUrl url(MarketEndpoint endpoint, const QString &pathAndQuery) const;
    /// The PEM certificate of the authority of this world.
    static QByteArray authorities() { return loopbackAuthorities(); }

    /// Adds or changes a coin, which brings it back to exchanges that lacked it.
    void setPrice(const QString &symbol, double usd, double change24hPercent = 0);
    /// From now on that exchange does not list the coin.
    void removeSymbol(MarketEndpoint endpoint, const QString &symbol);
    void setRate(const QString &code, double value);
    /// Plausible prices for the listed coins of the shipped catalog.
    void addCatalogCoins() { m_world.addCatalogCoins(); }
    /// Lets all prices walk at random from now on; zero stops them.
    void startMoving(std::chrono::milliseconds interval);
    const MarketWorld &world() const { return m_world; }

    /// Serves the bytes under that path of the file host.
    void addFile(const QString &path, const QByteArray &bytes, const QByteArray &contentType);

    /// Spoils answers of the service: the next one that no earlier call spoils, or all that follow those.
    void script(MarketEndpoint endpoint, Fault fault, Repeat repeat = Repeat::once);
    /// The service is well again.
    void clearScript(MarketEndpoint endpoint);
    /// The service takes no connections any more; those that are open are closed.
    void shutDown(MarketEndpoint endpoint);

    /// Every request so far, in order.
    const std::vector<Request> &requests() const { return m_requests; }
    int requestCount(MarketEndpoint endpoint) const;
    void forgetRequests() { m_requests.clear(); }
    /// The server behind a service, for its connections.
    const LoopbackHttpServer &server(MarketEndpoint endpoint) const { return *slot(endpoint).server; }

Q_SIGNALS:
    void requested(tickwise::MarketEndpoint endpoint, const QByteArray &target);
    void connectionClosed(tickwise::MarketEndpoint endpoint, int connection);

private:
    struct File
    {
        QByteArray bytes;
        QByteArray contentType;
    };
    struct Service
    {
        std::unique_ptr<LoopbackHttpServer> server;
        QString prefix; ///< of the paths below the base URL
        QSet<QString> hidden;
        std::deque<Fault> once;
        Fault always;
    };

    const Service &slot(MarketEndpoint endpoint) const { return m_services.at(static_cast<std::size_t>(endpoint)); }
    Service &slot(MarketEndpoint endpoint) { return m_services.at(static_cast<std::size_t>(endpoint)); }
    void open(MarketEndpoint endpoint);
    QString base(MarketEndpoint endpoint) const;
    LoopbackAnswer handle(MarketEndpoint endpoint, const LoopbackRequest &request);
    LoopbackAnswer healthyAnswer(MarketEndpoint endpoint, const QUrl &target) const;
    LoopbackAnswer binance(const QUrl &target, const QSet<QString> &hidden) const;
    LoopbackAnswer okx(const QUrl &target, const QSet<QString> &hidden) const;
    LoopbackAnswer file(const QString &path) const;

    Options m_options;
    MarketWorld m_world;
    QHash<QString, File> m_files;
    std::array<Service, marketEndpointCount> m_services;
    std::vector<Request> m_requests;
    QTimer m_mover;
};

} // namespace tickwise
