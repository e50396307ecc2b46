#include "support/Graphemes.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class GraphemesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void counts_data();
    void counts();
    void cuts_data();
    void cuts();
};

void GraphemesTest::counts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("count");
    QTest::newRow("empty") << QString() << qsizetype{0};
    QTest::newRow("letters") << QStringLiteral("BTC") << qsizetype{3};
    QTest::newRow("combining mark") << QStringLiteral("e\u0301x") << qsizetype{2};
    QTest::newRow("flag") << QStringLiteral("🇹🇼!") << qsizetype{2};
    QTest::newRow("family") << QStringLiteral("👨‍👩‍👧") << qsizetype{1};
    QTest::newRow("Chinese") << QStringLiteral("比特币") << qsizetype{3};
    QTest::newRow("line break") << QStringLiteral("a\r\nb") << qsizetype{3};
}

void GraphemesTest::counts()
{
    QFETCH(QString, text);
    QTEST(characterCount(text), "count");
}

void GraphemesTest::cuts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<QString>("cut");
    const QString text = QStringLiteral("e\u0301🇹🇼x");
    QTest::newRow("none") << text << qsizetype{0} << QString();
    QTest::newRow("one") << text << qsizetype{1} << QStringLiteral("e\u0301");
    QTest::newRow("two") << text << qsizetype{2} << QStringLiteral("e\u0301🇹🇼");
    QTest::newRow("all") << text << qsizetype{3} << text;
    QTest::newRow("more than there are") << text << qsizetype{4} << text;
    QTest::newRow("negative") << text << qsizetype{-1} << QString();
    QTest::newRow("empty") << QString() << qsizetype{2} << QString();
}

void GraphemesTest::cuts()
{
    QFETCH(QString, text);
    QFETCH(qsizetype, count);
    QTEST(firstCharacters(text, count), "cut");
}

TICKWISE_TEST(GraphemesTest)
#include "GraphemesTest.moc"
