#include "market/FailureReason.h"

#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using enum FailureReason;
using Kind = TickerProviderError::Kind;
using Causes = std::vector<ProviderFailure>;

namespace {

const auto binanceName = QStringLiteral("binance");
const auto okxName = QStringLiteral("okx");

ProviderFailure cause(FailureReason reason, const QString &provider = binanceName,
                      std::optional<TimePoint> until = std::nullopt)
{
    return {provider, reason, until};
}

TimePoint after(double seconds)
{
    return test::TestClock().now() + secondsDuration(seconds);
}

} // namespace

class FailureReasonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofAnError_data();
    void ofAnError();
    void summaryOrder();
    void summaryDoesNotDependOnTheOrder();
    void earliestEndOfRateLimitsComesFirst();
    void rateLimitWithAnEndComesFirst();
    void firstOfEqualCausesIsTold();
    void summaryOfNothing();
};

void FailureReasonTest::ofAnError_data()
{
    QTest::addColumn<Error>("error");
    QTest::addColumn<FailureReason>("reason");
    const auto url = [](const char *name, UrlErrorCode code, FailureReason reason) {
        QTest::newRow(name) << Error(UrlLoadingError{code}) << reason;
    };
    url("badURL", UrlErrorCode::badURL, badAnswer);
    url("badServerResponse", UrlErrorCode::badServerResponse, badAnswer);
    url("cannotLoadFromNetwork", UrlErrorCode::cannotLoadFromNetwork, unreachable);
    url("zeroByteResource", UrlErrorCode::zeroByteResource, badAnswer);
    url("cannotParseResponse", UrlErrorCode::cannotParseResponse, badAnswer);
    url("dataLengthExceedsMaximum", UrlErrorCode::dataLengthExceedsMaximum, badAnswer);
    url("redirectRefused", UrlErrorCode::redirectRefused, badAnswer);
    url("cancelled", UrlErrorCode::cancelled, cancelled);
    url("timedOut", UrlErrorCode::timedOut, timedOut);
    url("cannotFindHost", UrlErrorCode::cannotFindHost, hostNotFound);
    url("cannotConnectToHost", UrlErrorCode::cannotConnectToHost, unreachable);
    url("networkConnectionLost", UrlErrorCode::networkConnectionLost, unreachable);
    url("notConnectedToInternet", UrlErrorCode::notConnectedToInternet, offline);
    url("secureConnectionFailed", UrlErrorCode::secureConnectionFailed, secureConnectionFailed);
    url("serverCertificateHasBadDate", UrlErrorCode::serverCertificateHasBadDate, clockWrong);
    url("serverCertificateUntrusted", UrlErrorCode::serverCertificateUntrusted, secureConnectionFailed);
    QTest::newRow("451") << Error(UrlLoadingError{UrlErrorCode::badServerResponse, {}, 451}) << regionBlocked;
    QTest::newRow("503") << Error(UrlLoadingError{UrlErrorCode::badServerResponse, {}, 503}) << badAnswer;
    QTest::newRow("several providers")
        << Error(UrlLoadingError{UrlErrorCode::cannotLoadFromNetwork, {}, 0, {cause(badAnswer), cause(offline)}})
        << offline;
    QTest::newRow("rate limited") << Error(TickerProviderError{Kind::rateLimited, 30.0, 429}) << rateLimited;
    QTest::newRow("block page") << Error(TickerProviderError{Kind::rateLimited, 600.0, 403, true}) << regionBlocked;
    QTest::newRow("rejected") << Error(TickerProviderError{Kind::requestRejected, std::nullopt, 400}) << badAnswer;
    QTest::newRow("rate service limited") << Error(ExchangeRateProviderError{30, 429}) << rateLimited;
    QTest::newRow("undecodable") << Error(DecodingError{QStringLiteral("x")}) << badAnswer;
    QTest::newRow("file") << Error(FileError{}) << badAnswer;
    QTest::newRow("catalog") << Error(CatalogError{}) << badAnswer;
    QTest::newRow("desktop service") << Error(DesktopServiceError{}) << badAnswer;
}

void FailureReasonTest::ofAnError()
{
    QFETCH(Error, error);
    QFETCH(FailureReason, reason);
    QCOMPARE(failureReason(error), reason);
}

void FailureReasonTest::summaryOrder()
{
    const std::vector order{clockWrong, offline,     regionBlocked, rateLimited, hostNotFound, secureConnectionFailed,
                            timedOut,   unreachable, badAnswer,     cancelled};
    for (std::size_t first = 0; first < order.size(); ++first) {
        for (std::size_t second = first; second < order.size(); ++second) {
            QCOMPARE(summary({cause(order[first]), cause(order[second])}).reason, order[first]);
            QCOMPARE(summary({cause(order[second]), cause(order[first])}).reason, order[first]);
        }
    }
}

void FailureReasonTest::summaryDoesNotDependOnTheOrder()
{
    Causes causes{cause(badAnswer), cause(timedOut), cause(regionBlocked, okxName), cause(unreachable)};
    QCOMPARE(summary(causes), cause(regionBlocked, okxName));
    std::reverse(causes.begin(), causes.end());
    QCOMPARE(summary(causes), cause(regionBlocked, okxName));
}

void FailureReasonTest::earliestEndOfRateLimitsComesFirst()
{
    const Causes causes{cause(rateLimited, binanceName, after(600)), cause(rateLimited, okxName, after(30)),
                        cause(rateLimited, binanceName, after(60)), cause(badAnswer)};
    QCOMPARE(summary(causes), causes[1]);
}

void FailureReasonTest::rateLimitWithAnEndComesFirst()
{
    const Causes causes{cause(rateLimited), cause(rateLimited, okxName, after(600))};
    QCOMPARE(summary(causes), causes[1]);
    QCOMPARE(summary({causes[1], causes[0]}), causes[1]);
}

void FailureReasonTest::firstOfEqualCausesIsTold()
{
    QCOMPARE(summary({cause(timedOut, okxName), cause(timedOut, binanceName)}).provider, okxName);
}

void FailureReasonTest::summaryOfNothing()
{
    QCOMPARE(summary({}).reason, unreachable);
    QVERIFY(summary({}).provider.isEmpty());
}

TICKWISE_TEST(FailureReasonTest)
#include "FailureReasonTest.moc"
