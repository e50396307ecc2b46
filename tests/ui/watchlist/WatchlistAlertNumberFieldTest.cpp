#include "ui/watchlist/WatchlistAlertNumberField.h"

#include "doubles/TestProgram.h"
#include "pipeline/AlertNumberText.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QSignalSpy>

#include <functional>

using namespace tickwise;

class WatchlistAlertNumberFieldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheThreshold_data();
    void showsTheThreshold();
    void keepsWhatBelongsIntoANumber_data();
    void keepsWhatBelongsIntoANumber();
    void tellsEachNumberAtOnce();
    void pastedText();
    void everyWayInIsFiltered_data();
    void everyWayInIsFiltered();
    void composedText();
    void aTextThatIsNoNumberIsPutBack();
    void aChangeFromElsewhereShows();
    void ownEditsAreNotRewritten();
    void theCursorStays();
};

void WatchlistAlertNumberFieldTest::showsTheThreshold_data()
{
    QTest::addColumn<double>("threshold");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << 2.0 << QStringLiteral("2");
    QTest::newRow("fraction") << 67432.5 << QStringLiteral("67432.5");
    QTest::newRow("small") << 0.00012 << QStringLiteral("0.00012");
}

void WatchlistAlertNumberFieldTest::showsTheThreshold()
{
    QFETCH(double, threshold);
    WatchlistAlertNumberField field;
    field.setThreshold(threshold);
    QTEST(field.text(), "text");
}

void WatchlistAlertNumberFieldTest::keepsWhatBelongsIntoANumber_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::newRow("two points") << QStringLiteral("1.2.3") << QStringLiteral("1.23");
    QTest::newRow("letters") << QStringLiteral("abc") << QString();
    QTest::newRow("a sign") << QStringLiteral("-5") << QStringLiteral("5");
    QTest::newRow("an exponent") << QStringLiteral("1.2.3e5") << QStringLiteral("1.235");
    QTest::newRow("full-width digits") << QStringLiteral("１２３") << QString();
}

void WatchlistAlertNumberFieldTest::keepsWhatBelongsIntoANumber()
{
    QFETCH(QString, typed);
    WatchlistAlertNumberField field;
    field.show();
    field.clear();
    for (const QChar character : typed)
        field.insert(character);
    QTEST(field.text(), "kept");
}

void WatchlistAlertNumberFieldTest::tellsEachNumberAtOnce()
{
    WatchlistAlertNumberField field;
    field.setThreshold(2);
    field.selectAll();
    QSignalSpy edited(&field, &WatchlistAlertNumberField::thresholdEdited);
    QTest::keyClicks(&field, QStringLiteral("1.5x"));
    QList<double> told;
    for (const QList<QVariant> &arguments : edited)
        told.append(arguments.front().toDouble());
    QCOMPARE(told, (QList<double>{1, 1.5}));
}

void WatchlistAlertNumberFieldTest::pastedText()
{
    WatchlistAlertNumberField field;
    field.setThreshold(2);
    field.selectAll();
    QGuiApplication::clipboard()->setText(QStringLiteral(" $1,234.56.7 "));
    field.paste();
    QCOMPARE(field.text(), QStringLiteral("1234.567"));
}

void WatchlistAlertNumberFieldTest::everyWayInIsFiltered_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("kept");
    QTest::addColumn<double>("threshold");
    QTest::newRow("an exponent") << QStringLiteral("1.2.3e5") << QStringLiteral("1.235") << 1.235;
    QTest::newRow("full-width digits") << QStringLiteral("１２３") << QString() << 2.0;
    QTest::newRow("a sign") << QStringLiteral("-5") << QStringLiteral("5") << 5.0;
    QTest::newRow("400 digits") << QString(400, u'9') << QString(400, u'9') << 2.0;
    QTest::newRow("lines") << QStringLiteral("1\n2\t3") << QStringLiteral("123") << 123.0;
}

void WatchlistAlertNumberFieldTest::everyWayInIsFiltered()
{
    QFETCH(QString, text);
    const auto paste = [text](QLineEdit &field) {
        QGuiApplication::clipboard()->setText(text);
        field.paste();
    };
    const auto drop = [text](QLineEdit &field) {
        QMimeData data;
        data.setText(text);
        QDragEnterEvent enter(QPoint(4, 4), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&field, &enter);
        QDropEvent dropped(QPointF(4, 4), Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&field, &dropped);
    };
    const auto compose = [text](QLineEdit &field) {
        QInputMethodEvent commit;
        commit.setCommitString(text);
        QCoreApplication::sendEvent(&field, &commit);
    };
    for (const std::function<void(QLineEdit &)> &enter : {std::function<void(QLineEdit &)>(paste), {drop}, {compose}}) {
        WatchlistAlertNumberField field;
        field.setThreshold(2);
        double told = 2;
        connect(&field, &WatchlistAlertNumberField::thresholdEdited, &field, [&told](double value) { told = value; });
        field.show();
        field.clear();
        enter(field);
        QTEST(field.text(), "kept");
        QTEST(told, "threshold");
        QTest::keyClick(&field, Qt::Key_Return);
        QTEST(alertNumber(field.text()).value_or(-1), "threshold");
    }
}

void WatchlistAlertNumberFieldTest::composedText()
{
    WatchlistAlertNumberField field;
    field.setThreshold(2);
    field.selectAll();
    QSignalSpy edited(&field, &WatchlistAlertNumberField::thresholdEdited);
    QInputMethodEvent composing(QStringLiteral("3"), {});
    QCoreApplication::sendEvent(&field, &composing);
    QCOMPARE(edited.size(), 0);
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("３4"));
    QCoreApplication::sendEvent(&field, &commit);
    QCOMPARE(field.text(), QStringLiteral("4"));
    QCOMPARE(edited.size(), 1);
}

void WatchlistAlertNumberFieldTest::aTextThatIsNoNumberIsPutBack()
{
    for (const QString &text : {QString(), QStringLiteral("."), QString(400, u'9')}) {
        WatchlistAlertNumberField field;
        field.setThreshold(2);
        QSignalSpy edited(&field, &WatchlistAlertNumberField::thresholdEdited);
        field.selectAll();
        QGuiApplication::clipboard()->setText(text.isEmpty() ? QStringLiteral("x") : text);
        field.paste();
        QCOMPARE(field.text(), text);
        QCOMPARE(edited.size(), 0);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(field.text(), QStringLiteral("2"));
    }
}

void WatchlistAlertNumberFieldTest::aChangeFromElsewhereShows()
{
    WatchlistAlertNumberField field;
    field.setThreshold(2);
    field.setThreshold(5);
    QCOMPARE(field.text(), QStringLiteral("5"));
}

void WatchlistAlertNumberFieldTest::ownEditsAreNotRewritten()
{
    WatchlistAlertNumberField field;
    field.show();
    QVERIFY(QTest::qWaitForWindowActive(&field));
    field.setFocus();
    field.setThreshold(2);
    connect(&field, &WatchlistAlertNumberField::thresholdEdited, &field, &WatchlistAlertNumberField::setThreshold);
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("1."));
    QCOMPARE(field.text(), QStringLiteral("1."));
    QTest::keyClick(&field, Qt::Key_Return);
    QCOMPARE(field.text(), QStringLiteral("1"));
}

void WatchlistAlertNumberFieldTest::theCursorStays()
{
    WatchlistAlertNumberField field;
    field.setThreshold(1234);
    field.setCursorPosition(2);
    QTest::keyClicks(&field, QStringLiteral("x9"));
    QCOMPARE(field.text(), QStringLiteral("12934"));
    QCOMPARE(field.cursorPosition(), 3);
}

TICKWISE_WIDGET_TEST(WatchlistAlertNumberFieldTest)
#include "WatchlistAlertNumberFieldTest.moc"
