#include "ui/updates/AppcastParser.h"
#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

QByteArray feedOf(const QByteArray &items)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">\n"
           "<channel><title>Tickwise</title>" +
           items + "</channel></rss>\n";
}

QByteArray itemOf(const QByteArray &version, const QByteArray &more = {})
{
    return "<item><sparkle:version>" + version + "</sparkle:version>" + more +
           "<enclosure url=\"https://updates.test/tickwise.deb\" length=\"12\"/></item>";
}

QByteArray repeated(const QByteArray &text, int times)
{
    return text.repeated(times);
}

QString refusalOf(const QByteArray &feed)
{
    const auto items = parseAppcast(feed);
    return items ? QString() : std::get<DecodingError>(items.error()).text;
}

} // namespace

class AppcastParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryField();
    void readsVersionsFromTheEnclosure();
    void keepsTheOrderOfTheDocument();
    void leavesOutItems_data();
    void leavesOutItems();
    void refuses_data();
    void refuses();
    void neverExpandsEntities();
    void allowsADoctypeInsideNotes();
    void readsUpToTheLimits();
    void survivesDeepNesting();
    void ignoresForeignNamespaces();
    void cutsLongNotes();
};

void AppcastParserTest::readsEveryField()
{
    const auto items =
        parseAppcast(feedOf("<item><title>Version 1.2</title>"
                            "<sparkle:version>120</sparkle:version>"
                            "<sparkle:shortVersionString>1.2</sparkle:shortVersionString>"
                            "<sparkle:minimumSystemVersion> 12.4 </sparkle:minimumSystemVersion>"
                            "<description><![CDATA[<ul><li>Faster</li><li>A &amp; B</li></ul>]]></description>"
                            "<enclosure url=\"https://updates.test/tickwise_1.2_amd64.deb\" length=\"1048576\""
                            " type=\"application/vnd.debian.binary-package\""
                            " sparkle:edSignature=\"c2lnbmVk\"/></item>"));
    QVERIFY(items);
    QCOMPARE(items->size(), std::size_t(1));
    const AppcastItem expected{QStringLiteral("120"),
                               QStringLiteral("1.2"),
                               QStringLiteral("12.4"),
                               QUrl(QStringLiteral("https://updates.test/tickwise_1.2_amd64.deb")),
                               1048576,
                               QStringLiteral("application/vnd.debian.binary-package"),
                               "c2lnbmVk",
                               QStringLiteral("\u2022 Faster\n\u2022 A & B")};
    QCOMPARE(items->front(), expected);
    QCOMPARE(displayVersion(items->front()), QStringLiteral("1.2"));
}

void AppcastParserTest::readsVersionsFromTheEnclosure()
{
    const auto items = parseAppcast(feedOf("<item><enclosure url=\"https://updates.test/a.deb\" sparkle:version=\"7\""
                                           " sparkle:shortVersionString=\"0.7\" length=\"-4\"/></item>"));
    QVERIFY(items);
    QCOMPARE(items->front().version, QStringLiteral("7"));
    QCOMPARE(items->front().shortVersion, QStringLiteral("0.7"));
    QCOMPARE(items->front().length, 0);
    QVERIFY(items->front().signature.isEmpty());
}

void AppcastParserTest::keepsTheOrderOfTheDocument()
{
    const auto items = parseAppcast(feedOf(itemOf("1.1") + itemOf("1.3") + itemOf("1.2")));
    QVERIFY(items);
    QCOMPARE(items->size(), std::size_t(3));
    QCOMPARE(items->at(1).version, QStringLiteral("1.3"));
    QCOMPARE(displayVersion(items->at(1)), QStringLiteral("1.3"));
}

void AppcastParserTest::leavesOutItems_data()
{
    QTest::addColumn<QByteArray>("item");
    QTest::newRow("without a version") << QByteArray("<item><enclosure url=\"https://updates.test/a\"/></item>");
    QTest::newRow("without an enclosure") << QByteArray("<item><sparkle:version>2</sparkle:version></item>");
    QTest::newRow("version that is none") << itemOf("newest");
    QTest::newRow("version with markup") << itemOf("1.0&lt;b&gt;");
    QTest::newRow("version of 65 characters") << itemOf(repeated("1", 65));
    QTest::newRow("no item at all") << QByteArray();
}

void AppcastParserTest::leavesOutItems()
{
    QFETCH(QByteArray, item);
    const auto items = parseAppcast(feedOf(item + itemOf("1.0")));
    QVERIFY(items);
    QCOMPARE(items->size(), std::size_t(1));
    QCOMPARE(items->front().version, QStringLiteral("1.0"));
}

void AppcastParserTest::refuses_data()
{
    QTest::addColumn<QByteArray>("feed");
    QTest::addColumn<QString>("text"); // part of the refusal; empty: any
    const QByteArray good = feedOf(itemOf("1.0"));
    const auto row = [](const char *name, const QByteArray &feed, const char *text = "") {
        QTest::newRow(name) << feed << QString::fromLatin1(text);
    };
    const auto withPackage = [](const QByteArray &url) {
        return feedOf("<item><sparkle:version>1</sparkle:version><enclosure url=\"" + url + "\"/></item>");
    };
    row("nothing", {});
    row("no XML", "Not found\n");
    row("JSON", "{\"version\": \"1.0\"}");
    row("HTML page", "<!DOCTYPE html><html><body>Not here</body></html>", "document type");
    row("XHTML without a declaration", "<html><body><p>Not here</p></body></html>", "no RSS");
    row("Atom", "<feed xmlns=\"http://www.w3.org/2005/Atom\"/>", "no RSS");
    row("cut off", good.left(good.size() / 2));
    row("something after the end", good + "<rss/>");
    row("unbalanced", "<rss><channel></rss>");
    row("not UTF-8", feedOf(itemOf("1.0", "<description>\xff\xfe</description>")));
    row("UTF-16", QByteArray("<\0r\0s\0s\0/\0>\0", 12), "eight-bit");
    row("one byte more than 1 MiB", good + QByteArray(maximumAppcastBytes - good.size() + 1, ' '), "1 MiB");
    row("too many items", feedOf(repeated(itemOf("1.0"), int(maximumAppcastItems) + 1)), "too many items");
    row("document type", "<!DOCTYPE rss>" + good.mid(good.indexOf("<rss")), "document type");
    row("document type after a comment", "<?xml version=\"1.0\"?><!-- > --><!DOCTYPE rss SYSTEM \"x\"><rss/>",
        "document type");
    row("document type after a byte order mark", "\xef\xbb\xbf<!DOCTYPE rss [<!ENTITY a \"b\">]><rss/>",
        "document type");
    row("undeclared entity", feedOf(itemOf("1.0", "<description>&lol;</description>")));
    row("package behind http", withPackage("http://updates.test/a.deb"), "https");
    row("package in a file", withPackage("file:///etc/passwd"), "https");
    row("package without a host", withPackage("https:///a.deb"), "https");
    row("package with a relative address", withPackage("a.deb"), "https");
    row("package without an address", withPackage(""), "https");
    row("address of 3000 characters", withPackage("https://updates.test/" + repeated("a", 3000)), "too long");
    row("system version of 3000 characters",
        feedOf(
            itemOf("1.0", "<sparkle:minimumSystemVersion>" + repeated("1", 3000) + "</sparkle:minimumSystemVersion>")),
        "too long");
}

void AppcastParserTest::refuses()
{
    QFETCH(QByteArray, feed);
    QFETCH(QString, text);
    const QString refusal = refusalOf(feed);
    QVERIFY(!refusal.isEmpty());
    QVERIFY2(refusal.contains(text), qPrintable(refusal));
}

void AppcastParserTest::neverExpandsEntities()
{
    QByteArray bomb = "<?xml version=\"1.0\"?><!DOCTYPE lolz [<!ENTITY lol0 \"lol\">";
    QByteArray parameterBomb = "<?xml version=\"1.0\"?><!DOCTYPE lolz [<!ENTITY % p0 \"<!-- lol -->\">";
    for (int i = 1; i < 10; ++i) {
        const QByteArray number = QByteArray::number(i);
        const QByteArray before = QByteArray::number(i - 1);
        bomb += "<!ENTITY lol" + number + " \"" + repeated("&lol" + before + ";", 10) + "\">";
        parameterBomb += "<!ENTITY % p" + number + " \"" + repeated("&#37;p" + before + ";", 10) + "\">";
    }
    QVERIFY(refusalOf(bomb + "]><rss><channel>&lol9;</channel></rss>").contains(QStringLiteral("document type")));
    QVERIFY(refusalOf(parameterBomb + "%p9;]><rss/>").contains(QStringLiteral("document type")));
    QVERIFY(refusalOf("<!DOCTYPE rss [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><rss><channel>&x;</channel></rss>")
                .contains(QStringLiteral("document type")));
}

void AppcastParserTest::allowsADoctypeInsideNotes()
{
    const auto items =
        parseAppcast(feedOf(itemOf("1.0", "<description><![CDATA[<!DOCTYPE html><p>News</p>]]></description>")));
    QVERIFY(items);
    QCOMPARE(items->front().releaseNotes, QStringLiteral("News"));
}

void AppcastParserTest::readsUpToTheLimits()
{
    const QByteArray good = feedOf(repeated(itemOf("1.0"), int(maximumAppcastItems)));
    const auto items = parseAppcast(good + QByteArray(maximumAppcastBytes - good.size(), ' '));
    QVERIFY(items);
    QCOMPARE(items->size(), maximumAppcastItems);
}

void AppcastParserTest::survivesDeepNesting()
{
    constexpr int depth = 100000;
    const QByteArray nest = repeated("<a>", depth) + repeated("</a>", depth);
    for (const QByteArray &feed :
         {feedOf(nest + itemOf("1.0")), feedOf(itemOf("1.0", "<description>old" + nest + "</description>")),
          feedOf(itemOf("1.0", "<sparkle:shortVersionString>1" + nest + "</sparkle:shortVersionString>"))}) {
        const auto items = parseAppcast(feed);
        QVERIFY(items);
        QCOMPARE(items->size(), std::size_t(1));
    }
    QVERIFY(!refusalOf(repeated("<a>", 300000)).isEmpty());
}

void AppcastParserTest::ignoresForeignNamespaces()
{
    const auto items =
        parseAppcast(feedOf("<item xmlns:other=\"urn:other\"><other:version>9</other:version>"
                            "<other:enclosure url=\"https://other.test/a\"/>"
                            "<sparkle:version>1.0</sparkle:version>"
                            "<enclosure url=\"https://updates.test/a\" other:edSignature=\"x\"/></item>"));
    QVERIFY(items);
    QCOMPARE(items->front().version, QStringLiteral("1.0"));
    QCOMPARE(items->front().url.host(), QStringLiteral("updates.test"));
    QVERIFY(items->front().signature.isEmpty());
}

void AppcastParserTest::cutsLongNotes()
{
    const auto items = parseAppcast(feedOf(itemOf("1.0", "<description>" + repeated("n", 200000) + "</description>")));
    QVERIFY(items);
    QCOMPARE(items->front().releaseNotes.size(), maximumReleaseNotesLength);
}

TICKWISE_TEST(AppcastParserTest)
#include "AppcastParserTest.moc"
