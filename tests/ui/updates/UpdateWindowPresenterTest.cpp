#include "ui/updates/UpdateWindowPresenter.h"

#include "doubles/Languages.h"
#include "doubles/TestProgram.h"

#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>

using namespace tickwise;

namespace {

UpdateState shortStateOf(UpdatePhase phase)
{
    return {.phase = phase, .runningVersion = QStringLiteral("1.0"), .item = AppcastItem{QStringLiteral("1.2")}};
}

} // namespace

class UpdateWindowPresenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { test::useLanguage(AppLanguage::en); }
    void opensOneWindow();
    void passesOnWhatTheUserChose();
    void theUserClosesThroughTheSession();
    void dismissDeletesTheWindowLater();
    void aButtonMayDismiss();
    void shownAgainAfterAnInstallation();
    void comesToTheFrontWhenMinimized();
    void withoutAWindow();
    void retranslates();
};

void UpdateWindowPresenterTest::opensOneWindow()
{
    UpdateWindowPresenter presenter;
    QVERIFY(!presenter.window());
    presenter.show(shortStateOf(UpdatePhase::checking));
    UpdateWindow *window = presenter.window();
    QVERIFY(window->isVisible());
    presenter.show(shortStateOf(UpdatePhase::upToDate));
    QCOMPARE(presenter.window(), window);
}

void UpdateWindowPresenterTest::passesOnWhatTheUserChose()
{
    UpdateWindowPresenter presenter;
    const QSignalSpy chosen(&presenter, &UpdateUserDriver::chosen);
    presenter.show(shortStateOf(UpdatePhase::available));
    QTest::mouseClick(presenter.window()->findChild<QPushButton *>(), Qt::LeftButton);
    QCOMPARE(chosen.size(), 1);
}

void UpdateWindowPresenterTest::theUserClosesThroughTheSession()
{
    UpdateWindowPresenter presenter;
    const QSignalSpy chosen(&presenter, &UpdateUserDriver::chosen);
    presenter.show(shortStateOf(UpdatePhase::available));
    presenter.window()->close();
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen.front().front().value<UpdateAction>(), UpdateAction::remindLater);
}

void UpdateWindowPresenterTest::dismissDeletesTheWindowLater()
{
    UpdateWindowPresenter presenter;
    const QSignalSpy chosen(&presenter, &UpdateUserDriver::chosen);
    presenter.show(shortStateOf(UpdatePhase::available));
    const QPointer<UpdateWindow> window = presenter.window();
    presenter.dismiss();
    QVERIFY(!presenter.window());
    QVERIFY(window && !window->isVisible());
    QTRY_VERIFY(!window);
    QCOMPARE(chosen.size(), 0);
    presenter.show(shortStateOf(UpdatePhase::checking));
    QVERIFY(presenter.window()->isVisible());
}

void UpdateWindowPresenterTest::aButtonMayDismiss()
{
    UpdateWindowPresenter presenter;
    connect(&presenter, &UpdateUserDriver::chosen, &presenter, [&] { presenter.dismiss(); });
    presenter.show(shortStateOf(UpdatePhase::upToDate));
    const QPointer<UpdateWindow> window = presenter.window();
    QTest::mouseClick(window->findChild<QPushButton *>(), Qt::LeftButton);
    QVERIFY(!presenter.window());
    QTRY_VERIFY(!window);
}

void UpdateWindowPresenterTest::shownAgainAfterAnInstallation()
{
    UpdateWindowPresenter presenter;
    presenter.show(shortStateOf(UpdatePhase::installing));
    UpdateWindow *const window = presenter.window();
    window->close();
    QVERIFY(!window->isVisible());
    presenter.show(shortStateOf(UpdatePhase::restartNeeded));
    QCOMPARE(presenter.window(), window);
    QVERIFY(window->isVisible());
}

void UpdateWindowPresenterTest::comesToTheFrontWhenMinimized()
{
    UpdateWindowPresenter presenter;
    presenter.show(shortStateOf(UpdatePhase::available));
    presenter.window()->showMinimized();
    presenter.bringToFront();
    QVERIFY(!presenter.window()->isMinimized());
    QVERIFY(QTest::qWaitForWindowActive(presenter.window()));
}

void UpdateWindowPresenterTest::withoutAWindow()
{
    UpdateWindowPresenter presenter;
    presenter.bringToFront();
    presenter.dismiss();
    presenter.retranslate();
    QVERIFY(!presenter.window());
}

void UpdateWindowPresenterTest::retranslates()
{
    UpdateWindowPresenter presenter;
    presenter.show(shortStateOf(UpdatePhase::available));
    const QString english = presenter.window()->windowTitle();
    test::useLanguage(AppLanguage::zhHans);
    presenter.retranslate();
    QVERIFY(presenter.window()->windowTitle() != english);
    QCOMPARE(presenter.window()->windowTitle(), localized(QStringLiteral("update.window.title")));
}

TICKWISE_WIDGET_TEST(UpdateWindowPresenterTest)
#include "UpdateWindowPresenterTest.moc"
