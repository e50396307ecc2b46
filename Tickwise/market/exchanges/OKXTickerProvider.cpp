#include "market/exchanges/OKXTickerProvider.h"

#include "market/exchanges/TickerList.h"
#include "support/DecimalText.h"

namespace tickwise {

namespace {

using simdjson::dom::element;
using namespace std::string_view_literals;

constexpr std::string_view okxSuffix = "-USDT";

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
    quotes.insert(*base, {*price, hasChange ? finitePercent((*price - *before) / *before * 100) : std::nullopt});
    return true;
}

} // namespace

std::optional<HttpRequest> OKXTickerProvider::makeRequest(const QStringList &symbols) const
{
    Q_UNUSED(symbols)
    return makeAllTickersRequest();
}

std::optional<HttpRequest> OKXTickerProvider::makeAllTickersRequest() const
{
    return tickerRequest(m_host + QStringLiteral("/api/v5/market/tickers"), QStringLiteral("instType"),
                         QStringLiteral("SPOT"));
}

Result<TickerQuotes> OKXTickerProvider::parseQuotes(const QByteArray &data, const QStringList &symbols) const
{
    const WantedSymbols wanted(symbols);
    return readJsonResponse<TickerQuotes>(data, [&](element root) -> Result<TickerQuotes> {
        const auto status = members(root, std::array{"code"sv});
        const auto code = status ? text((*status)[0]) : std::nullopt;
        if (code == "50011"sv)
            return failure(TickerProviderError{TickerProviderError::Kind::rateLimited});
        if (!code)
            return unexpectedForm(QStringLiteral("no code"));
        if (*code != "0"sv)
            return exchangeFailure(*code);
        const auto list = members(root, std::array{"data"sv});
        if (!list)
            return unexpectedForm(QStringLiteral("no data"));
        return readTickers((*list)[0], [&](element one, TickerQuotes &quotes) { return readOkx(one, wanted, quotes); });
    });
}

} // namespace tickwise
