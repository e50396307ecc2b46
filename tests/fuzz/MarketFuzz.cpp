// Everything that the market services read from the network or from disk. The first byte ('1' to '7') picks the reader,
// the rest is the body.
#include "market/RetryAfter.h"
#include "market/exchanges/BinanceTickerProvider.h"
#include "market/exchanges/BybitTickerProvider.h"
#include "market/exchanges/OKXTickerProvider.h"
#include "market/rates/CurrencyAPIRateProvider.h"
#include "market/rates/ERAPIRateProvider.h"
#include "market/rates/ExchangeRateCacheStore.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace tickwise;

namespace {

/// Ends the run where a rule is broken.
void require(bool holds)
{
    if (!holds)
        std::abort();
}

TimePoint november2022()
{
    return TimePoint(std::chrono::milliseconds(1669012567880));
}

void checkQuotes(const TickerProvider &provider, const QByteArray &body)
{
    const QStringList wanted{QStringLiteral("BTC"), QStringLiteral("ETH"), QStringLiteral("币安人生"), QString()};
    const Result<TickerQuotes> quotes = provider.parseQuotes(body, wanted);
    if (!quotes)
        return require(!description(quotes.error()).isEmpty());
    for (auto quote = quotes->cbegin(); quote != quotes->cend(); ++quote) {
        require(wanted.contains(quote.key()));
        require(std::isfinite(quote->priceUsd) && std::isfinite(quote->change24hPercent.value_or(0)));
    }
}

void checkRates(const RateTable &rates)
{
    for (const double rate : rates)
        require(std::isfinite(rate) && rate > 0);
}

void checkTable(const ExchangeRateProvider &provider, const QByteArray &body)
{
    const Result<RateTable> table = provider.decode(body);
    if (!table)
        return require(!description(table.error()).isEmpty());
    require(!table->isEmpty());
    checkRates(*table);
}

void checkCacheFile(const QByteArray &bytes)
{
    const Result<ExchangeRateEntry> entry = decodeRateEntry(bytes);
    if (!entry)
        return;
    checkRates(entry->rates);
    require(encodeRateEntry(*entry).and_then(decodeRateEntry) == entry);
}

void checkRetryAfter(const QByteArray &text)
{
    const std::optional<double> seconds = retryAfter({429, {{"Retry-After", text}}, {}});
    require(!seconds || (std::isfinite(*seconds) && *seconds > 0));
}

void check(int reader, const QByteArray &body)
{
    const QString host = QStringLiteral("https://127.0.0.1");
    switch (reader) {
    case 0:
        return checkQuotes(BinanceTickerProvider(host, november2022), body);
    case 1:
        return checkQuotes(OKXTickerProvider(host), body);
    case 2:
        return checkQuotes(BybitTickerProvider(host), body);
    case 3:
        return checkTable(ERAPIRateProvider(host), body);
    case 4:
        return checkTable(CurrencyAPIRateProvider(host), body);
    case 5:
        return checkCacheFile(body);
    default:
        return checkRetryAfter(body);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    constexpr int readers = 7;
    const QByteArray body(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
    check(data[0] % readers, body);
    return 0;
}
