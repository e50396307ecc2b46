#include "platform/notifications/NotificationText.h"

#include "doubles/Languages.h"
#include "doubles/TestProgram.h"
#include "platform/notifications/TestIdentity.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

QVariantList argumentsFor(const QString &body, const QStringList &capabilities)
{
    return notifyArguments({QStringLiteral("id"), QStringLiteral("A & <B>"), body}, tickwiseIdentity, capabilities);
}

} // namespace

class NotificationTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lines_data();
    void lines();
    void argumentsForAServiceThatCanNothing();
    void markupIsEscapedWhereItIsRead_data();
    void markupIsEscapedWhereItIsRead();
    void actionInTheSharedLanguage();
    void soundHintWhereItIsKnown();
};

void NotificationTextTest::lines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    const auto repeated = [](const QString &text, int count) { return text.repeated(count); };
    const QString family = QString::fromUtf8("👩‍👩‍👧");
    QTest::newRow("plain") << QStringLiteral("Bitcoin") << QStringLiteral("Bitcoin");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("controls") << QStringLiteral("a\nb\tc\x1b[1m") + QChar(u'\0') + QChar(0x2028) + QStringLiteral("d")
                              << QStringLiteral("a b c [1m  d");
    QTest::newRow("200 characters") << repeated(QStringLiteral("x"), 200) << repeated(QStringLiteral("x"), 200);
    QTest::newRow("201 characters") << repeated(QStringLiteral("x"), 201)
                                    << repeated(QStringLiteral("x"), 199) + QStringLiteral("…");
    QTest::newRow("joined characters stay whole")
        << repeated(family, 300) << repeated(family, 199) + QStringLiteral("…");
    QTest::newRow("short in characters") << repeated(family, 150) << repeated(family, 150);
}

void NotificationTextTest::lines()
{
    QFETCH(QString, text);
    QFETCH(QString, line);
    QCOMPARE(notificationLine(text), line);
}

void NotificationTextTest::argumentsForAServiceThatCanNothing()
{
    const QVariantMap hints{{QStringLiteral("urgency"), QVariant::fromValue<uchar>(1)},
                            {QStringLiteral("desktop-entry"), QStringLiteral("com.pelmo.tickwise")}};
    QCOMPARE(argumentsFor(QStringLiteral("body"), {}),
             (QVariantList{QStringLiteral("Tickwise"), 0U, QStringLiteral("icon-name"), QStringLiteral("A & <B>"),
                           QStringLiteral("body"), QStringList(), hints, -1}));
}

void NotificationTextTest::markupIsEscapedWhereItIsRead_data()
{
    QTest::addColumn<QStringList>("capabilities");
    QTest::addColumn<QString>("body");
    const QString body = QStringLiteral("<b>&amp; \"x\" > 1</b>");
    QTest::newRow("read") << QStringList{QStringLiteral("body"), QStringLiteral("body-markup")}
                          << QStringLiteral("&lt;b&gt;&amp;amp; \"x\" &gt; 1&lt;/b&gt;");
    QTest::newRow("not read") << QStringList{QStringLiteral("body")} << body;
}

void NotificationTextTest::markupIsEscapedWhereItIsRead()
{
    QFETCH(QStringList, capabilities);
    QFETCH(QString, body);
    const QVariantList arguments = argumentsFor(QStringLiteral("<b>&amp; \"x\" > 1</b>"), capabilities);
    QCOMPARE(arguments.at(4).toString(), body);
    QCOMPARE(arguments.at(3).toString(), QStringLiteral("A & <B>")); // a summary is never markup
}

void NotificationTextTest::actionInTheSharedLanguage()
{
    test::useLanguage(AppLanguage::zhHans);
    const QVariantList arguments = argumentsFor({}, {QStringLiteral("actions")});
    test::useLanguage(AppLanguage::en);
    QCOMPARE(arguments.at(5).toStringList(), (QStringList{QStringLiteral("default"), QStringLiteral("打开 Tickwise")}));
}

void NotificationTextTest::soundHintWhereItIsKnown()
{
    const auto hints = [](const QStringList &capabilities) { return argumentsFor({}, capabilities).at(6).toMap(); };
    QCOMPARE(hints({QStringLiteral("sound")}).value(QStringLiteral("sound-name")),
             QVariant(QStringLiteral("message-new-instant")));
    QVERIFY(!hints({QStringLiteral("actions")}).contains(QStringLiteral("sound-name")));
}

TICKWISE_TEST(NotificationTextTest)
#include "NotificationTextTest.moc"
