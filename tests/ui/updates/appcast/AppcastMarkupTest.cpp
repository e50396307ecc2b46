#include "ui/updates/appcast/AppcastMarkup.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

QByteArray tagOf(qsizetype bytes)
{
    const QByteArray start = "<a b=\"";
    const QByteArray end = "\">";
    return start + QByteArray(bytes - start.size() - end.size(), 'c') + end;
}

QByteArray attributes(int count)
{
    QByteArray tag = "<a";
    for (int i = 0; i < count; ++i)
        tag += " a" + QByteArray::number(i) + (i % 2 == 0 ? "='1'" : "=\"2\"");
    return tag + "/>";
}

} // namespace

class AppcastMarkupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusals_data();
    void refusals();
};

void AppcastMarkupTest::refusals_data()
{
    QTest::addColumn<QByteArray>("markup");
    QTest::addColumn<QString>("refusal"); // part of it; empty: none
    const auto row = [](const char *name, const QByteArray &markup, const char *refusal) {
        QTest::newRow(name) << markup << QString::fromLatin1(refusal);
    };
    row("nothing", "", "");
    row("text", "no markup", "");
    row("comment", "<!-- <!DOCTYPE rss> --><rss/>", "");
    row("instruction", "<?xml <!DOCTYPE rss> ?><rss/>", "");
    row("character data", "<rss><![CDATA[<!DOCTYPE html>]]></rss>", "");
    row("inside a value", "<rss a='<!DOCTYPE rss>'/>", "");
    row("declaration", "<!DOCTYPE rss><rss/>", "document type");
    row("declaration inside the root", "<rss><!ENTITY a 'b'></rss>", "document type");
    row("declaration after a comment", "<!-- a --><!DOCTYPE rss>", "document type");
    row("declaration after an instruction", "<?xml a?><!DOCTYPE rss>", "document type");
    row("declaration after character data", "<a><![CDATA[b]]><!DOCTYPE rss>", "document type");
    row("declaration after a quoted angle bracket", "<a b='>' c=\">\"><!DOCTYPE rss>", "document type");
    row("comment without an end", "<!-- <!DOCTYPE rss>", "");
    row("comment that only seems to end", "<!--> <!DOCTYPE rss> -->", "");
    row("instruction without an end", "<? <!DOCTYPE rss>", "");
    row("character data without an end", "<![CDATA[ <!DOCTYPE rss>", "");
    row("longest tag", tagOf(maximumTagBytes), "");
    row("tag that is too long", tagOf(maximumTagBytes + 1), "16 KiB");
    row("tag without an end", "<a b='" + QByteArray(maximumTagBytes, 'c'), "16 KiB");
    row("end tag that is too long", "</a" + QByteArray(maximumTagBytes, ' ') + ">", "16 KiB");
    row("tag that is cut off", "<a b='c", "");
    row("long text after a tag", "<a>" + QByteArray(2 * maximumTagBytes, 'c') + "</a>", "");
    row("most attributes", attributes(maximumTagAttributes), "");
    row("too many attributes", attributes(maximumTagAttributes + 1), "attributes");
    row("attributes of several tags", attributes(60) + attributes(60), "");
    const QByteArray declaration = "<a xmlns:b='c'>";
    row("most namespaces", declaration.repeated(maximumNamespaceDeclarations), "");
    row("too many namespaces", declaration.repeated(maximumNamespaceDeclarations + 1), "namespaces");
}

void AppcastMarkupTest::refusals()
{
    QFETCH(QByteArray, markup);
    QFETCH(QString, refusal);
    const std::optional<QString> found = appcastMarkupRefusal(markup);
    QCOMPARE(found.has_value(), !refusal.isEmpty());
    QVERIFY2(found.value_or(QString()).contains(refusal), qPrintable(found.value_or(QString())));
}

TICKWISE_TEST(AppcastMarkupTest)
#include "AppcastMarkupTest.moc"
