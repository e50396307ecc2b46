#include "doubles/TestProgram.h"
#include "support/DecimalText.h"
#include "support/DetachedWork.h"
#include "support/Error.h"
#include "support/Subscription.h"

#include <QFutureWatcher>
#include <QSignalSpy>
#include <QThread>

using namespace tickwise;

class SupportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void detachedWorkRunsElsewhere();
    void descriptions_data();
    void descriptions();
    void decimalText_data();
    void decimalText();
    void deliversLaterOnce();
    void droppedDeliveryDeliversNothing();
};

void SupportTest::decimalText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<double>("value");
    const auto row = [](const char *text, bool valid, double value) {
        QTest::newRow(qPrintable(QStringLiteral("'%1'").arg(QLatin1String(text))))
            << QByteArray(text) << valid << value;
    };
    row("1.5", true, 1.5);
    row("-0.0125", true, -0.0125);
    row("+2", true, 2);
    row("1e3", true, 1000);
    row(".5", true, 0.5);
    row(" 1.5", false, 0);
    row("1.5 ", false, 0);
    row("", false, 0);
    row("+", false, 0);
    row("+-1", false, 0);
    row("abc", false, 0);
    row("1,5", false, 0);
    row("0x10", false, 0);
    row("nan", false, 0);
    row("inf", false, 0);
    row("1e999", false, 0);
}

void SupportTest::decimalText()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, valid);
    QFETCH(double, value);
    const std::optional<double> parsed = parseDecimal({text.constData(), static_cast<std::size_t>(text.size())});
    QCOMPARE(parsed.has_value(), valid);
    if (valid)
        QCOMPARE(*parsed, value);
}

void SupportTest::deliversLaterOnce()
{
    int calls = 0;
    const Subscription subscription = deliverLater<int>(7, [&](const Result<int> &result) { calls += result.value(); });
    QCOMPARE(calls, 0);
    QTRY_COMPARE(calls, 7);
    QCoreApplication::processEvents();
    QCOMPARE(calls, 7);
}

void SupportTest::droppedDeliveryDeliversNothing()
{
    int calls = 0;
    {
        const Subscription subscription = deliverLater<int>(7, [&](const Result<int> &) { ++calls; });
    }
    QCoreApplication::processEvents();
    QCOMPARE(calls, 0);
}

void SupportTest::detachedWorkRunsElsewhere()
{
    QFutureWatcher<QThread *> watcher;
    const QSignalSpy finished(&watcher, &QFutureWatcher<QThread *>::finished);
    watcher.setFuture(runDetached([] { return QThread::currentThread(); }));
    QVERIFY(finished.isEmpty());
    QTRY_COMPARE(finished.size(), 1);
    QVERIFY(watcher.result() != QThread::currentThread());
}

void SupportTest::descriptions_data()
{
    QTest::addColumn<Error>("error");
    QTest::addColumn<QString>("text");
    const auto row = [](const Error &error, const char *text) {
        QTest::newRow(text) << error << QString::fromUtf8(text);
    };
    using Kind = TickerProviderError::Kind;
    using Service = DesktopServiceError::Kind;
    row(UrlLoadingError{UrlErrorCode::timedOut}, "timed out");
    row(UrlLoadingError{UrlErrorCode::badServerResponse, QStringLiteral("busy"), 503},
        "bad server response (HTTP 503): busy");
    row(TickerProviderError{Kind::requestRejected, std::nullopt, 400}, "request rejected (HTTP 400)");
    row(TickerProviderError{Kind::rateLimited, 30.0, 429}, "rate limited (HTTP 429), retry after 30 s");
    row(TickerProviderError{Kind::rateLimited, 600.0, 403, true}, "region blocked (HTTP 403), retry after 600 s");
    row(ExchangeRateProviderError{1200, 429}, "rate limited (HTTP 429), retry after 1200 s");
    row(DecodingError{QStringLiteral("no object"), 7}, "no object at byte 7");
    row(FileError{QStringLiteral("/a/b"), QStringLiteral("no space")}, "/a/b: no space");
    row(CatalogError{{}, {QStringLiteral("one"), QStringLiteral("two")}}, "one, two");
    row(DesktopServiceError{Service::noMessageBus, {}}, "no message bus");
    row(DesktopServiceError{Service::noService, QStringLiteral("unknown name")}, "no such service: unknown name");
    row(DesktopServiceError{Service::timedOut, {}}, "no answer");
    row(DesktopServiceError{Service::refused, QStringLiteral("not today")}, "refused: not today");
}

void SupportTest::descriptions()
{
    QFETCH(Error, error);
    QTEST(description(error), "text");
}

TICKWISE_TEST(SupportTest)
#include "SupportTest.moc"
