#include "market/rates/ExchangeRateProviderList.h"

#include "doubles/TestData.h"
#include "doubles/TestProgram.h"
#include "market/rates/CurrencyAPIRateProvider.h"
#include "market/rates/ERAPIRateProvider.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QByteArray erApi = "exchangerate";
const QByteArray currencyApi = "currencyapi";

Result<RateTable> decode(const QByteArray &service, const QByteArray &body)
{
    if (service == erApi)
        return ERAPIRateProvider(QString()).decode(body);
    return CurrencyAPIRateProvider(QString()).decode(body);
}

QByteArray bodyOf(const QByteArray &service, const QByteArray &rates)
{
    if (service == erApi)
        return R"({"result":"success","rates":{)" + rates + "}}";
    return R"({"date":"2026-09-29","usd":{)" + rates.toLower() + "}}";
}

const QString erApiFile = QStringLiteral("exchange/exchangerate_latest_USD_2024-01-09.json");
const QString currencyApiFile = QStringLiteral("exchange/currencyapi_usd.min_2026-09-29.json");

} // namespace

class ExchangeRateProviderListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order();
    void recordedTables_data();
    void recordedTables();
    void tables_data();
    void tables();
    void erApiReportsAFailure_data();
    void erApiReportsAFailure();
    void truncatedAtEveryKilobyte_data();
    void truncatedAtEveryKilobyte();
    void hostile_data();
    void hostile();
};

void ExchangeRateProviderListTest::order()
{
    QStringList addresses;
    for (const auto &provider : makeExchangeRateProviders(Endpoints{}))
        addresses.append(provider->urlString());
    QCOMPARE(
        addresses,
        QStringList({
            QStringLiteral("https://open.er-api.com/v6/latest/USD"),
            QStringLiteral("https://cdn.jsdelivr.net/npm/@fawazahmed0/currency-api@latest/v1/currencies/usd.min.json"),
            QStringLiteral("https://latest.currency-api.pages.dev/v1/currencies/usd.min.json"),
        }));
}

void ExchangeRateProviderListTest::recordedTables_data()
{
    QTest::addColumn<QByteArray>("service");
    QTest::addColumn<QString>("file");
    QTest::addColumn<qsizetype>("size");
    QTest::addColumn<double>("eur");
    QTest::addColumn<double>("krw");
    QTest::newRow("ER-API") << erApi << erApiFile << qsizetype(162) << 0.913083 << 1315.579762;
    QTest::newRow("currency-api") << currencyApi << currencyApiFile << qsizetype(339) << 0.88022588 << 1358.18865245;
}

void ExchangeRateProviderListTest::recordedTables()
{
    QFETCH(QByteArray, service);
    QFETCH(QString, file);
    const Result<RateTable> table = decode(service, readData(file));
    QVERIFY(table.has_value());
    QTEST(table->size(), "size");
    QTEST(table->value(QStringLiteral("EUR")), "eur");
    QTEST(table->value(QStringLiteral("KRW")), "krw");
    for (const char *code : {"USD", "CNY", "HKD", "JPY", "TWD", "SGD", "MYR", "AUD", "CAD", "GBP"})
        QVERIFY(table->value(QLatin1String(code)) > 0);
}

void ExchangeRateProviderListTest::tables_data()
{
    QTest::addColumn<QByteArray>("service");
    QTest::addColumn<QByteArray>("rates");
    QTest::addColumn<QString>("expected"); // the codes, or the error
    const auto parse = QStringLiteral("cannot parse response: ");
    const auto form = QStringLiteral("unexpected form: ");
    for (const QByteArray &service : {erApi, currencyApi}) {
        const auto row = [&](const char *name, const char *rates, const QString &expected) {
            QTest::newRow(QByteArray(service + " " + name).constData()) << service << QByteArray(rates) << expected;
        };
        row("two", R"("EUR":0.5,"GBP":0.25)", QStringLiteral("EUR 0.5, GBP 0.25"));
        row("whole number", R"("JPY":150)", QStringLiteral("JPY 150"));
        row("empty", "", parse + QStringLiteral("the table is empty"));
        row("display currency is zero", R"("EUR":0,"GBP":1)", parse + QStringLiteral("the rate of EUR is 0"));
        row("display currency beyond any number", R"("EUR":1e999,"GBP":1)",
            parse + QStringLiteral("the rate of EUR is 0"));
        row("display currency is negative", R"("GBP":1,"EUR":-1)", parse + QStringLiteral("the rate of EUR is -1"));
        row("US dollar is zero", R"("GBP":1,"USD":0)", parse + QStringLiteral("the rate of USD is 0"));
        row("another is zero", R"("ZWL":0,"GBP":1)", QStringLiteral("GBP 1"));
        row("another is negative", R"("ZWL":-5,"GBP":1)", QStringLiteral("GBP 1"));
        row("only another that is zero", R"("ZWL":0)", parse + QStringLiteral("the table is empty"));
        row("text", R"("EUR":"0.5")", form + QStringLiteral("the rate of EUR is not a number"));
        row("text of another", R"("GBP":1,"ZWL":"1")", form + QStringLiteral("the rate of ZWL is not a number"));
        row("more than 64 bits", R"("EUR":100000000000000000000)", QStringLiteral("EUR 1e+20"));
        row("another beyond any number", R"("ZWL":1e999,"GBP":1)", QStringLiteral("GBP 1"));
        row("another in words", R"("GBP":1,"Z\u001b":"x")",
            form + QStringLiteral("the rate of Z\\u001b is not a number"));
        row("null", R"("EUR":null)", form + QStringLiteral("the rate of EUR is not a number"));
    }
}

void ExchangeRateProviderListTest::tables()
{
    QFETCH(QByteArray, service);
    QFETCH(QByteArray, rates);
    QByteArray body = bodyOf(service, rates);
    const Result<RateTable> table = decode(service, body);
    QStringList lines;
    if (table) {
        for (auto rate = table->cbegin(); rate != table->cend(); ++rate)
            lines.append(QStringLiteral("%1 %2").arg(rate.key()).arg(rate.value()));
        lines.sort();
    }
    const QString told = table ? lines.join(QStringLiteral(", ")) : description(table.error());
    QTEST(told, "expected");
}

void ExchangeRateProviderListTest::erApiReportsAFailure_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    QTest::newRow("recorded") << readData(QStringLiteral("exchange/exchangerate_error_unsupported_code.json"))
                              << QStringLiteral("bad server response: the service reports error");
    QTest::newRow("with rates") << QByteArray(R"({"result":"Success","rates":{"EUR":1}})")
                                << QStringLiteral("bad server response: the service reports Success");
    QTest::newRow("a long one") << "{\"result\":\"" + QByteArray(1 << 20, 'e') + "\"}"
                                << QStringLiteral("bad server response: the service reports ") + QString(200, u'e');
    QTest::newRow("control characters") << QByteArray(R"({"result":"\u001b[31m\n"})")
                                        << QStringLiteral(
                                               "bad server response: the service reports \\u001b[31m\\u000a");
    QTest::newRow("no result") << QByteArray(R"({"rates":{"EUR":1}})")
                               << QStringLiteral("unexpected form: result is not a text");
    QTest::newRow("number") << QByteArray(R"({"result":1,"rates":{"EUR":1}})")
                            << QStringLiteral("unexpected form: result is not a text");
}

void ExchangeRateProviderListTest::erApiReportsAFailure()
{
    QFETCH(QByteArray, body);
    const Result<RateTable> table = decode(erApi, body);
    QVERIFY(!table);
    QTEST(description(table.error()), "expected");
}

void ExchangeRateProviderListTest::truncatedAtEveryKilobyte_data()
{
    QTest::addColumn<QByteArray>("service");
    QTest::addColumn<QString>("file");
    QTest::newRow("ER-API") << erApi << erApiFile;
    QTest::newRow("currency-api") << currencyApi << currencyApiFile;
}

void ExchangeRateProviderListTest::truncatedAtEveryKilobyte()
{
    QFETCH(QByteArray, service);
    QFETCH(QString, file);
    const QByteArray body = readData(file);
    for (qsizetype length = 0; length < body.size(); length += 1024)
        QVERIFY(std::holds_alternative<DecodingError>(decode(service, body.first(length)).error()));
}

void ExchangeRateProviderListTest::hostile_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("page") << QByteArray("<html><body>Service unavailable</body></html>");
    QTest::newRow("list") << QByteArray("[1,2]");
    QTest::newRow("number") << QByteArray("1");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("no table") << QByteArray(R"({"result":"success"})");
    QTest::newRow("list as table") << QByteArray(R"({"result":"success","rates":[],"usd":[]})");
    QTest::newRow("deep") << QByteArray(4 * 1024 * 1024, '[') + QByteArray(4 * 1024 * 1024, ']');
    QTest::newRow("deep objects") << QByteArray(R"({"a":)").repeated(1024 * 1024);
    QTest::newRow("wrong UTF-8") << QByteArray("{\"result\":\"success\",\"rates\":{\"\xff\":1},\"usd\":{\"\xff\":1}}");
}

void ExchangeRateProviderListTest::hostile()
{
    QFETCH(QByteArray, body);
    for (const QByteArray &service : {erApi, currencyApi}) {
        const Result<RateTable> table = decode(service, body);
        QVERIFY(!table);
        QVERIFY2(std::holds_alternative<DecodingError>(table.error()), qPrintable(description(table.error())));
    }
}

TICKWISE_TEST(ExchangeRateProviderListTest)
#include "ExchangeRateProviderListTest.moc"
