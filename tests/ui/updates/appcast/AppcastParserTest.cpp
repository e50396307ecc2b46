#include "ui/updates/appcast/AppcastParser.h"

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
    void displayedVersions_data();
    void displayedVersions();
    void enclosures_data();
    void enclosures();
    void declaredEncodings_data();
    void declaredEncodings();
    void keepsTheOrderOfTheDocument();
    void leavesOutItems_data();
    void leavesOutItems();
    void refuses_data();
    void refuses();
    void neverExpandsEntities();
    void allowsADoctypeInsideNotes();
    void readsUpToTheLimits();
    void survivesDeepNesting();
    void refusesInTime_data();
    void refusesInTime();
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

void AppcastParserTest::displayedVersions_data()
{
    QTest::addColumn<QByteArray>("shortVersion");
    QTest::addColumn<QString>("displayed");
    const auto row = [](const char *name, const QByteArray &shortVersion, const QString &displayed) {
        QTest::newRow(name) << shortVersion << displayed;
    };
    const QString version = QStringLiteral("120");
    row("none", "", version);
    row("blanks only", "  ", version);
    row("with blanks around it", " 1.2 beta ", QStringLiteral("1.2 beta"));
    row("other scripts", "1.2 测试版", QStringLiteral("1.2 测试版"));
    row("64 characters", repeated("1", 64), QString(64, u'1'));
    row("64 characters beyond the basic plane", repeated("\xf0\x9f\x9a\x80", 64), QStringLiteral("🚀").repeated(64));
    row("65 characters", repeated("1", 65), version);
    row("3000 characters", repeated("1", 3000), version);
    row("line end inside", "1.2\n3", version);
    row("tab inside", "1.2\t3", version);
    row("right-to-left override", "1.2\xe2\x80\xae", version);
    row("line separator",
        "1.2\xe2\x80\xa8"
        "3",
        version);
    row("private character", "1.2\xee\x80\x80", version);
}

void AppcastParserTest::displayedVersions()
{
    QFETCH(QByteArray, shortVersion);
    QFETCH(QString, displayed);
    const auto items = parseAppcast(
        feedOf(itemOf("120", "<sparkle:shortVersionString>" + shortVersion + "</sparkle:shortVersionString>")));
    QVERIFY(items);
    QCOMPARE(displayVersion(items->front()), displayed);
}

void AppcastParserTest::enclosures_data()
{
    QTest::addColumn<QStringList>("systems");
    QTest::addColumn<int>("chosen"); // the enclosure's index
    const auto row = [](const char *name, const QStringList &systems, int chosen) {
        QTest::newRow(name) << systems << chosen;
    };
    const QString any;
    const QString linux_ = QStringLiteral("linux");
    const QString mac = QStringLiteral("macos");
    row("one for any", {any}, 0);
    row("one for Linux", {linux_}, 0);
    row("Linux written otherwise", {QStringLiteral(" Linux ")}, 0);
    row("Linux among others", {mac, linux_, QStringLiteral("windows")}, 1);
    row("Linux before any", {linux_, any}, 0);
    row("Linux after any", {any, linux_}, 1);
    row("any after another system", {mac, any}, 1);
    row("the first of several", {any, any}, 0);
    row("the first of several for Linux", {mac, linux_, linux_}, 1);
}

void AppcastParserTest::enclosures()
{
    QFETCH(QStringList, systems);
    QFETCH(int, chosen);
    QByteArray item;
    for (qsizetype i = 0; i < systems.size(); ++i) {
        const QByteArray number = QByteArray::number(i);
        item += "<enclosure url=\"https://updates.test/" + number + "\" length=\"1" + number + "\" sparkle:os=\"" +
                systems[i].toUtf8() + "\" sparkle:version=\"1." + number + "\" sparkle:edSignature=\"" + number +
                "\"/>";
    }
    const auto items = parseAppcast(feedOf("<item>" + item + "</item>"));
    QVERIFY(items);
    QCOMPARE(items->size(), std::size_t(1));
    const QString number = QString::number(chosen);
    QCOMPARE(items->front().url.path(), QString(u'/' + number));
    QCOMPARE(items->front().version, QString(QStringLiteral("1.") + number));
    QCOMPARE(items->front().length, 10 + chosen);
    QCOMPARE(items->front().signature, number.toLatin1());
}

void AppcastParserTest::declaredEncodings_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("none") << QByteArray("<?xml version=\"1.0\"?>") << true;
    QTest::newRow("no declaration") << QByteArray() << true;
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"UTF-8\"?>") << true;
    QTest::newRow("UTF-8") << QByteArray("<?xml version=\"1.0\" encoding='UTF-8'?>") << true;
    for (const char *name : {"UTF-7", "UTF-16", "UTF-32", "ISO-8859-1", "US-ASCII", "GB18030", "IBM037", "nonsense"})
        QTest::newRow(name) << QByteArray("<?xml version=\"1.0\" encoding=\"") + name + "\"?>" << false;
}

void AppcastParserTest::declaredEncodings()
{
    QFETCH(QByteArray, start);
    QFETCH(bool, accepted);
    const QByteArray feed = feedOf(itemOf("1.0", "<description>\xe2\x82\xac</description>"));
    const auto items = parseAppcast(start + feed.mid(feed.indexOf("<rss")));
    QCOMPARE(items.has_value(), accepted);
    if (accepted)
        QCOMPARE(items->front().releaseNotes, QStringLiteral("\u20ac"));
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
    QTest::newRow("for another system") << QByteArray(
        "<item><sparkle:version>2</sparkle:version><enclosure url=\"https://updates.test/a.dmg\""
        " sparkle:os=\"macos\"/></item>");
    QTest::newRow("another system behind http")
        << QByteArray("<item><sparkle:version>2</sparkle:version><enclosure url=\"http://updates.test/a.exe\""
                      " sparkle:os=\"windows\"/></item>");
    QTest::newRow("of a channel") << itemOf("2", "<sparkle:channel> beta </sparkle:channel>");
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
    row("not UTF-8", feedOf(itemOf("1.0", "<description>\xff\xfe</description>")), "UTF-8");
    row("UTF-16", QByteArray("<\0r\0s\0s\0/\0>\0", 12), "UTF-8");
    row("one byte more than 1 MiB", good + QByteArray(maximumAppcastBytes - good.size() + 1, ' '), "1 MiB");
    row("too many items", feedOf(repeated(itemOf("1.0"), int(maximumAppcastItems) + 1)), "too many items");
    row("document type", "<!DOCTYPE rss>" + good.mid(good.indexOf("<rss")), "document type");
    row("document type after a comment", "<?xml version=\"1.0\"?><!-- > --><!DOCTYPE rss SYSTEM \"x\"><rss/>",
        "document type");
    row("document type after a byte order mark", "\xef\xbb\xbf<!DOCTYPE rss [<!ENTITY a \"b\">]><rss/>",
        "document type");
    row("document type after the root", good + "<!DOCTYPE rss [<!ENTITY a \"b\">]>", "document type");
    row("a tag of 16 KiB and a byte", feedOf("<a b=\"" + repeated("c", 16 * 1024 - 7) + "\"/>"), "16 KiB");
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

void AppcastParserTest::refusesInTime_data()
{
    QTest::addColumn<QByteArray>("feed");
    QByteArray attributes;
    for (int i = 0; i < 105000; ++i)
        attributes += " a" + QByteArray::number(i) + "=''";
    QTest::newRow("105,000 attributes") << feedOf("<a" + attributes + "/>");
    QByteArray manyTags;
    for (int i = 0; i < 60; ++i)
        manyTags += "<a" + attributes.first(attributes.indexOf(" a2000=")) + "/>";
    QTest::newRow("2,000 attributes in each tag") << feedOf(manyTags);
    QByteArray namespaces;
    for (int i = 0; i < 30000; ++i)
        namespaces += "<n" + QByteArray::number(i) + " xmlns:n" + QByteArray::number(i) + "='u'>";
    QTest::newRow("30,000 namespaces") << feedOf("<item xmlns:z='z'>" + namespaces + repeated("<z:a/>", 20000));
    QByteArray entities = "+ADwAIQ-DOCTYPE rss [+ADwAIQ-ENTITY a0 +ACI-lol+ACIAPg-";
    for (int i = 1; i < 30; ++i) {
        const QByteArray before = "+ACY-a" + QByteArray::number(i - 1) + "+ADs-";
        entities += "+ADwAIQ-ENTITY a" + QByteArray::number(i) + " +ACI-" + repeated(before, 10) + "+ACIAPg-";
    }
    QTest::newRow("entities in UTF-7") << "<?xml version=\"1.0\" encoding=\"UTF-7\"?>" + entities +
                                              "]+AD4-<rss>+ACY-a29+ADs-</rss>";
}

// The test's own time limit is what a feed that is read slowly exceeds.
void AppcastParserTest::refusesInTime()
{
    QFETCH(QByteArray, feed);
    QVERIFY(feed.size() <= maximumAppcastBytes + 1024 * 1024);
    QVERIFY(!refusalOf(feed.first(std::min<qsizetype>(feed.size(), maximumAppcastBytes))).isEmpty());
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
