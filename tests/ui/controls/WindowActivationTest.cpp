#include "ui/controls/WindowActivation.h"

#include "doubles/TestProgram.h"

#include <QWidget>

using namespace tickwise;

namespace {

constexpr char activationVariable[] = "XDG_ACTIVATION_TOKEN";

/// Notes the token that is there when the window is raised.
class RaisedWindow : public QWidget
{
public:
    std::vector<QByteArray> tokens;

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::ZOrderChange)
            tokens.push_back(qgetenv(activationVariable));
        return QWidget::event(event);
    }
};

} // namespace

class WindowActivationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { qunsetenv(activationVariable); }
    void bringsToFront_data();
    void bringsToFront();
    void raisesOpenWindows();
    void theTokenHoldsForOneActivation();
    void theLaunchersTokenIsTaken();
};

void WindowActivationTest::bringsToFront_data()
{
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("minimized");
    QTest::newRow("new") << false << false;
    QTest::newRow("open") << true << false;
    QTest::newRow("minimized") << true << true;
}

void WindowActivationTest::bringsToFront()
{
    QFETCH(bool, shown);
    QFETCH(bool, minimized);
    QWidget window;
    window.setVisible(shown);
    if (minimized)
        window.showMinimized();
    QCOMPARE(window.isMinimized(), minimized);
    bringToFront(window);
    QVERIFY(window.isVisible());
    QVERIFY(!window.isMinimized());
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

void WindowActivationTest::raisesOpenWindows()
{
    RaisedWindow open;
    RaisedWindow minimized;
    RaisedWindow hidden;
    RaisedWindow frameless;
    frameless.setWindowFlag(Qt::FramelessWindowHint);
    open.show();
    frameless.show();
    minimized.showMinimized();
    for (RaisedWindow *const window : {&open, &minimized, &hidden, &frameless})
        window->tokens.clear();
    bringOpenWindowsToFront({});
    QCOMPARE(open.tokens.size(), 1U);
    QCOMPARE(minimized.tokens.size() + hidden.tokens.size() + frameless.tokens.size(), 0U);
    QVERIFY(minimized.isMinimized());
    QVERIFY(QTest::qWaitForWindowActive(&open));
}

void WindowActivationTest::theTokenHoldsForOneActivation()
{
    RaisedWindow window;
    window.show();
    window.tokens.clear();
    bringOpenWindowsToFront(QStringLiteral("token-1"));
    QCOMPARE(window.tokens, std::vector<QByteArray>{"token-1"});
    QVERIFY(!qEnvironmentVariableIsSet(activationVariable));
}

void WindowActivationTest::theLaunchersTokenIsTaken()
{
    qputenv(activationVariable, "token-2");
    QCOMPARE(takeActivationToken(), QStringLiteral("token-2"));
    QVERIFY(!qEnvironmentVariableIsSet(activationVariable));
    QCOMPARE(takeActivationToken(), QString());
}

TICKWISE_WIDGET_TEST(WindowActivationTest)
#include "WindowActivationTest.moc"
