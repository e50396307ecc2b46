#include "ui/controls/FlatButton.h"

#include "doubles/TestProgram.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/LinkButton.h"
#include "ui/controls/ProminentButton.h"

#include <QSignalSpy>

#include <functional>
#include <memory>

using namespace tickwise;

namespace {

using ButtonMaker = std::function<std::unique_ptr<FlatButton>()>;

/// Whether the button took the key.
bool holdKey(FlatButton &button, int key, int repeats)
{
    bool isTaken = true;
    for (int i = 0; i <= repeats; ++i) {
        QKeyEvent press(QEvent::KeyPress, key, {}, QStringLiteral("\r"), i > 0);
        QCoreApplication::sendEvent(&button, &press);
        isTaken = isTaken && press.isAccepted();
    }
    return isTaken;
}

} // namespace

Q_DECLARE_METATYPE(ButtonMaker)

class FlatButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHeldKeyPressesOnce_data();
    void aHeldKeyPressesOnce();
    void otherKeysAreLeft();
};

void FlatButtonTest::aHeldKeyPressesOnce_data()
{
    QTest::addColumn<ButtonMaker>("make");
    QTest::newRow("icon") << ButtonMaker([] { return std::make_unique<IconButton>(QStringLiteral("trash")); });
    QTest::newRow("link") << ButtonMaker([] { return std::make_unique<LinkButton>(QUrl()); });
    QTest::newRow("prominent") << ButtonMaker([] { return std::make_unique<ProminentButton>(); });
}

void FlatButtonTest::aHeldKeyPressesOnce()
{
    QFETCH(ButtonMaker, make);
    const auto button = make();
    const QSignalSpy clicked(button.get(), &QAbstractButton::clicked);
    QVERIFY(holdKey(*button, Qt::Key_Return, 3));
    QCOMPARE(clicked.size(), 1);
    QVERIFY(holdKey(*button, Qt::Key_Enter, 3));
    QCOMPARE(clicked.size(), 2);
    QTest::keyClick(button.get(), Qt::Key_Space);
    QCOMPARE(clicked.size(), 3);
}

void FlatButtonTest::otherKeysAreLeft()
{
    ProminentButton button;
    const QSignalSpy clicked(&button, &QAbstractButton::clicked);
    QVERIFY(!holdKey(button, Qt::Key_A, 1));
    QCOMPARE(clicked.size(), 0);
}

TICKWISE_WIDGET_TEST(FlatButtonTest)
#include "FlatButtonTest.moc"
