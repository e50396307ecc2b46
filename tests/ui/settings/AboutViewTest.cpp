#include "ui/settings/AboutView.h"

#include "doubles/Languages.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/TestProgram.h"
#include "ui/updates/UpdateController.h"

#include <QDesktopServices>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include <memory>

using namespace tickwise;

namespace {

const AboutInformation information{QStringLiteral("Tick & wise"), QStringLiteral("1.2.3"),
                                   QStringLiteral("mail@example.org"), QStringLiteral("https://example.org/page")};

class RecordingBackend : public UpdaterBackend
{
public:
    void checkForUpdates() override { ++checks; }
    void setAutomaticallyChecksForUpdates(bool enabled) override { automatic = enabled; }
    QBindable<bool> bindableCanCheckForUpdates() override { return &canCheck; }
    QBindable<bool> bindableAutomaticallyChecksForUpdates() override { return &automatic; }

    QProperty<bool> canCheck{true};
    QProperty<bool> automatic{true};
    int checks = 0;
};

/// Takes what the views ask the desktop to open.
class OpenedAddresses : public QObject
{
    Q_OBJECT

public:
    OpenedAddresses()
    {
        for (const QString &scheme : {QStringLiteral("https"), QStringLiteral("mailto")})
            QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~OpenedAddresses() override
    {
        for (const QString &scheme : {QStringLiteral("https"), QStringLiteral("mailto")})
            QDesktopServices::unsetUrlHandler(scheme);
    }

    QStringList addresses;

public Q_SLOTS:
    void open(const QUrl &url) { addresses.append(url.toString()); }
};

} // namespace

class AboutViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void sectionsStandInOrder();
    void whatIsEmptyIsLeftOut();
    void showsNameAndVersion();
    void withoutAnUpdaterItsControlsAreInert();
    void theToggleIsWrittenBack();
    void theToggleFollowsTheUpdater();
    void checksNow();
    void linksOpenByMouseAndByKey_data();
    void linksOpenByMouseAndByKey();
    void languageChangeWritesTheTexts();

private:
    RecordingBackend *attachBackend();
    template<class Widget>
    Widget *find(const char *name) const
    {
        return m_view->findChild<Widget *>(QLatin1StringView(name));
    }

    test::MemoryDefaults m_defaults;
    std::unique_ptr<SettingsViewModel> m_settings;
    std::unique_ptr<UpdateController> m_updates;
    std::unique_ptr<AboutView> m_view;
};

void AboutViewTest::init()
{
    test::useLanguage(AppLanguage::en);
    m_view.reset();
    m_settings = std::make_unique<SettingsViewModel>(UserDefaultsSettingsStore(m_defaults));
    m_updates = std::make_unique<UpdateController>();
    m_view = std::make_unique<AboutView>(*m_settings, *m_updates, information);
    m_view->show();
}

RecordingBackend *AboutViewTest::attachBackend()
{
    auto backend = std::make_unique<RecordingBackend>();
    RecordingBackend *const attached = backend.get();
    m_updates->attach(std::move(backend));
    return attached;
}

void AboutViewTest::sectionsStandInOrder()
{
    QStringList names;
    for (const QGroupBox *const group : m_view->findChildren<QGroupBox *>())
        names.append(group->objectName());
    QCOMPARE(names, (QStringList{QStringLiteral("about.section.dataSources"), QStringLiteral("about.section.updates"),
                                 QStringLiteral("about.section.opensource"), QStringLiteral("about.section.contact")}));
    for (const char *const key :
         {"about.dataSource.price", "about.dataSource.exchangeRate", "about.dataSource.coinInfo"})
        QCOMPARE(find<QLabel>(key)->text(), localized(QLatin1StringView(key)));
}

void AboutViewTest::whatIsEmptyIsLeftOut()
{
    const AboutView view(*m_settings, *m_updates, {information.name, information.version, {}, {}});
    QCOMPARE(view.findChildren<QGroupBox *>().size(), 2);
}

void AboutViewTest::showsNameAndVersion()
{
    const QString text = find<QLabel>("about.version")->text();
    QVERIFY2(text.contains(QStringLiteral("Tick &amp; wise")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("1.2.3")), qPrintable(text));
}

void AboutViewTest::withoutAnUpdaterItsControlsAreInert()
{
    QVERIFY(!find<QCheckBox>("about.updates.automatic")->isEnabled());
    QVERIFY(!find<QPushButton>("about.updates.check")->isEnabled());
    QTest::mouseClick(find<QCheckBox>("about.updates.automatic"), Qt::LeftButton, {}, QPoint(8, 8));
    QVERIFY(!find<QCheckBox>("about.updates.automatic")->isChecked());
    QVERIFY(!m_updates->automaticallyChecksForUpdates());
    QCOMPARE(m_defaults.writes, 0);
}

void AboutViewTest::theToggleIsWrittenBack()
{
    const RecordingBackend *const backend = attachBackend();
    auto *const toggle = find<QCheckBox>("about.updates.automatic");
    QVERIFY(toggle->isEnabled() && toggle->isChecked());
    toggle->click();
    QVERIFY(!backend->automatic.value());
    toggle->click();
    QVERIFY(backend->automatic.value());
}

void AboutViewTest::theToggleFollowsTheUpdater()
{
    RecordingBackend *const backend = attachBackend();
    backend->automatic = false;
    QVERIFY(!find<QCheckBox>("about.updates.automatic")->isChecked());
    backend->canCheck = false;
    QVERIFY(!find<QPushButton>("about.updates.check")->isEnabled());
}

void AboutViewTest::checksNow()
{
    const RecordingBackend *const backend = attachBackend();
    find<QPushButton>("about.updates.check")->click();
    QCOMPARE(backend->checks, 1);
}

void AboutViewTest::linksOpenByMouseAndByKey_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("address");
    QTest::newRow("project") << QStringLiteral("about.opensource.view") << QStringLiteral("https://example.org/page");
    QTest::newRow("contact") << QStringLiteral("about.contact.email") << QStringLiteral("mailto:mail@example.org");
}

void AboutViewTest::linksOpenByMouseAndByKey()
{
    QFETCH(QString, name);
    QFETCH(QString, address);
    OpenedAddresses opened;
    auto *const link = m_view->findChild<QAbstractButton *>(name);
    QTest::mouseClick(link, Qt::LeftButton);
    QTest::keyClick(link, Qt::Key_Return);
    QTest::keyClick(link, Qt::Key_Space);
    QCOMPARE(opened.addresses, (QStringList{address, address, address}));
    QCOMPARE(link->focusPolicy(), Qt::StrongFocus);
}

void AboutViewTest::languageChangeWritesTheTexts()
{
    test::useLanguage(AppLanguage::zhHant);
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(m_view.get(), &change);
    for (const QGroupBox *const group : m_view->findChildren<QGroupBox *>())
        QCOMPARE(group->title(), localized(group->objectName()));
    const auto *const link = find<QAbstractButton>("about.contact.email");
    QCOMPARE(link->text(), localized(QStringLiteral("about.contact.email")));
    QVERIFY(link->width() >= link->sizeHint().width());
    QVERIFY(find<QLabel>("about.version")->text().contains(QStringLiteral("版本")));
    test::useLanguage(AppLanguage::en);
}

TICKWISE_WIDGET_TEST(AboutViewTest)
#include "AboutViewTest.moc"
