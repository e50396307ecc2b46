// The ticker parsers on what the exchanges really answered, and on damaged forms of it.
#include "market/HttpStatus.h"
#include "market/TickerProviders.h"
#include "support/TestData.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto btc = QStringLiteral("BTC");
const auto eth = QStringLiteral("ETH");

Clock at(qint64 milliseconds)
{
    return [milliseconds] { return TimePoint(std::chrono::milliseconds(milliseconds)); };
}

constexpr qint64 november2022 = 1669012567880;
constexpr qint64 august2026 = 1787416525000;

std::unique_ptr<TickerProvider> providerNamed(const QString &name, qint64 time = november2022)
{
    const auto host = QStringLiteral("https://exchange.example");
    if (name == QStringLiteral("okx"))
        return std::make_unique<OKXTickerProvider>(host);
    if (name == QStringLiteral("bybit"))
        return std::make_unique<BybitTickerProvider>(host);
    return std::make_unique<BinanceTickerProvider>(host, at(time));
}

QByteArray exchangeData(const QString &file)
{
    return readData(QStringLiteral("exchange/") + file);
}

QByteArray deepList(qsizetype depth)
{
    return QByteArray(depth, '[') + QByteArray(depth, ']');
}

} // namespace

class TickerBodiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordedPrices_data();
    void recordedPrices();
    void staleRecordsOfAFullList();
    void pairsWithoutATrade();
    void everyInstrumentOfTheGeneratedLists_data();
    void everyInstrumentOfTheGeneratedLists();
    void errorAnswers_data();
    void errorAnswers();
    void truncatedAtEveryKilobyte_data();
    void truncatedAtEveryKilobyte();
    void hostile_data();
    void hostile();
    void ordinaryAfterHostile();
};

void TickerBodiesTest::recordedPrices_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("file");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<TickerQuotes>("expected");
    const auto row = [](const char *provider, const char *file, qint64 time, const TickerQuotes &expected) {
        QTest::newRow(file) << QString::fromLatin1(provider) << QString::fromLatin1(file) << time << expected;
    };
    row("binance", "binance_ticker24hr_all_2019-08-22.json", 1566445106532,
        {{btc, {9912.33, -4.322}}, {eth, {184.8, -3.479}}});
    row("binance", "binance_ticker24hr_all_2022-11-21.json", november2022,
        {{btc, {16176.4, -3.092}}, {eth, {1131.67, -7.205}}});
    row("binance", "binance_ticker24hr_symbols12_2022-11-21.json", november2022,
        {{btc, {16176.4, -3.092}}, {eth, {1131.67, -7.205}}});
    row("okx", "okx_tickers_spot_all_2022-11-21.json", 0,
        {{btc, {16175.9, (16175.9 - 16691.9) / 16691.9 * 100}}, {eth, {1132.01, (1132.01 - 1219.39) / 1219.39 * 100}}});
    row("okx", "okx_ticker_BTC-USDT_2026-08-22.json", 0, {{btc, {77218.1, (77218.1 - 77323.8) / 77323.8 * 100}}});
    row("bybit", "bybit_tickers_spot_BTCUSDT_2023-01-16.json", 0, {{btc, {20533.13, 0.68}}});
    row("bybit", "bybit_tickers_spot_real_records.json", 0, {{btc, {25922.39, 0.09}}, {eth, {1739.07, -0.19}}});
}

void TickerBodiesTest::recordedPrices()
{
    QFETCH(QString, provider);
    QFETCH(QString, file);
    QFETCH(qint64, time);
    QFETCH(TickerQuotes, expected);
    const Result<TickerQuotes> quotes = providerNamed(provider, time)->parseQuotes(exchangeData(file), {btc, eth});
    QVERIFY(quotes.has_value());
    QCOMPARE(quotes->size(), expected.size());
    for (const QString &symbol : expected.keys()) {
        QCOMPARE((*quotes)[symbol].priceUsd, expected[symbol].priceUsd);
        QVERIFY((*quotes)[symbol].change24hPercent.has_value());
        QCOMPARE(*(*quotes)[symbol].change24hPercent, *expected[symbol].change24hPercent);
    }
}

void TickerBodiesTest::staleRecordsOfAFullList()
{
    const QByteArray body = exchangeData(QStringLiteral("binance_ticker24hr_all_2022-11-21.json"));
    QStringList symbols;
    for (const QJsonValueRef record : QJsonDocument::fromJson(body).array()) {
        const QString pair = record.toObject()[QStringLiteral("symbol")].toString();
        if (pair.endsWith(QStringLiteral("USDT")))
            symbols.append(pair.chopped(4));
    }
    QCOMPARE(symbols.size(), 415);
    const auto fresh = providerNamed(QStringLiteral("binance"))->parseQuotes(body, symbols);
    QCOMPARE(fresh->size(), 343);
    QVERIFY(!fresh->contains(QStringLiteral("VEN"))); // delisted since 2018
    const auto late =
        providerNamed(QStringLiteral("binance"), november2022 + 3600 * 1000 + 20)->parseQuotes(body, symbols);
    QVERIFY(late.has_value());
    QVERIFY(late->isEmpty());
}

void TickerBodiesTest::pairsWithoutATrade()
{
    const QByteArray body = exchangeData(QStringLiteral("binance_ticker24hr_zero_trades_2022-11-21.json"));
    const auto quotes = providerNamed(QStringLiteral("binance"))->parseQuotes(body, {btc, QStringLiteral("MCO")});
    QVERIFY(quotes.has_value());
    QVERIFY(quotes->isEmpty());
}

void TickerBodiesTest::everyInstrumentOfTheGeneratedLists_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("suffix");
    QTest::newRow("binance") << QStringLiteral("binance") << QStringLiteral("binance_ticker24hr_full_synthetic.json")
                             << QStringLiteral("USDT");
    QTest::newRow("okx") << QStringLiteral("okx") << QStringLiteral("okx_tickers_spot_full_synthetic.json")
                         << QStringLiteral("-USDT");
    QTest::newRow("bybit") << QStringLiteral("bybit") << QStringLiteral("bybit_tickers_spot_full_synthetic.json")
                           << QStringLiteral("USDT");
}

void TickerBodiesTest::everyInstrumentOfTheGeneratedLists()
{
    QFETCH(QString, provider);
    QFETCH(QString, file);
    QFETCH(QString, suffix);
    const QByteArray body = exchangeData(QStringLiteral("generated/") + file);
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonObject root = document.object();
    const QJsonArray list = provider == QStringLiteral("binance") ? document.array()
                            : provider == QStringLiteral("okx")
                                ? root[QStringLiteral("data")].toArray()
                                : root[QStringLiteral("result")].toObject()[QStringLiteral("list")].toArray();
    const QString nameKey = provider == QStringLiteral("okx") ? QStringLiteral("instId") : QStringLiteral("symbol");
    const QString priceKey = provider == QStringLiteral("okx") ? QStringLiteral("last") : QStringLiteral("lastPrice");
    QHash<QString, double> expected;
    for (const QJsonValue &record : list) {
        const QString pair = record[nameKey].toString();
        if (pair.endsWith(suffix))
            expected.insert(pair.chopped(suffix.size()), record[priceKey].toString().toDouble());
    }
    QVERIFY(expected.size() > 200);
    const auto quotes = providerNamed(provider, august2026)->parseQuotes(body, expected.keys());
    QVERIFY(quotes.has_value());
    QCOMPARE(quotes->size(), expected.size());
    for (auto quote = quotes->cbegin(); quote != quotes->cend(); ++quote)
        QCOMPARE(quote->priceUsd, expected.value(quote.key(), -1));
}

void TickerBodiesTest::errorAnswers_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *file, const char *expected) {
        QTest::newRow(file) << QString::fromLatin1(file) << QString::fromLatin1(expected);
    };
    row("binance_error_1121_invalid_symbol.json", "request rejected (HTTP 400)");
    row("binance_error_1100_illegal_characters.json", "request rejected (HTTP 400)");
    row("binance_error_1003_http429.json", "rate limited (HTTP 429)");
    row("binance_error_1003_http418_banned_old.json", "rate limited (HTTP 418)");
    row("okx_error_50011_http429.json", "rate limited (HTTP 429)");
    row("okx_error_50014_http400.json", "request rejected (HTTP 400)");
    row("okx_error_51001_unknown_instrument.json", "bad server response: the exchange reports code 51001");
    row("okx_error_http404.json", "bad server response (HTTP 404)");
    row("bybit_error_10001_not_supported_symbols.json", "bad server response: the exchange reports code 10001");
    row("bybit_error_10006_too_many_visits.json", "bad server response: the exchange reports code 10006");
    row("bybit_http403_country_block.json", "rate limited (HTTP 403), retry after 600 s");
}

void TickerBodiesTest::errorAnswers()
{
    QFETCH(QString, file);
    const QJsonArray index = QJsonDocument::fromJson(exchangeData(QStringLiteral("index.json"))).array();
    QJsonObject entry;
    for (const QJsonValue &candidate : index) {
        if (candidate[QStringLiteral("file")].toString() == file)
            entry = candidate.toObject();
    }
    HttpResponse response;
    response.status = entry[QStringLiteral("status")].toInt();
    response.body = exchangeData(file);
    const auto provider = providerNamed(entry[QStringLiteral("provider")].toString());
    const Result<TickerQuotes> quotes = classifyTickerResponse(response).and_then(
        [&](const QByteArray &body) { return provider->parseQuotes(body, {btc}); });
    QVERIFY(!quotes);
    QTEST(description(quotes.error()), "expected");
}

void TickerBodiesTest::truncatedAtEveryKilobyte_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<QString>("file");
    QTest::newRow("binance") << QStringLiteral("binance") << QStringLiteral("binance_ticker24hr_all_2019-08-22.json");
    QTest::newRow("okx") << QStringLiteral("okx") << QStringLiteral("okx_tickers_spot_all_2022-11-21.json");
    QTest::newRow("bybit") << QStringLiteral("bybit")
                           << QStringLiteral("generated/bybit_tickers_spot_full_synthetic.json");
}

void TickerBodiesTest::truncatedAtEveryKilobyte()
{
    QFETCH(QString, provider);
    QFETCH(QString, file);
    const QByteArray body = exchangeData(file);
    const auto parser = providerNamed(provider, 1566445106532);
    QVERIFY(parser->parseQuotes(body, {btc}).has_value());
    for (qsizetype length = 0; length < body.size(); length += 1024) {
        const Result<TickerQuotes> quotes = parser->parseQuotes(body.first(length), {btc});
        QVERIFY2(!quotes, qPrintable(QString::number(length)));
        QVERIFY(std::holds_alternative<DecodingError>(quotes.error()));
    }
}

void TickerBodiesTest::hostile_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("deep") << deepList(2000);
    QTest::newRow("very deep") << deepList(4 * 1024 * 1024);
    QTest::newRow("open brackets") << QByteArray(8 * 1024 * 1024, '[');
    QTest::newRow("larger than the largest") << QByteArray("[\"") + QByteArray(16 * 1024 * 1024, 'a') + "\"]";
    QTest::newRow("zero bytes") << QByteArray(1024, '\0');
    QTest::newRow("byte order mark only") << QByteArray("\xef\xbb\xbf");
    QTest::newRow("lone surrogate") << QByteArray(R"(["\ud800"])");
    QTest::newRow("number too long") << "[" + QByteArray(100000, '9') + "]";
    QTest::newRow("open text") << QByteArray("[\"abc");
    QTest::newRow("lone backslash") << QByteArray("[\"\\");
}

void TickerBodiesTest::hostile()
{
    QFETCH(QByteArray, body);
    for (const char *name : {"binance", "okx", "bybit"}) {
        const Result<TickerQuotes> quotes = providerNamed(QLatin1String(name))->parseQuotes(body, {btc});
        QVERIFY(!quotes);
        QVERIFY(std::holds_alternative<DecodingError>(quotes.error()));
    }
}

void TickerBodiesTest::ordinaryAfterHostile()
{
    const auto provider = providerNamed(QStringLiteral("binance"));
    const QByteArray body = exchangeData(QStringLiteral("binance_ticker24hr_symbols12_2022-11-21.json"));
    QVERIFY(!provider->parseQuotes(QByteArray(8 * 1024 * 1024, '['), {btc}));
    QCOMPARE(provider->parseQuotes(body, {btc})->value(btc).priceUsd, 16176.4);
    QVERIFY(!provider->parseQuotes("[", {btc}));
    QCOMPARE(provider->parseQuotes(body, {btc})->value(btc).priceUsd, 16176.4);
}

QTEST_GUILESS_MAIN(TickerBodiesTest)
#include "TickerBodiesTest.moc"
