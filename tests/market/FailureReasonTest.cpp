#include "market/FailureReason.h"

#include <QTest>

using namespace tickwise;

class FailureReasonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reasons_data();
    void reasons();
    void summaries_data();
    void summaries();
    void causesDecide();
};

namespace {

using Reason = FailureReason;
using Causes = std::vector<ProviderFailure>;

TimePoint second(int seconds)
{
    return TimePoint(std::chrono::seconds(seconds));
}

ProviderFailure cause(Reason reason, std::optional<TimePoint> until = std::nullopt)
{
    return {QStringLiteral("exchange"), reason, until};
}

Error loading(UrlErrorCode code, int status = 0)
{
    return UrlLoadingError{code, {}, status};
}

} // namespace

void FailureReasonTest::reasons_data()
{
    QTest::addColumn<Error>("error");
    QTest::addColumn<Reason>("expected");
    using Code = UrlErrorCode;
    using Kind = TickerProviderError::Kind;
    const auto row = [](const char *name, const Error &error, Reason expected) {
        QTest::newRow(name) << error << expected;
    };
    row("offline", loading(Code::notConnectedToInternet), Reason::offline);
    row("host", loading(Code::cannotFindHost), Reason::hostNotFound);
    row("refused", loading(Code::cannotConnectToHost), Reason::unreachable);
    row("lost", loading(Code::networkConnectionLost), Reason::unreachable);
    row("nothing known", loading(Code::cannotLoadFromNetwork), Reason::unreachable);
    row("slow", loading(Code::timedOut), Reason::timedOut);
    row("clock", loading(Code::serverCertificateHasBadDate), Reason::clockWrong);
    row("certificate", loading(Code::serverCertificateUntrusted), Reason::secureConnectionFailed);
    row("TLS", loading(Code::secureConnectionFailed), Reason::secureConnectionFailed);
    row("451", loading(Code::badServerResponse, 451), Reason::regionBlocked);
    row("404", loading(Code::badServerResponse, 404), Reason::badAnswer);
    row("empty", loading(Code::zeroByteResource), Reason::badAnswer);
    row("form", loading(Code::cannotParseResponse), Reason::badAnswer);
    row("large", loading(Code::dataLengthExceedsMaximum), Reason::badAnswer);
    row("redirect", loading(Code::redirectRefused), Reason::badAnswer);
    row("address", loading(Code::badURL), Reason::badAnswer);
    row("cancelled", loading(Code::cancelled), Reason::cancelled);
    row("429", TickerProviderError{Kind::rateLimited, 30.0, 429}, Reason::rateLimited);
    row("ban", TickerProviderError{Kind::rateLimited, 600.0, 403, false}, Reason::rateLimited);
    row("block page", TickerProviderError{Kind::rateLimited, 600.0, 403, true}, Reason::regionBlocked);
    row("400", TickerProviderError{Kind::requestRejected, std::nullopt, 400}, Reason::badAnswer);
    row("decoding", DecodingError{QStringLiteral("x")}, Reason::badAnswer);
}

void FailureReasonTest::reasons()
{
    QFETCH(Error, error);
    QTEST(failureReason(error), "expected");
}

void FailureReasonTest::summaries_data()
{
    QTest::addColumn<Causes>("causes");
    QTest::addColumn<ProviderFailure>("expected");
    QTest::newRow("none") << Causes{} << ProviderFailure{{}, Reason::unreachable, std::nullopt};
    QTest::newRow("all offline") << Causes{cause(Reason::offline), cause(Reason::offline)} << cause(Reason::offline);
    QTest::newRow("the earliest end") << Causes{cause(Reason::rateLimited, second(90)),
                                                cause(Reason::rateLimited, second(30)), cause(Reason::rateLimited)}
                                      << cause(Reason::rateLimited, second(30));
    QTest::newRow("the first of equals") << Causes{{QStringLiteral("first"), Reason::timedOut, {}},
                                                   {QStringLiteral("second"), Reason::timedOut, {}}}
                                         << ProviderFailure{QStringLiteral("first"), Reason::timedOut, {}};
    // Each reason is told before all that follow it.
    const std::vector<std::pair<const char *, Reason>> order{
        {"clock", Reason::clockWrong},    {"offline", Reason::offline},         {"region", Reason::regionBlocked},
        {"limit", Reason::rateLimited},   {"host", Reason::hostNotFound},       {"TLS", Reason::secureConnectionFailed},
        {"slow", Reason::timedOut},       {"unreachable", Reason::unreachable}, {"nonsense", Reason::badAnswer},
        {"cancelled", Reason::cancelled},
    };
    for (std::size_t first = 0; first + 1 < order.size(); ++first) {
        Causes causes;
        for (std::size_t i = order.size(); i > first; --i)
            causes.push_back(cause(order[i - 1].second));
        QTest::newRow(order[first].first) << causes << cause(order[first].second);
    }
}

void FailureReasonTest::summaries()
{
    QFETCH(Causes, causes);
    QFETCH(ProviderFailure, expected);
    const ProviderFailure told = summary(causes);
    QVERIFY(told == expected);
}

void FailureReasonTest::causesDecide()
{
    UrlLoadingError error{UrlErrorCode::cannotLoadFromNetwork};
    error.causes = {cause(Reason::badAnswer), cause(Reason::regionBlocked)};
    QCOMPARE(failureReason(error), Reason::regionBlocked);
}

QTEST_GUILESS_MAIN(FailureReasonTest)
#include "FailureReasonTest.moc"
