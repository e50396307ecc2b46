#include "ui/updates/UpdateWindowContent.h"

#include "doubles/Languages.h"
#include "doubles/TestProgram.h"

using namespace tickwise;

namespace {

using Actions = std::vector<UpdateAction>;

UpdateState stateOf(UpdatePhase phase)
{
    UpdateState state{.phase = phase, .runningVersion = QStringLiteral("1.0")};
    if (phase != UpdatePhase::checking && phase != UpdatePhase::upToDate) {
        state.item = AppcastItem{QStringLiteral("120"), QStringLiteral("1.2")};
        state.item->releaseNotes = QStringLiteral("Faster");
    }
    return state;
}

Actions actionsOf(const UpdateWindowContent &content)
{
    Actions actions;
    for (const UpdateButton &button : content.buttons)
        actions.push_back(button.action);
    return actions;
}

} // namespace

class UpdateWindowContentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::useLanguage(AppLanguage::en); }
    void checking();
    void available();
    void availableWithoutNotes();
    void versionsAreNoPlaceholders();
    void downloading();
    void downloadingWithoutAKnownSize();
    void ready();
    void installing();
    void restartNeeded();
    void manualInstallation();
    void upToDate();
    void failed_data();
    void failed();
    void everyTextIsTranslated_data();
    void everyTextIsTranslated();
};

void UpdateWindowContentTest::checking()
{
    const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase::checking));
    QCOMPARE(content.title, localized(QStringLiteral("update.window.title")));
    QCOMPARE(content.text, localized(QStringLiteral("update.checking")));
    QVERIFY(content.showsProgress);
    QVERIFY(!content.percent);
    QVERIFY(actionsOf(content) == Actions{UpdateAction::cancel});
    QVERIFY(content.escapeAction == UpdateAction::cancel);
}

void UpdateWindowContentTest::available()
{
    const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase::available));
    QCOMPARE(content.text, QStringLiteral("Tickwise 1.2 is available. You have version 1.0."));
    QCOMPARE(content.notes, QStringLiteral("Faster"));
    QCOMPARE(content.notesLabel, localized(QStringLiteral("update.releaseNotes")));
    QVERIFY(!content.showsProgress);
    QVERIFY((actionsOf(content) == Actions{UpdateAction::download, UpdateAction::remindLater, UpdateAction::skip}));
    QCOMPARE(content.buttons.front().text, localized(QStringLiteral("update.install")));
    QVERIFY(content.escapeAction == UpdateAction::remindLater);
}

void UpdateWindowContentTest::availableWithoutNotes()
{
    UpdateState state = stateOf(UpdatePhase::available);
    state.item->releaseNotes.clear();
    state.item->shortVersion.clear();
    const UpdateWindowContent content = updateWindowContent(state);
    QVERIFY(content.notes.isEmpty());
    QVERIFY(content.notesLabel.isEmpty());
    QVERIFY(content.text.contains(QStringLiteral("120")));
}

void UpdateWindowContentTest::versionsAreNoPlaceholders()
{
    UpdateState state = stateOf(UpdatePhase::available);
    state.item->shortVersion = QStringLiteral("%2");
    QCOMPARE(updateWindowContent(state).text, QStringLiteral("Tickwise %2 is available. You have version 1.0."));
}

void UpdateWindowContentTest::downloading()
{
    UpdateState state = stateOf(UpdatePhase::downloading);
    state.percent = 42;
    const UpdateWindowContent content = updateWindowContent(state);
    QVERIFY(content.showsProgress);
    QCOMPARE(content.percent, std::optional(42));
    QVERIFY(content.text.contains(QStringLiteral("42%")));
    QVERIFY(actionsOf(content) == Actions{UpdateAction::cancel});
    QVERIFY(content.escapeAction == UpdateAction::cancel);
    QVERIFY(content.notes.isEmpty());
}

void UpdateWindowContentTest::downloadingWithoutAKnownSize()
{
    const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase::downloading));
    QCOMPARE(content.text, localized(QStringLiteral("update.downloadingUnknownSize")));
    QVERIFY(!content.text.contains(u'%'));
    QVERIFY(content.showsProgress);
    QVERIFY(!content.percent);
}

void UpdateWindowContentTest::ready()
{
    const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase::ready));
    QCOMPARE(content.text, localized(QStringLiteral("update.ready")));
    QVERIFY((actionsOf(content) == Actions{UpdateAction::install, UpdateAction::remindLater}));
    QVERIFY(content.escapeAction == UpdateAction::remindLater);
    QVERIFY(!content.showsProgress);
}

void UpdateWindowContentTest::installing()
{
    const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase::installing));
    QCOMPARE(content.text, localized(QStringLiteral("update.installing")));
    QVERIFY(content.showsProgress);
    QVERIFY(!content.percent);
    QVERIFY(content.buttons.empty());
    QVERIFY(content.escapeAction == UpdateAction::close);
}

void UpdateWindowContentTest::restartNeeded()
{
    const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase::restartNeeded));
    QCOMPARE(content.text, QStringLiteral("Tickwise 1.2 is installed. Restart Tickwise to use it."));
    QVERIFY((actionsOf(content) == Actions{UpdateAction::restart, UpdateAction::close}));
    QVERIFY(!content.showsProgress);
}

void UpdateWindowContentTest::manualInstallation()
{
    UpdateState state = stateOf(UpdatePhase::manualInstallation);
    state.packagePath = QStringLiteral("/home/me/.cache/updates/tickwise.deb");
    const UpdateWindowContent content = updateWindowContent(state);
    QVERIFY(content.text.contains(state.packagePath));
    QVERIFY(actionsOf(content) == Actions{UpdateAction::close});
}

void UpdateWindowContentTest::upToDate()
{
    const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase::upToDate));
    QCOMPARE(content.text, localized(QStringLiteral("update.upToDate")).arg(QStringLiteral("1.0")));
    QVERIFY(actionsOf(content) == Actions{UpdateAction::close});
    QVERIFY(content.escapeAction == UpdateAction::close);
}

void UpdateWindowContentTest::failed_data()
{
    QTest::addColumn<UpdateFailureKind>("kind");
    QTest::addColumn<QString>("key");
    using enum UpdateFailureKind;
    QTest::newRow("network") << network << QStringLiteral("update.error.network");
    QTest::newRow("feed") << feed << QStringLiteral("update.error.feed");
    QTest::newRow("feed missing") << feedMissing << QStringLiteral("update.error.feedMissing");
    QTest::newRow("package missing") << packageMissing << QStringLiteral("update.error.packageMissing");
    QTest::newRow("too large") << tooLarge << QStringLiteral("update.error.tooLarge");
    QTest::newRow("signature") << signature << QStringLiteral("update.error.signature");
    QTest::newRow("no signature") << noSignature << QStringLiteral("update.error.noSignature");
    QTest::newRow("system") << noUpdateForSystem << QStringLiteral("update.error.noUpdateForSystem");
    QTest::newRow("disk") << disk << QStringLiteral("update.error.disk");
}

void UpdateWindowContentTest::failed()
{
    QFETCH(UpdateFailureKind, kind);
    QFETCH(QString, key);
    UpdateState state = stateOf(UpdatePhase::failed);
    state.failure = kind;
    const UpdateWindowContent content = updateWindowContent(state);
    QVERIFY(localized(key) != key);
    QCOMPARE(content.text, localized(QStringLiteral("update.failed")).arg(localized(key)));
    QVERIFY(actionsOf(content) == Actions{UpdateAction::close});
}

void UpdateWindowContentTest::everyTextIsTranslated_data()
{
    QTest::addColumn<AppLanguage>("language");
    QTest::newRow("en") << AppLanguage::en;
    QTest::newRow("zh-Hans") << AppLanguage::zhHans;
    QTest::newRow("zh-Hant") << AppLanguage::zhHant;
}

void UpdateWindowContentTest::everyTextIsTranslated()
{
    QFETCH(AppLanguage, language);
    test::useLanguage(language);
    for (int phase = 0; phase <= int(UpdatePhase::failed); ++phase) {
        const UpdateWindowContent content = updateWindowContent(stateOf(UpdatePhase(phase)));
        QStringList texts{content.title, content.text, content.notesLabel};
        for (const UpdateButton &button : content.buttons)
            texts.append(button.text);
        QVERIFY2(!texts.join(u'\n').contains(QStringLiteral("update.")), qPrintable(texts.join(u'\n')));
        QVERIFY2(!content.text.contains(QStringLiteral("%1")), qPrintable(content.text));
    }
    test::useLanguage(AppLanguage::en);
}

TICKWISE_TEST(UpdateWindowContentTest)
#include "UpdateWindowContentTest.moc"
