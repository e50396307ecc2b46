#include "ui/updates/appcast/UpdateFeedFetch.h"

#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestProgram.h"
#include "ui/updates/appcast/AppcastParser.h"

using namespace tickwise;
using namespace std::chrono_literals;

class UpdateFeedFetchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForTheFeedWithinItsBounds();
    void deliversLater();
};

void UpdateFeedFetchTest::asksForTheFeedWithinItsBounds()
{
    test::ScriptedHttpClient http;
    const QUrl feed(QStringLiteral("https://example.org/appcast.xml"));
    const Subscription fetch = fetchUpdateFeed(http, feed, [](const UpdateFeedResult &) {});
    QCOMPARE(http.requests().size(), 1U);
    const HttpRequest &request = http.requests().front();
    QCOMPARE(request.url, feed);
    QVERIFY(request.timeout == 15s);
    QVERIFY(request.deadline == 60s);
    QCOMPARE(request.maximumBytes, qint64(maximumAppcastBytes));
    QVERIFY2(!request.mayRedirectTo, "the feed stays with its server");
    QVERIFY(request.acceptsCompression);
}

void UpdateFeedFetchTest::deliversLater()
{
    test::ScriptedHttpClient http;
    http.answer(QStringLiteral("https://example.org/"), 200, "<rss><channel></channel></rss>");
    std::vector<bool> results;
    const Subscription fetch =
        fetchUpdateFeed(http, QUrl(QStringLiteral("https://example.org/appcast.xml")),
                        [&](const UpdateFeedResult &result) { results.push_back(result && result->empty()); });
    QVERIFY(results.empty());
    QTRY_COMPARE(results, std::vector<bool>{true});
}

TICKWISE_TEST(UpdateFeedFetchTest)
#include "UpdateFeedFetchTest.moc"
