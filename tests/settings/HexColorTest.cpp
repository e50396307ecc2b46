#include "settings/HexColor.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class HexColorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parses_data();
    void parses();
    void refuses_data();
    void refuses();
    void writes();
};

void HexColorTest::parses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRgb>("rgb");
    QTest::newRow("plain") << QStringLiteral("#2CBD84") << qRgb(0x2c, 0xbd, 0x84);
    QTest::newRow("no hash") << QStringLiteral("F6465D") << qRgb(0xf6, 0x46, 0x5d);
    QTest::newRow("lower case, blanks and a line break") << QStringLiteral("  f6465d \n") << qRgb(0xf6, 0x46, 0x5d);
    QTest::newRow("tab, no-break space, next line")
        << QStringLiteral("\t\u00a0#abcdef\u0085") << qRgb(0xab, 0xcd, 0xef);
    QTest::newRow("plus sign") << QStringLiteral("+12345") << qRgb(0x01, 0x23, 0x45);
    QTest::newRow("hash and plus sign") << QStringLiteral("#+fffff") << qRgb(0x0f, 0xff, 0xff);
    QTest::newRow("every digit") << QStringLiteral("#012345") << qRgb(0x01, 0x23, 0x45);
    QTest::newRow("the other digits") << QStringLiteral("#6789ab") << qRgb(0x67, 0x89, 0xab);
    QTest::newRow("letters") << QStringLiteral("#AFafCD") << qRgb(0xaf, 0xaf, 0xcd);
    QTest::newRow("nines") << QStringLiteral("999999") << qRgb(0x99, 0x99, 0x99);
    QTest::newRow("black") << QStringLiteral("#000000") << qRgb(0, 0, 0);
    QTest::newRow("white") << QStringLiteral("#FFffFF") << qRgb(255, 255, 255);
}

void HexColorTest::parses()
{
    QFETCH(QString, text);
    QFETCH(QRgb, rgb);
    const std::optional<QColor> color = colorFromHex(text);
    QVERIFY(color.has_value());
    QCOMPARE(color->rgba(), rgb);
    QCOMPARE(color->alpha(), 255);
}

void HexColorTest::refuses_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"",        "#",      "   ",    "#12345",  "12345",  "#1234567", "#FFF",           "##12345",
          "# 12345", "12 345", "0x1234", "#-12345", "-00000", "++1234",   "#GGGGGG",        "#gggggg",
          "00000/",  "00000:", "00000@", "00000`",  "red",    "+",        "#12345\xc3\xa9", "1234.5"})
        QTest::newRow(text) << QString::fromUtf8(text);
    QTest::newRow("full-width digits") << QStringLiteral("１２３４５６");
    QTest::newRow("combining mark") << QStringLiteral("12345e\u0301");
    QTest::newRow("six flags") << QStringLiteral("🇹🇼").repeated(6);
    QTest::newRow("NUL") << QStringLiteral("12345") + QChar(0);
}

void HexColorTest::refuses()
{
    QFETCH(QString, text);
    QVERIFY(!colorFromHex(text).has_value());
}

void HexColorTest::writes()
{
    QCOMPARE(hexFromColor(QColor(44, 189, 132)), QStringLiteral("#2CBD84"));
    QCOMPARE(hexFromColor(QColor(0, 0, 0, 128)), QStringLiteral("#000000"));
    QCOMPARE(colorFromHex(hexFromColor(QColor(1, 2, 3))), std::optional(QColor(1, 2, 3)));
}

TICKWISE_TEST(HexColorTest)
#include "HexColorTest.moc"
