#include "market/exchanges/BybitTickerProvider.h"

#include "market/exchanges/TickerList.h"
#include "support/DecimalText.h"

namespace tickwise {

namespace {

using simdjson::dom::element;
using namespace std::string_view_literals;

constexpr std::string_view bybitSuffix = "USDT";

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
    const QString *const base = wanted.baseOf(*symbol, bybitSuffix);
    const std::optional<double> price = base ? parseDecimal(*last) : std::nullopt;
    if (!price)
        return true;
    const std::optional<double> change = parseDecimal(*fraction);
    quotes.insert(*base, {*price, change ? finitePercent(*change * 100) : std::nullopt});
    return true;
}

} // namespace

std::optional<HttpRequest> BybitTickerProvider::makeRequest(const QStringList &symbols) const
{
    Q_UNUSED(symbols)
    return makeAllTickersRequest();
}

std::optional<HttpRequest> BybitTickerProvider::makeAllTickersRequest() const
{
    return tickerRequest(m_host + QStringLiteral("/v5/market/tickers"), QStringLiteral("category"),
                         QStringLiteral("spot"));
}

Result<TickerQuotes> BybitTickerProvider::parseQuotes(const QByteArray &data, const QStringList &symbols) const
{
    const WantedSymbols wanted(symbols);
    return readJsonResponse<TickerQuotes>(data, [&](element root) -> Result<TickerQuotes> {
        const auto status = members(root, std::array{"retCode"sv});
        std::int64_t code = 0;
        if (!status || (*status)[0].get(code) != simdjson::SUCCESS)
            return unexpectedForm(QStringLiteral("no retCode"));
        if (code != 0)
            return exchangeFailure(std::to_string(code));
        const auto result = members(root, std::array{"result"sv});
        const auto list = result ? members((*result)[0], std::array{"list"sv}) : std::nullopt;
        if (!list)
            return unexpectedForm(QStringLiteral("no result.list"));
        return readTickers((*list)[0], [&](element one, TickerQuotes &read) { return readBybit(one, wanted, read); });
    });
}

} // namespace tickwise
