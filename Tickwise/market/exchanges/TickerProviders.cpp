#include "market/exchanges/TickerProviders.h"

#include "market/JsonBody.h"
#include "support/DecimalText.h"

#include <QUrlQuery>

#include <cmath>

namespace tickwise {

namespace {

using simdjson::dom::element;
using namespace std::string_view_literals;

constexpr std::string_view usdtSuffix = "USDT";
constexpr std::string_view okxSuffix = "-USDT";
constexpr std::chrono::seconds freshness{3600};

std::optional<HttpRequest> request(const QString &address, const QUrlQuery &query)
{
    QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        return std::nullopt;
    if (!query.isEmpty())
        url.setQuery(query);
    HttpRequest request;
    request.url = url;
    return request;
}

QUrlQuery query(const QString &key, const QString &value)
{
    QUrlQuery query;
    query.addQueryItem(key, value);
    return query;
}

/// Reads the elements of a list one by one; `readOne` returns false when an element does not have its form.
template<class ReadOne>
Result<TickerQuotes> readList(element list, const ReadOne &readOne)
{
    simdjson::dom::array elements;
    if (list.get(elements) != simdjson::SUCCESS)
        return unexpectedForm(QStringLiteral("the tickers are not a list"));
    TickerQuotes quotes;
    std::size_t index = 0;
    for (const element one : elements) {
        if (!readOne(one, quotes))
            return unexpectedForm(QStringLiteral("ticker %1").arg(index));
        ++index;
    }
    return quotes;
}

bool readBinance(element one, const WantedSymbols &wanted, double oldestCloseTime, TickerQuotes &quotes)
{
    static constexpr std::array keys{"symbol"sv, "priceChangePercent"sv, "lastPrice"sv, "closeTime"sv};
    const auto values = members(one, keys);
    if (!values)
        return false;
    const auto symbol = text((*values)[0]);
    const auto change = text((*values)[1]);
    const auto last = text((*values)[2]);
    double closeTime = 0;
    if (!symbol || !change || !last || (*values)[3].get(closeTime) != simdjson::SUCCESS)
        return false;
    const QString *const base = wanted.baseOf(*symbol, usdtSuffix);
    if (!base || closeTime < oldestCloseTime)
        return true;
    if (const std::optional<double> price = parseDecimal(*last))
        quotes.insert(*base, {*price, parseDecimal(*change)});
    return true;
}

/// A change too large for a number is no change.
std::optional<double> finite(double percent)
{
    return std::isfinite(percent) ? std::optional(percent) : std::nullopt;
}

bool readOkx(element one, const WantedSymbols &wanted, TickerQuotes &quotes)
{
    static constexpr std::array keys{"instId"sv, "last"sv, "open24h"sv};
    const auto values = members(one, keys);
    if (!values)
        return false;
    const auto instId = text((*values)[0]);
    const auto last = text((*values)[1]);
    const auto open = text((*values)[2]);
    if (!instId || !last || !open)
        return false;
    const QString *const base = wanted.baseOf(*instId, okxSuffix);
    const std::optional<double> price = base ? parseDecimal(*last) : std::nullopt;
    if (!price)
        return true;
    const std::optional<double> before = parseDecimal(*open);
    const bool hasChange = before && *before > 0;
    quotes.insert(*base, {*price, hasChange ? finite((*price - *before) / *before * 100) : std::nullopt});
    return true;
}

bool readBybit(element one, const WantedSymbols &wanted, TickerQuotes &quotes)
{
    static constexpr std::array keys{"symbol"sv, "lastPrice"sv, "price24hPcnt"sv};
    const auto values = members(one, keys);
    if (!values)
        return false;
    const auto symbol = text((*values)[0]);
    const auto last = text((*values)[1]);
    const auto fraction = text((*values)[2]);
    if (!symbol || !last || !fraction)
        return false;
    const QString *const base = wanted.baseOf(*symbol, usdtSuffix);
    const std::optional<double> price = base ? parseDecimal(*last) : std::nullopt;
    if (!price)
        return true;
    const std::optional<double> change = parseDecimal(*fraction);
    quotes.insert(*base, {*price, change ? finite(*change * 100) : std::nullopt});
    return true;
}

tl::unexpected<Error> exchangeReports(const QString &code)
{
    return failure(
        UrlLoadingError{UrlErrorCode::badServerResponse, QStringLiteral("the exchange reports code ") + code});
}

} // namespace

BinanceTickerProvider::BinanceTickerProvider(QString baseURL, Clock clock)
    : m_baseURL(std::move(baseURL))
    , m_clock(std::move(clock))
{
}

std::optional<HttpRequest> BinanceTickerProvider::makeRequest(const QStringList &symbols) const
{
    QStringList pairs;
    for (const QString &symbol : symbols)
        pairs.append(QLatin1Char('"') + symbol + QStringLiteral("USDT\""));
    const QString value = QLatin1Char('[') + pairs.join(QLatin1Char(',')) + QLatin1Char(']');
    // Encoded here, because a query item's brackets, quotes and commas would go out as they are.
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(value));
    return request(m_baseURL + QStringLiteral("/ticker/24hr"), query(QStringLiteral("symbols"), encoded));
}

std::optional<HttpRequest> BinanceTickerProvider::makeAllTickersRequest() const
{
    return request(m_baseURL + QStringLiteral("/ticker/24hr"), {});
}

Result<TickerQuotes> BinanceTickerProvider::parseQuotes(const QByteArray &data, const QStringList &symbols) const
{
    // Whole microseconds fit into a double; nanoseconds would blur the milliseconds that are compared.
    using std::chrono::microseconds;
    const std::chrono::duration<double, std::milli> oldest =
        std::chrono::floor<microseconds>(m_clock().time_since_epoch() - freshness);
    const WantedSymbols wanted(symbols);
    return withDocument<TickerQuotes>(data, [&](element root) {
        return readList(
            root, [&](element one, TickerQuotes &quotes) { return readBinance(one, wanted, oldest.count(), quotes); });
    });
}

std::optional<HttpRequest> OKXTickerProvider::makeRequest(const QStringList &symbols) const
{
    Q_UNUSED(symbols)
    return makeAllTickersRequest();
}

std::optional<HttpRequest> OKXTickerProvider::makeAllTickersRequest() const
{
    return request(m_host + QStringLiteral("/api/v5/market/tickers"),
                   query(QStringLiteral("instType"), QStringLiteral("SPOT")));
}

Result<TickerQuotes> OKXTickerProvider::parseQuotes(const QByteArray &data, const QStringList &symbols) const
{
    const WantedSymbols wanted(symbols);
    return withDocument<TickerQuotes>(data, [&](element root) -> Result<TickerQuotes> {
        const auto status = members(root, std::array{"code"sv});
        const auto code = status ? text((*status)[0]) : std::nullopt;
        if (code == "50011"sv)
            return failure(TickerProviderError{TickerProviderError::Kind::rateLimited});
        if (!code)
            return unexpectedForm(QStringLiteral("no code"));
        if (*code != "0"sv)
            return exchangeReports(QString::fromUtf8(code->data(), static_cast<qsizetype>(code->size())));
        const auto list = members(root, std::array{"data"sv});
        if (!list)
            return unexpectedForm(QStringLiteral("no data"));
        return readList((*list)[0], [&](element one, TickerQuotes &quotes) { return readOkx(one, wanted, quotes); });
    });
}

std::optional<HttpRequest> BybitTickerProvider::makeRequest(const QStringList &symbols) const
{
    Q_UNUSED(symbols)
    return makeAllTickersRequest();
}

std::optional<HttpRequest> BybitTickerProvider::makeAllTickersRequest() const
{
    return request(m_host + QStringLiteral("/v5/market/tickers"),
                   query(QStringLiteral("category"), QStringLiteral("spot")));
}

Result<TickerQuotes> BybitTickerProvider::parseQuotes(const QByteArray &data, const QStringList &symbols) const
{
    const WantedSymbols wanted(symbols);
    return withDocument<TickerQuotes>(data, [&](element root) -> Result<TickerQuotes> {
        const auto status = members(root, std::array{"retCode"sv});
        std::int64_t code = 0;
        if (!status || (*status)[0].get(code) != simdjson::SUCCESS)
            return unexpectedForm(QStringLiteral("no retCode"));
        if (code != 0)
            return exchangeReports(QString::number(code));
        const auto result = members(root, std::array{"result"sv});
        const auto list = result ? members((*result)[0], std::array{"list"sv}) : std::nullopt;
        if (!list)
            return unexpectedForm(QStringLiteral("no result.list"));
        return readList((*list)[0], [&](element one, TickerQuotes &read) { return readBybit(one, wanted, read); });
    });
}

std::vector<std::unique_ptr<TickerProvider>> makeTickerProviders(const Endpoints &endpoints, const Clock &clock)
{
    std::vector<std::unique_ptr<TickerProvider>> providers;
    providers.push_back(std::make_unique<BinanceTickerProvider>(endpoints.binanceMain, clock));
    providers.push_back(std::make_unique<BinanceTickerProvider>(endpoints.binanceData, clock));
    providers.push_back(std::make_unique<OKXTickerProvider>(endpoints.okx));
    providers.push_back(std::make_unique<BybitTickerProvider>(endpoints.bybit));
    return providers;
}

} // namespace tickwise
