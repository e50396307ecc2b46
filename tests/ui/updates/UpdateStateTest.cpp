#include "ui/updates/UpdateState.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class UpdateStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failures_data();
    void failures();
};

void UpdateStateTest::failures_data()
{
    QTest::addColumn<Error>("error");
    QTest::addColumn<UpdateFailureKind>("feed");
    QTest::addColumn<UpdateFailureKind>("download");
    using enum UpdateFailureKind;
    const auto url = [](const char *name, UrlErrorCode code, UpdateFailureKind feedKind,
                        UpdateFailureKind downloadKind) {
        QTest::newRow(name) << Error(UrlLoadingError{code}) << feedKind << downloadKind;
    };
    url("no network", UrlErrorCode::notConnectedToInternet, network, network);
    url("no host", UrlErrorCode::cannotFindHost, network, network);
    url("refused", UrlErrorCode::cannotConnectToHost, network, network);
    url("lost", UrlErrorCode::networkConnectionLost, network, network);
    url("timed out", UrlErrorCode::timedOut, network, network);
    url("no TLS", UrlErrorCode::secureConnectionFailed, network, network);
    url("untrusted", UrlErrorCode::serverCertificateUntrusted, network, network);
    url("too long", UrlErrorCode::dataLengthExceedsMaximum, tooLarge, tooLarge);
    url("wrong status", UrlErrorCode::badServerResponse, feed, network);
    const auto status = [](const char *name, int number, UpdateFailureKind feedKind, UpdateFailureKind downloadKind) {
        QTest::newRow(name) << Error(UrlLoadingError{UrlErrorCode::badServerResponse, {}, number}) << feedKind
                            << downloadKind;
    };
    status("404", 404, feedMissing, packageMissing);
    status("410", 410, feedMissing, packageMissing);
    status("403", 403, feed, network);
    url("redirected away", UrlErrorCode::redirectRefused, feed, network);
    QTest::newRow("not the format") << Error(DecodingError{QStringLiteral("no RSS"), std::nullopt}) << feed << network;
    QTest::newRow("file") << Error(FileError{QStringLiteral("/x"), QStringLiteral("full")}) << feed << disk;
}

void UpdateStateTest::failures()
{
    QFETCH(Error, error);
    QFETCH(UpdateFailureKind, feed);
    QFETCH(UpdateFailureKind, download);
    QCOMPARE(feedFailure(error).kind, feed);
    QCOMPARE(downloadFailure(error).kind, download);
    QCOMPARE(feedFailure(error).detail, description(error));
    QCOMPARE(downloadFailure(error).detail, description(error));
}

TICKWISE_TEST(UpdateStateTest)
#include "UpdateStateTest.moc"
