#include "ui/updates/appcast/ReleaseNotesText.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class ReleaseNotesTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void strips_data();
    void strips();
    void isLinear();
};

void ReleaseNotesTextTest::strips_data()
{
    QTest::addColumn<QString>("notes");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char16_t *notes, const char16_t *text) {
        QTest::newRow(name) << QString::fromUtf16(notes) << QString::fromUtf16(text);
    };
    row("nothing", u"", u"");
    row("plain text keeps its lines", u"First\nSecond\n\n\n\nThird  word", u"First\nSecond\n\nThird word");
    row("carriage returns", u"First\r\nSecond", u"First\nSecond");
    row("lines of markup flow", u"<p>First\n  line</p>\n<p>Second</p>", u"First line\nSecond");
    row("inline markup", u"A <b>bold</b><i>er</i> move", u"A bolder move");
    row("line break", u"A<br/>B<BR>C", u"A\nB\nC");
    row("list", u"<ul>\n<li>One</li>\n<li>Two</li></ul>", u"\u2022 One\n\u2022 Two");
    row("headings", u"<h2>New</h2><p>Text</p>", u"New\nText");
    row("script and style", u"<style>p{color:red}</style><script>alert('<p>')</script>Text", u"Text");
    row("comment", u"A<!-- <p>hidden</p> -->B", u"AB");
    row("open comment", u"A<!-- hidden", u"A");
    row("open tag", u"A<p class=", u"A");
    row("open script", u"A<script>evil()", u"A");
    row("image", u"<img src=\"file:///etc/passwd\" alt=\"x\">Text", u"Text");
    row("references", u"1 &lt; 2 &amp;&amp; 3 &gt; 2 &#169; &#xe9; &hellip;", u"1 < 2 && 3 > 2 \u00a9 \u00e9 \u2026");
    row("resolved once", u"&amp;lt;b&amp;gt;", u"&lt;b&gt;");
    row("no references", u"a & b &unknown; &#xd800; &#0; &#99999999; &",
        u"a & b &unknown; &#xd800; &#0; &#99999999; &");
    row("last character of all", u"a&#x10ffff;b &#x110000;", u"a\U0010FFFFb &#x110000;");
    row("less than at the end", u"1 <", u"1 <");
    row("less than is no tag", u"1 < 2 and 3 <4", u"1 < 2 and 3 <4");
    row("control characters", u"a\u0007b\u202ec", u"abc");
    row("beyond the first plane", u"\U0001F680 up", u"\U0001F680 up");
}

void ReleaseNotesTextTest::strips()
{
    QFETCH(QString, notes);
    QFETCH(QString, text);
    QCOMPARE(releaseNotesText(notes), text);
}

void ReleaseNotesTextTest::isLinear()
{
    // Each would take minutes if every position looked through all the rest.
    const int times = 500000;
    QCOMPARE(releaseNotesText(QStringLiteral("<").repeated(times)).size(), times);
    QCOMPARE(releaseNotesText(QStringLiteral("&").repeated(times)).size(), times);
    QCOMPARE(releaseNotesText(QStringLiteral("<a").repeated(times)), QString());
    QCOMPARE(releaseNotesText(QStringLiteral("<p>").repeated(times)), QString());
    QCOMPARE(releaseNotesText(QStringLiteral("<script></script").repeated(times)), QString());
}

TICKWISE_TEST(ReleaseNotesTextTest)
#include "ReleaseNotesTextTest.moc"
