#include "support/Excerpt.h"

#include "doubles/TestProgram.h"

using namespace tickwise;

class ExcerptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data();
    void texts();
    void utf8();
};

void ExcerptTest::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString full(200, u'a');
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("plain") << QStringLiteral("51001") << QStringLiteral("51001");
    QTest::newRow("200 characters") << full << full;
    QTest::newRow("201 characters") << full + u'b' << full;
    QTest::newRow("a megabyte") << QString(1 << 20, u'a') << full;
    QTest::newRow("two units a character")
        << QStringLiteral("\U0001F4B0").repeated(300) << QStringLiteral("\U0001F4B0").repeated(200);
    QTest::newRow("line break") << QStringLiteral("a\r\nb") << QStringLiteral("a\\u000d\\u000ab");
    QTest::newRow("escape sequence") << QStringLiteral("\x1b[31m") << QStringLiteral("\\u001b[31m");
    QTest::newRow("null byte") << QString(QChar(u'\0')) << QStringLiteral("\\u0000");
    QTest::newRow("C1 control") << QString(QChar(0x9b)) << QStringLiteral("\\u009b");
    QTest::newRow("direction override") << QString(QChar(0x202e)) << QStringLiteral("\\u202e");
    QTest::newRow("Chinese") << QStringLiteral("币安") << QStringLiteral("币安");
}

void ExcerptTest::texts()
{
    QFETCH(QString, text);
    QTEST(excerpt(text), "expected");
}

void ExcerptTest::utf8()
{
    QCOMPARE(excerpt(std::string_view("a\x01")), QStringLiteral("a\\u0001"));
    const QByteArray coins = QByteArray("\xf0\x9f\x92\xb0").repeated(100000);
    QCOMPARE(excerpt(std::string_view(coins.constData(), static_cast<std::size_t>(coins.size()))),
             QStringLiteral("\U0001F4B0").repeated(200));
}

TICKWISE_TEST(ExcerptTest)
#include "ExcerptTest.moc"
