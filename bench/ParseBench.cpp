// parseQuotes of the exchanges' full lists for 25 wanted symbols, against simdjson's own DOM parse of the same bytes.
// Both read a body that is prepared outside the loop: the floor a padded_string, parseQuotes a QByteArray with spare
// capacity, as the network client delivers it. The counter `ratio` of each parser is its throughput as a share of the
// floor's, both taken in turns.
#include "doubles/TestData.h"
#include "market/exchanges/BinanceTickerProvider.h"
#include "market/exchanges/BybitTickerProvider.h"
#include "market/exchanges/OKXTickerProvider.h"

#include <benchmark/benchmark.h>

#include <simdjson.h>

#include <chrono>

using namespace tickwise;

namespace {

using Timer = std::chrono::steady_clock;

const QString generated = QStringLiteral("exchange/generated/");

QStringList wantedSymbols()
{
    return QStringLiteral(
               "BTC ETH SOL BNB XRP DOGE ADA TRX AVAX LINK LTC SHIB DOT UNI AAVE NEAR APT ARB OP SUI INJ ATOM "
               "FIL ETC XLM")
        .split(QLatin1Char(' '));
}

/// The time of the generated Binance list, so that none of its tickers is stale.
TimePoint listTime()
{
    return TimePoint(std::chrono::milliseconds(1787416525000));
}

simdjson::padded_string padded(const QByteArray &body)
{
    return simdjson::padded_string(body.constData(), static_cast<std::size_t>(body.size()));
}

/// The recorded list as the network client delivers it: with spare capacity after the body.
QByteArray received(const char *file)
{
    QByteArray body = test::readData(generated + QLatin1String(file));
    body.reserve(body.size() + static_cast<qsizetype>(simdjson::SIMDJSON_PADDING));
    return body;
}

void countBytes(benchmark::State &state, const QByteArray &body)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * body.size());
}

void floorOf(benchmark::State &state, const char *file)
{
    const QByteArray body = received(file);
    const simdjson::padded_string bytes = padded(body);
    simdjson::dom::parser parser;
    for (auto _ : state)
        benchmark::DoNotOptimize(parser.parse(bytes).error());
    countBytes(state, body);
}

template<class Action>
Timer::duration timeOf(const Action &action)
{
    const Timer::time_point start = Timer::now();
    action();
    return Timer::now() - start;
}

void parseQuotes(benchmark::State &state, const TickerProvider &provider, const char *file)
{
    const QByteArray body = received(file);
    const simdjson::padded_string bytes = padded(body);
    const QStringList symbols = wantedSymbols();
    if (provider.parseQuotes(body, symbols).value_or(TickerQuotes{}).size() < 20)
        state.SkipWithError("the list does not hold the wanted symbols");
    simdjson::dom::parser parser;
    Timer::duration floor{};
    Timer::duration ours{};
    for (auto _ : state) {
        const Timer::duration turn =
            timeOf([&] { benchmark::DoNotOptimize(provider.parseQuotes(body, symbols).has_value()); });
        floor += timeOf([&] { benchmark::DoNotOptimize(parser.parse(bytes).error()); });
        ours += turn;
        state.SetIterationTime(std::chrono::duration<double>(turn).count());
    }
    countBytes(state, body);
    state.counters["ratio"] = std::chrono::duration<double>(floor) / std::chrono::duration<double>(ours);
}

const BinanceTickerProvider binance(QStringLiteral("https://127.0.0.1/api/v3"), listTime);
const OKXTickerProvider okx(QStringLiteral("https://127.0.0.1"));
const BybitTickerProvider bybit(QStringLiteral("https://127.0.0.1"));

BENCHMARK_CAPTURE(floorOf, binance, "binance_ticker24hr_full_synthetic.json");
BENCHMARK_CAPTURE(parseQuotes, binance, binance, "binance_ticker24hr_full_synthetic.json")->UseManualTime();
BENCHMARK_CAPTURE(floorOf, okx, "okx_tickers_spot_full_synthetic.json");
BENCHMARK_CAPTURE(parseQuotes, okx, okx, "okx_tickers_spot_full_synthetic.json")->UseManualTime();
BENCHMARK_CAPTURE(floorOf, bybit, "bybit_tickers_spot_full_synthetic.json");
BENCHMARK_CAPTURE(parseQuotes, bybit, bybit, "bybit_tickers_spot_full_synthetic.json")->UseManualTime();

} // namespace

BENCHMARK_MAIN();
