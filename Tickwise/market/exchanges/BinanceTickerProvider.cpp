#include "market/exchanges/BinanceTickerProvider.h"

#include "market/exchanges/TickerList.h"
#include "support/DecimalText.h"

namespace tickwise {

namespace {

using simdjson::dom::element;
using namespace std::string_view_literals;

constexpr std::string_view binanceSuffix = "USDT";
constexpr std::chrono::seconds freshness{3600};

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
    const QString *const base = wanted.baseOf(*symbol, binanceSuffix);
    if (!base || closeTime < oldestCloseTime)
        return true;
    if (const std::optional<double> price = parseDecimal(*last))
        quotes.insert(*base, {*price, parseDecimal(*change)});
    return true;
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
    // Encoded here, because QUrl leaves brackets, quotes and commas of a query item as they are.
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(value));
    return tickerRequest(m_baseURL + QStringLiteral("/ticker/24hr"), QStringLiteral("symbols"), encoded);
}

std::optional<HttpRequest> BinanceTickerProvider::makeAllTickersRequest() const
{
    return tickerRequest(m_baseURL + QStringLiteral("/ticker/24hr"));
}

Result<TickerQuotes> BinanceTickerProvider::parseQuotes(const QByteArray &data, const QStringList &symbols) const
{
    // A double holds microseconds since 1970 exactly, but not nanoseconds: these would round across a millisecond.
    using std::chrono::microseconds;
    const std::chrono::duration<double, std::milli> oldest =
        std::chrono::floor<microseconds>(m_clock().time_since_epoch() - freshness);
    const WantedSymbols wanted(symbols);
    return readJsonResponse<TickerQuotes>(data, [&](element root) {
        return readTickers(
            root, [&](element one, TickerQuotes &quotes) { return readBinance(one, wanted, oldest.count(), quotes); });
    });
}

} // namespace tickwise
