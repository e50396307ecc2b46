#include "ui/updates/UpdateWindow.h"

#include "doubles/Languages.h"
#include "doubles/TestProgram.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>

using namespace tickwise;

namespace {

UpdateState fullStateOf(UpdatePhase phase)
{
    UpdateState state{.phase = phase, .runningVersion = QStringLiteral("1.0")};
    state.item = AppcastItem{QStringLiteral("1.2")};
    state.item->releaseNotes = QStringLiteral("\u2022 <b>Faster</b>\n\u2022 Smaller\n").repeated(20);
    state.percent = 42;
    state.packagePath = QStringLiteral("/home/somebody/.cache/com.pelmo.tickwise/updates/tickwise_1.2_amd64.deb");
    state.failure = UpdateFailureKind::signature;
    return state;
}

QList<QPushButton *> buttonsOf(const UpdateWindow &window)
{
    return window.findChildren<QPushButton *>();
}

QPushButton *buttonOf(const UpdateWindow &window, const QString &text)
{
    for (QPushButton *button : buttonsOf(window)) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

UpdateAction actionOf(const QSignalSpy &chosen)
{
    return chosen.back().front().value<UpdateAction>();
}

} // namespace

class UpdateWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void showsWhatTheStateNeeds_data();
    void showsWhatTheStateNeeds();
    void clicksChoose_data();
    void clicksChoose();
    void returnPressesTheFirstButton_data();
    void returnPressesTheFirstButton();
    void escapeAndClosing_data();
    void escapeAndClosing();
    void remoteTextsAreNeverMarkup();
    void notesAreReadOnly();
    void notesHaveRoomForSomeLines();
    void progressKeepsTheFocus();
    void aButtonMayChangeTheButtons();
    void installingHasNoButtons();
    void closesWhileInstalling();
    void thePathCanBeCopied();
    void tabReachesEverything();
    void everythingHasAnAccessibleName();
    void fitsItsTexts_data();
    void fitsItsTexts();

private:
    void phases();
    static void open(UpdateWindow &window, UpdatePhase phase);
};

void UpdateWindowTest::initTestCase()
{
    qRegisterMetaType<UpdateAction>();
    test::useLanguage(AppLanguage::en);
}

void UpdateWindowTest::phases()
{
    QTest::addColumn<UpdatePhase>("phase");
    QTest::newRow("checking") << UpdatePhase::checking;
    QTest::newRow("available") << UpdatePhase::available;
    QTest::newRow("downloading") << UpdatePhase::downloading;
    QTest::newRow("ready") << UpdatePhase::ready;
    QTest::newRow("restart needed") << UpdatePhase::restartNeeded;
    QTest::newRow("manual installation") << UpdatePhase::manualInstallation;
    QTest::newRow("up to date") << UpdatePhase::upToDate;
    QTest::newRow("failed") << UpdatePhase::failed;
}

void UpdateWindowTest::open(UpdateWindow &window, UpdatePhase phase)
{
    window.setContent(updateWindowContent(fullStateOf(phase)));
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

void UpdateWindowTest::showsWhatTheStateNeeds_data()
{
    phases();
}

void UpdateWindowTest::showsWhatTheStateNeeds()
{
    QFETCH(UpdatePhase, phase);
    const UpdateWindowContent content = updateWindowContent(fullStateOf(phase));
    UpdateWindow window;
    open(window, phase);
    QCOMPARE(window.windowTitle(), content.title);
    QCOMPARE(window.findChild<QLabel *>(QStringLiteral("updateText"))->text(), content.text);
    auto *notes = window.findChild<QPlainTextEdit *>();
    QCOMPARE(notes->isVisible(), phase == UpdatePhase::available);
    auto *progress = window.findChild<QProgressBar *>();
    QCOMPARE(progress->isVisible(), phase == UpdatePhase::checking || phase == UpdatePhase::downloading);
    QCOMPARE(progress->maximum(), phase == UpdatePhase::downloading ? 100 : 0);
    QCOMPARE(buttonsOf(window).size(), qsizetype(content.buttons.size()));
}

void UpdateWindowTest::clicksChoose_data()
{
    phases();
}

void UpdateWindowTest::clicksChoose()
{
    QFETCH(UpdatePhase, phase);
    for (const UpdateButton &button : updateWindowContent(fullStateOf(phase)).buttons) {
        UpdateWindow window;
        open(window, phase);
        const QSignalSpy chosen(&window, &UpdateWindow::chosen);
        QTest::mouseClick(buttonOf(window, button.text), Qt::LeftButton);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(actionOf(chosen), button.action);
    }
}

void UpdateWindowTest::returnPressesTheFirstButton_data()
{
    phases();
}

void UpdateWindowTest::returnPressesTheFirstButton()
{
    QFETCH(UpdatePhase, phase);
    UpdateWindow window;
    open(window, phase);
    const QSignalSpy chosen(&window, &UpdateWindow::chosen);
    QTest::keyClick(window.focusWidget(), Qt::Key_Return);
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(actionOf(chosen), updateWindowContent(fullStateOf(phase)).buttons.front().action);
}

void UpdateWindowTest::escapeAndClosing_data()
{
    phases();
}

void UpdateWindowTest::escapeAndClosing()
{
    QFETCH(UpdatePhase, phase);
    UpdateWindow window;
    open(window, phase);
    const QSignalSpy chosen(&window, &UpdateWindow::chosen);
    QTest::keyClick(&window, Qt::Key_Escape);
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(actionOf(chosen), updateWindowContent(fullStateOf(phase)).escapeAction);
    window.close();
    QCOMPARE(chosen.size(), 2);
    QCOMPARE(actionOf(chosen), updateWindowContent(fullStateOf(phase)).escapeAction);
}

void UpdateWindowTest::remoteTextsAreNeverMarkup()
{
    UpdateState state = fullStateOf(UpdatePhase::available);
    state.item->shortVersion = QStringLiteral("<img src='file:///etc/passwd'>");
    UpdateWindow window;
    window.setContent(updateWindowContent(state));
    QCOMPARE(window.findChild<QLabel *>(QStringLiteral("updateText"))->textFormat(), Qt::PlainText);
    QCOMPARE(window.findChild<QPlainTextEdit *>()->toPlainText(), state.item->releaseNotes);
}

void UpdateWindowTest::notesAreReadOnly()
{
    UpdateWindow window;
    open(window, UpdatePhase::available);
    auto *notes = window.findChild<QPlainTextEdit *>();
    notes->setFocus();
    const QString before = notes->toPlainText();
    QTest::keyClicks(notes, QStringLiteral("typed"));
    QCOMPARE(notes->toPlainText(), before);
}

void UpdateWindowTest::notesHaveRoomForSomeLines()
{
    UpdateWindow window;
    open(window, UpdatePhase::available);
    window.resize(window.width(), 1);
    auto *notes = window.findChild<QPlainTextEdit *>();
    QVERIFY(notes->height() >= 12 * notes->fontMetrics().lineSpacing());
}

void UpdateWindowTest::progressKeepsTheFocus()
{
    UpdateWindow window;
    open(window, UpdatePhase::downloading);
    const QList<QPushButton *> before = buttonsOf(window);
    UpdateState state = fullStateOf(UpdatePhase::downloading);
    state.percent = 43;
    window.setContent(updateWindowContent(state));
    QCOMPARE(window.findChild<QProgressBar *>()->value(), 43);
    QCOMPARE(buttonsOf(window), before);
    QCOMPARE(window.focusWidget(), before.front());
}

void UpdateWindowTest::aButtonMayChangeTheButtons()
{
    UpdateWindow window;
    open(window, UpdatePhase::available);
    connect(&window, &UpdateWindow::chosen, &window,
            [&] { window.setContent(updateWindowContent(fullStateOf(UpdatePhase::downloading))); });
    QTest::keyClick(window.focusWidget(), Qt::Key_Return);
    QCOMPARE(buttonsOf(window).size(), 1);
    QCOMPARE(window.focusWidget(), buttonsOf(window).front());
    QVERIFY(buttonsOf(window).front()->isDefault());
}

void UpdateWindowTest::installingHasNoButtons()
{
    UpdateWindow window;
    open(window, UpdatePhase::ready);
    window.setContent(updateWindowContent(fullStateOf(UpdatePhase::installing)));
    QVERIFY(buttonsOf(window).isEmpty());
    QVERIFY(window.findChild<QProgressBar *>()->isVisible());
    window.setContent(updateWindowContent(fullStateOf(UpdatePhase::restartNeeded)));
    QCOMPARE(buttonsOf(window).size(), 2);
}

/// A window that refuses to close keeps the application from quitting.
void UpdateWindowTest::closesWhileInstalling()
{
    UpdateWindow window;
    window.setContent(updateWindowContent(fullStateOf(UpdatePhase::installing)));
    window.show();
    const QSignalSpy chosen(&window, &UpdateWindow::chosen);
    QTest::keyClick(&window, Qt::Key_Escape);
    QVERIFY(window.isVisible());
    QVERIFY(window.close());
    QVERIFY(!window.isVisible());
    QCOMPARE(chosen.size(), 2);
    QCOMPARE(actionOf(chosen), UpdateAction::close);
}

void UpdateWindowTest::thePathCanBeCopied()
{
    UpdateWindow window;
    open(window, UpdatePhase::manualInstallation);
    auto *text = window.findChild<QLabel *>(QStringLiteral("updateText"));
    QVERIFY(text->text().contains(fullStateOf(UpdatePhase::manualInstallation).packagePath));
    QVERIFY(text->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    // By the keyboard alone too.
    QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    QCOMPARE(window.focusWidget(), text);
    QTest::keySequence(text, QKeySequence::SelectAll);
    QVERIFY(text->selectedText().endsWith(fullStateOf(UpdatePhase::manualInstallation).packagePath));
}

void UpdateWindowTest::tabReachesEverything()
{
    UpdateWindow window;
    open(window, UpdatePhase::available);
    QSet<QWidget *> reached;
    for (int i = 0; i < 5; ++i) {
        reached.insert(window.focusWidget());
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(reached.size(), 5); // the text, three buttons and the notes
    QVERIFY(reached.contains(window.findChild<QPlainTextEdit *>()));
}

void UpdateWindowTest::everythingHasAnAccessibleName()
{
    UpdateWindow window;
    window.setContent(updateWindowContent(fullStateOf(UpdatePhase::available)));
    QCOMPARE(window.findChild<QPlainTextEdit *>()->accessibleName(), localized(QStringLiteral("update.releaseNotes")));
    window.setContent(updateWindowContent(fullStateOf(UpdatePhase::downloading)));
    QVERIFY(!window.findChild<QProgressBar *>()->accessibleName().isEmpty());
}

void UpdateWindowTest::fitsItsTexts_data()
{
    QTest::addColumn<AppLanguage>("language");
    QTest::addColumn<UpdatePhase>("phase");
    for (const AppLanguage language : {AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant}) {
        for (int phase = 0; phase <= int(UpdatePhase::failed); ++phase)
            QTest::addRow("%s %d", qPrintable(rawValue(language)), phase) << language << UpdatePhase(phase);
    }
}

void UpdateWindowTest::fitsItsTexts()
{
    QFETCH(AppLanguage, language);
    QFETCH(UpdatePhase, phase);
    test::useLanguage(language);
    UpdateWindow window;
    open(window, phase);
    auto *text = window.findChild<QLabel *>(QStringLiteral("updateText"));
    QVERIFY(text->height() >= text->heightForWidth(text->width()));
    for (const QPushButton *button : buttonsOf(window)) {
        QVERIFY(button->width() >= button->sizeHint().width());
        QVERIFY(window.rect().contains(button->geometry()));
    }
    test::useLanguage(AppLanguage::en);
}

TICKWISE_WIDGET_TEST(UpdateWindowTest)
#include "UpdateWindowTest.moc"
