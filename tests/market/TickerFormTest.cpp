#include "TickerTexts.h"

#include "support/TestClock.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const auto btc = QStringLiteral("BTC");

} // namespace

class TickerFormTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void strictForm_data();
    void strictForm();
    void nonAsciiNames();
    void keysInAnyOrder();
    void anEmptyListIsNoError();

private:
    std::unique_ptr<TickerProvider> provider(const QByteArray &name) { return providerNamed(name, m_clock.clock()); }

    TestClock m_clock;
};

void TickerFormTest::strictForm_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("body");
    const auto row = [](const char *name, const char *what, const QByteArray &body) {
        QTest::newRow(qPrintable(QLatin1String(name) + QLatin1Char(' ') + QLatin1String(what)))
            << QByteArray(name) << body;
    };
    // A good ticker comes first: one with a wrong form anywhere in the list still fails the whole answer.
    const QByteArray binance = binanceTicker("BTCUSDT", "1", "1", milliseconds(m_clock.now())) + ",";
    const char *const form = R"({"symbol":"X","priceChangePercent":"1","lastPrice":"1","closeTime":1})";
    const auto binanceRow = [&](const char *what, const char *from, const char *to) {
        row("binance", what, "[" + binance + QByteArray(form).replace(from, to) + "]");
    };
    binanceRow("without symbol", "symbol", "s");
    binanceRow("without lastPrice", "lastPrice", "l");
    binanceRow("without priceChangePercent", "priceChangePercent", "p");
    binanceRow("without closeTime", "closeTime", "c");
    binanceRow("number as symbol", R"("X")", "1");
    binanceRow("number as lastPrice", R"("lastPrice":"1")", R"("lastPrice":1)");
    binanceRow("number as priceChangePercent", R"("priceChangePercent":"1")", R"("priceChangePercent":1)");
    binanceRow("null as lastPrice", R"("lastPrice":"1")", R"("lastPrice":null)");
    binanceRow("text as closeTime", R"("closeTime":1)", R"("closeTime":"1")");
    binanceRow("bool as closeTime", R"("closeTime":1)", R"("closeTime":true)");
    row("binance", "number as ticker", "[" + binance + "1]");
    row("binance", "object instead of a list", form);
    row("binance", "empty body", "");
    row("binance", "blank body", " \n");
    row("binance", "page", "<!DOCTYPE html><html><body>Maintenance</body></html>");
    row("binance", "rest after the list", "[] []");
    row("binance", "wrong UTF-8", "[\"\xff\"]");

    const QByteArray okx = okxTicker("BTC-USDT", "1", "1") + ",";
    row("okx", "without open24h", okxBody(okx + R"({"instId":"X","last":"1"})"));
    row("okx", "without last", okxBody(okx + R"({"instId":"X","open24h":"1"})"));
    row("okx", "without instId", okxBody(okx + R"({"last":"1","open24h":"1"})"));
    row("okx", "number as last", okxBody(okx + R"({"instId":"X","last":1,"open24h":"1"})"));
    row("okx", "number as open24h", okxBody(okx + R"({"instId":"X","last":"1","open24h":1})"));
    row("okx", "number as instId", okxBody(okx + R"({"instId":1,"last":"1","open24h":"1"})"));
    row("okx", "number as code", R"({"code":0,"data":[]})");
    row("okx", "without code", R"({"data":[]})");
    row("okx", "without data", R"({"code":"0"})");
    row("okx", "object as data", R"({"code":"0","data":{}})");
    row("okx", "list instead of an object", "[]");

    const QByteArray bybit = bybitTicker("BTCUSDT", "1", "1") + ",";
    row("bybit", "without symbol", bybitBody(bybit + R"({"lastPrice":"1","price24hPcnt":"1"})"));
    row("bybit", "without lastPrice", bybitBody(bybit + R"({"symbol":"X","price24hPcnt":"1"})"));
    row("bybit", "without price24hPcnt", bybitBody(bybit + R"({"symbol":"X","lastPrice":"1"})"));
    row("bybit", "number as symbol", bybitBody(bybit + R"({"symbol":1,"lastPrice":"1","price24hPcnt":"1"})"));
    row("bybit", "number as lastPrice", bybitBody(bybit + R"({"symbol":"X","lastPrice":1,"price24hPcnt":"1"})"));
    row("bybit", "number as price24hPcnt", bybitBody(bybit + R"({"symbol":"X","lastPrice":"1","price24hPcnt":1})"));
    row("bybit", "text as retCode", R"({"retCode":"0","result":{"list":[]}})");
    row("bybit", "fraction as retCode", R"({"retCode":0.5,"result":{"list":[]}})");
    row("bybit", "without retCode", R"({"result":{"list":[]}})");
    row("bybit", "without result", R"({"retCode":0})");
    row("bybit", "without list", R"({"retCode":0,"result":{}})");
    row("bybit", "object as list", R"({"retCode":0,"result":{"list":{}}})");
}

void TickerFormTest::strictForm()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, body);
    const Result<TickerQuotes> result = provider(name)->parseQuotes(body, {btc});
    QVERIFY(!result);
    QVERIFY2(std::holds_alternative<DecodingError>(result.error()), qPrintable(description(result.error())));
}

void TickerFormTest::nonAsciiNames()
{
    const auto name = QStringLiteral("币安人生");
    const QByteArray pair = name.toUtf8() + "USDT";
    const qint64 now = milliseconds(m_clock.now());
    compare(provider("binance")->parseQuotes("[" + binanceTicker(pair, "0.5", "1", now) + "]", {name}),
            {{name, {0.5, 1.0}}});
    compare(provider("binance")->parseQuotes(
                "[" + binanceTicker(R"(\u5e01\u5b89\u4eba\u751fUSDT)", "0.5", "1", now) + "]", {name}),
            {{name, {0.5, 1.0}}});
    compare(provider("bybit")->parseQuotes(bybitBody(bybitTicker(pair, "2", "0")), {btc}), {});
}

void TickerFormTest::keysInAnyOrder()
{
    compare(provider("okx")->parseQuotes(
                R"({"data":[{"open24h":"100","last":"110","instId":"BTC-USDT","x":{"last":"1"}}],"code":"0"})", {btc}),
            {{btc, {110, 10.0}}});
    compare(provider("bybit")->parseQuotes(
                R"({"result":{"list":[{"price24hPcnt":"0","lastPrice":"1","symbol":"BTCUSDT"}]},"retCode":0})", {btc}),
            {{btc, {1, 0.0}}});
    QByteArray body = R"([{"closeTime":12345,"lastPrice":"1","symbol":"BTCUSDT","priceChangePercent":"2"}])";
    body.replace("12345", QByteArray::number(milliseconds(m_clock.now())));
    compare(provider("binance")->parseQuotes(body, {btc}), {{btc, {1, 2.0}}});
}

void TickerFormTest::anEmptyListIsNoError()
{
    compare(provider("binance")->parseQuotes("[]", {btc}), {});
    compare(provider("okx")->parseQuotes(okxBody({}), {btc}), {});
    compare(provider("bybit")->parseQuotes(bybitBody({}), {btc}), {});
}

QTEST_GUILESS_MAIN(TickerFormTest)
#include "TickerFormTest.moc"
