#include "support/Markup.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class MarkupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainText_data();
    void plainText();
    void toolTips();
};

void MarkupTest::plainText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("markup");
    const auto row = [](const char *text, const char *markup) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(markup);
    };
    row("plain", "plain");
    row("<b>&amp; \"x\" > 1</b>", "&lt;b&gt;&amp;amp; \"x\" &gt; 1&lt;/b&gt;");
    row("two\nlines", "two<br/>lines");
    row("", "");
}

void MarkupTest::plainText()
{
    QFETCH(QString, text);
    QTEST(plainTextMarkup(text), "markup");
    QFETCH(QString, markup);
    QCOMPARE(plainTextMarkup(text, LineBreak::newline), markup.replace(QStringLiteral("<br/>"), QStringLiteral("\n")));
}

void MarkupTest::toolTips()
{
    QCOMPARE(toolTipMarkup(QStringLiteral("A & B"), QStringLiteral("x\ny")),
             QStringLiteral("<b>A &amp; B</b><br/>x<br/>y"));
    QCOMPARE(toolTipMarkup(QStringLiteral("A"), {}), QStringLiteral("<b>A</b><br/>"));
    QCOMPARE(toolTipMarkup({}, {}), QString());
}

TICKWISE_TEST(MarkupTest)
#include "MarkupTest.moc"
