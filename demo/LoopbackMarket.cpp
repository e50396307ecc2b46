#include "demo/LoopbackMarket.h"

#include "demo/MarketAnswers.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QUrlQuery>

namespace tickwise {

namespace {

LoopbackAnswer json(QByteArray body, int status = 200)
{
    LoopbackAnswer answer;
    answer.status = status;
    answer.body = std::move(body);
    return answer;
}

LoopbackAnswer chunkedJson(QByteArray body)
{
    LoopbackAnswer answer = json(std::move(body));
    answer.framing = LoopbackAnswer::Framing::chunked;
    return answer;
}

LoopbackAnswer notFound()
{
    return json(
        R"({"code":404,"data":{},"detailMsg":"","error_code":"404","error_message":"Not Found","msg":"Not Found"})",
        404);
}

LoopbackAnswer illegalSymbols()
{
    return json(R"({"code":-1100,"msg":"Illegal characters found in parameter 'symbols'; legal range is )"
                R"('^\\[(\"[A-Z0-9-_.]{1,20}\"(,\"[A-Z0-9-_.]{1,20}\"){0,}){0,1}\\]$'."})",
                400);
}

std::optional<QStringList> pairsOf(const QString &symbols)
{
    static const QRegularExpression legal(QStringLiteral(R"(^\[("[A-Z0-9\-_.]{1,20}"(,"[A-Z0-9\-_.]{1,20}")*)?\]$)"));
    if (!legal.match(symbols).hasMatch())
        return std::nullopt;
    QStringList pairs;
    for (const auto &pair : QJsonDocument::fromJson(symbols.toUtf8()).array())
        pairs.append(pair.toString());
    return pairs;
}

bool isExchange(MarketEndpoint endpoint)
{
    return endpoint <= MarketEndpoint::bybit;
}

} // namespace

LoopbackMarket::LoopbackMarket()
    : LoopbackMarket(Options{})
{
}

LoopbackMarket::LoopbackMarket(Options options)
    : m_options(std::move(options))
    , m_world(m_options.seed)
{
    slot(MarketEndpoint::binanceMain).prefix = QStringLiteral("/api/v3");
    slot(MarketEndpoint::binanceData).prefix = QStringLiteral("/api/v3");
    slot(MarketEndpoint::currencyApiPrimary).prefix = QStringLiteral("/npm/@fawazahmed0/currency-api@latest");
    for (int i = 0; i < marketEndpointCount; ++i)
        open(static_cast<MarketEndpoint>(i));
    connect(&m_mover, &QTimer::timeout, this, [this] { m_world.move(); });
}

LoopbackMarket::~LoopbackMarket() = default;

void LoopbackMarket::open(MarketEndpoint endpoint)
{
    std::optional<QSslConfiguration> tls;
    if (m_options.transport == Transport::tls)
        tls = loopbackServerTls(m_options.certificate);
    Service &service = slot(endpoint);
    service.server = std::make_unique<LoopbackHttpServer>(
        tls, m_options.clock, [this, endpoint](const LoopbackRequest &request) { return handle(endpoint, request); });
    connect(service.server.get(), &LoopbackHttpServer::connectionClosed, this,
            [this, endpoint](int connection) { Q_EMIT connectionClosed(endpoint, connection); });
}

QString LoopbackMarket::base(MarketEndpoint endpoint) const
{
    return slot(endpoint).server->baseUrl() + slot(endpoint).prefix;
}

Endpoints LoopbackMarket::endpoints() const
{
    return {base(MarketEndpoint::binanceMain),
            base(MarketEndpoint::binanceData),
            base(MarketEndpoint::okx),
            base(MarketEndpoint::bybit),
            base(MarketEndpoint::exchangeRateApi),
            base(MarketEndpoint::currencyApiPrimary),
            base(MarketEndpoint::currencyApiFallback)};
}

QUrl LoopbackMarket::url(MarketEndpoint endpoint, const QString &pathAndQuery) const
{
    return QUrl(base(endpoint) + pathAndQuery);
}

void LoopbackMarket::setPrice(const QString &symbol, double usd, double change24hPercent)
{
    m_world.setPrice(symbol, usd, change24hPercent);
    for (Service &service : m_services)
        service.hidden.remove(symbol);
}

void LoopbackMarket::removeSymbol(MarketEndpoint endpoint, const QString &symbol)
{
    Q_ASSERT(isExchange(endpoint));
    slot(endpoint).hidden.insert(symbol);
}

void LoopbackMarket::setRate(const QString &code, double value)
{
    m_world.setRate(code, value);
}

void LoopbackMarket::startMoving(std::chrono::milliseconds interval)
{
    if (interval.count() > 0)
        m_mover.start(interval);
    else
        m_mover.stop();
}

void LoopbackMarket::addFile(const QString &path, const QByteArray &bytes, const QByteArray &contentType)
{
    m_files.insert(path, {bytes, contentType});
}

void LoopbackMarket::script(MarketEndpoint endpoint, Fault fault, Repeat repeat)
{
    if (repeat == Repeat::always)
        slot(endpoint).always = std::move(fault);
    else
        slot(endpoint).once.push_back(std::move(fault));
}

void LoopbackMarket::clearScript(MarketEndpoint endpoint)
{
    slot(endpoint).once.clear();
    slot(endpoint).always = nullptr;
}

void LoopbackMarket::closeConnections(MarketEndpoint endpoint)
{
    slot(endpoint).server->closeConnections();
}

void LoopbackMarket::shutDown(MarketEndpoint endpoint)
{
    slot(endpoint).server->shutDown();
}

int LoopbackMarket::requestCount(MarketEndpoint endpoint) const
{
    return static_cast<int>(std::count_if(m_requests.begin(), m_requests.end(),
                                          [endpoint](const Request &request) { return request.endpoint == endpoint; }));
}

LoopbackAnswer LoopbackMarket::handle(MarketEndpoint endpoint, const LoopbackRequest &request)
{
    m_requests.push_back({request, endpoint});
    Service &service = slot(endpoint);
    LoopbackAnswer answer = healthyAnswer(endpoint, QUrl::fromEncoded(request.target));
    if (!service.once.empty()) {
        service.once.front()(answer);
        service.once.pop_front();
    } else if (service.always) {
        service.always(answer);
    }
    Q_EMIT requested(endpoint, request.target);
    return answer;
}

LoopbackAnswer LoopbackMarket::healthyAnswer(MarketEndpoint endpoint, const QUrl &target) const
{
    if (endpoint == MarketEndpoint::files)
        return file(target.path());
    const Service &service = slot(endpoint);
    if (!target.path().startsWith(service.prefix))
        return notFound();
    const QString path = target.path().mid(service.prefix.size());
    const TimePoint now = m_options.clock();
    const bool isBinance = endpoint == MarketEndpoint::binanceMain || endpoint == MarketEndpoint::binanceData;
    const bool isCurrencyApi =
        endpoint == MarketEndpoint::currencyApiPrimary || endpoint == MarketEndpoint::currencyApiFallback;
    if (isBinance && path == QStringLiteral("/ticker/24hr"))
        return binance(target, service.hidden);
    if (endpoint == MarketEndpoint::okx && path == QStringLiteral("/api/v5/market/tickers"))
        return okx(target, service.hidden);
    if (endpoint == MarketEndpoint::bybit && path == QStringLiteral("/v5/market/tickers"))
        return json(answers::bybitTickers(m_world, service.hidden, now));
    if (endpoint == MarketEndpoint::exchangeRateApi && path == QStringLiteral("/v6/latest/USD"))
        return json(answers::exchangeRateApiTable(m_world, now));
    if (isCurrencyApi && path == QStringLiteral("/v1/currencies/usd.min.json"))
        return json(answers::currencyApiTable(m_world, now));
    return notFound();
}

LoopbackAnswer LoopbackMarket::binance(const QUrl &target, const QSet<QString> &hidden) const
{
    const QUrlQuery query(target);
    if (!query.hasQueryItem(QStringLiteral("symbols")))
        return chunkedJson(answers::binanceAllTickers(m_world, hidden, m_options.clock()));
    const auto pairs = pairsOf(query.queryItemValue(QStringLiteral("symbols"), QUrl::FullyDecoded));
    if (!pairs)
        return illegalSymbols();
    const auto body = answers::binanceTickers(m_world, *pairs, hidden, m_options.clock());
    return body ? chunkedJson(*body) : json(R"({"code":-1121,"msg":"Invalid symbol."})", 400);
}

LoopbackAnswer LoopbackMarket::okx(const QUrl &target, const QSet<QString> &hidden) const
{
    if (QUrlQuery(target).queryItemValue(QStringLiteral("instType")) != QStringLiteral("SPOT"))
        return json(R"({"code":"50014","data":[],"msg":"instType cannot be empty"})", 400);
    return chunkedJson(answers::okxTickers(m_world, hidden, m_options.clock()));
}

LoopbackAnswer LoopbackMarket::file(const QString &path) const
{
    const auto at = m_files.find(path);
    if (at == m_files.end())
        return notFound();
    LoopbackAnswer answer;
    answer.body = at->bytes;
    answer.contentType = at->contentType;
    return answer;
}

} // namespace tickwise
