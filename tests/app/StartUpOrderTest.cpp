#include "app/AppDelegate.h"

#include "doubles/AppDoubles.h"
#include "doubles/Languages.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QFile>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// What happened, in order.
using Record = QStringList;

class TellingNotificationCenter : public RecordingNotificationCenter
{
public:
    explicit TellingNotificationCenter(Record &record)
        : m_record(record)
    {
    }
    void requestAuthorization(Completion<void> done) override
    {
        m_record.append(QStringLiteral("authorization"));
        RecordingNotificationCenter::requestAuthorization(std::move(done));
    }

private:
    Record &m_record;
};

class TellingLoginItem : public RecordingLoginItem
{
public:
    explicit TellingLoginItem(Record &record)
        : m_record(record)
    {
    }
    void setRegistered(bool registered, Completion<void> done) override
    {
        m_record.append(QStringLiteral("login item"));
        RecordingLoginItem::setRegistered(registered, std::move(done));
        if (meanwhile)
            meanwhile();
    }

    std::function<void()> meanwhile;

private:
    Record &m_record;
};

class TellingHttpClient : public ScriptedHttpClient
{
public:
    explicit TellingHttpClient(Record &record)
        : m_record(record)
    {
    }
    [[nodiscard]] Subscription send(const HttpRequest &request, Completion<HttpResponse> done) override
    {
        m_record.append(QStringLiteral("request"));
        return ScriptedHttpClient::send(request, std::move(done));
    }

private:
    Record &m_record;
};

class TellingStatusItem : public RecordingStatusItem
{
public:
    explicit TellingStatusItem(Record &record)
        : m_record(record)
    {
    }
    void setContent(const StatusItemContent &content) override
    {
        m_record.append(QStringLiteral("content"));
        RecordingStatusItem::setContent(content);
    }
    void setMenu(std::function<Menu()> provider) override
    {
        m_record.append(QStringLiteral("menu"));
        RecordingStatusItem::setMenu(std::move(provider));
    }

private:
    Record &m_record;
};

/// The action that a widget snapshot writer is given; the writer makes its copy of it when it is made itself.
class TellingReload
{
public:
    explicit TellingReload(Record &record)
        : m_record(&record)
    {
    }
    TellingReload(const TellingReload &other)
        : m_record(other.m_record)
    {
        m_record->append(QStringLiteral("widget writer"));
    }
    void operator()() const { m_record->append(QStringLiteral("widgets reloaded")); }

private:
    Record *m_record;
};

/// A delegate among doubles that tell when they are used.
struct StartUpOrderWorld
{
    StartUpOrderWorld()
    {
        http.hold(Endpoints().binanceMain);
        delegate = std::make_unique<AppDelegate>(environment());
        QObject::connect(delegate.get(), &AppDelegate::languageApplied,
                         [this] { record.append(QStringLiteral("language")); });
        QObject::connect(delegate.get(), &AppDelegate::quitRequested,
                         [this] { record.append(QStringLiteral("quit")); });
        record.clear();
    }

    AppEnvironment environment()
    {
        return {.defaults = storage,
                .httpClient = http,
                .notificationCenter = notifications,
                .loginItem = loginItem,
                .attachUpdater = [this](UpdateController &) { record.append(QStringLiteral("updater")); },
                .makeStatusItem =
                    [this] {
                        record.append(QStringLiteral("status item"));
                        return std::make_unique<TellingStatusItem>(record);
                    },
                .reloadWidgets = TellingReload(record),
                .isSecondCopy =
                    [this] {
                        record.append(QStringLiteral("second copy?"));
                        return secondCopy;
                    },
                .container = container.path(),
                .environment = processEnvironment,
                .clock = clock.clock()};
    }

    Record launch()
    {
        delegate->applicationDidFinishLaunching();
        return record;
    }
    void setInterval(double seconds)
    {
        AppSettings settings = delegate->settingsViewModel().settings();
        settings.pollingInterval = seconds;
        delegate->settingsViewModel().update(settings);
    }
    int polls() const { return static_cast<int>(http.urls(Endpoints().binanceMain).size()); }

    Record record;
    TestClock clock;
    QTemporaryDir container;
    MemoryDefaults storage;
    TellingHttpClient http{record};
    TellingNotificationCenter notifications{record};
    TellingLoginItem loginItem{record};
    bool secondCopy = false;
    QProcessEnvironment processEnvironment;
    std::unique_ptr<AppDelegate> delegate;
};

constexpr int afterTheDebounce = 700;

} // namespace

class StartUpOrderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void constructionDoesNothing();
    void everyStepInItsOrder();
    void withoutUpdater();
    void testHostStopsBeforeTheFirstStep();
    void secondCopyStopsAtTheSecondStep();
    void widgetWriterWorksAfterStartUp();
    void reloadStreamSkipsWhatTheStepsBeforeItChanged();
    void reloadStreamSeesWhatTheStepsAfterItChange();
};

void StartUpOrderTest::cleanup()
{
    test::useLanguage(AppLanguage::en);
}

void StartUpOrderTest::constructionDoesNothing()
{
    StartUpOrderWorld world;
    QCOMPARE(world.record, Record());
    QCOMPARE(world.storage.writes, 0);
}

void StartUpOrderTest::everyStepInItsOrder()
{
    StartUpOrderWorld world;
    Record record = world.launch();
    // The language that is applied last draws the item once more.
    QCOMPARE(record.mid(record.indexOf(QStringLiteral("login item")) + 1),
             (Record{QStringLiteral("content"), QStringLiteral("language")}));
    record.removeAll(QStringLiteral("content"));
    record.removeDuplicates();
    QCOMPARE(record,
             (Record{QStringLiteral("second copy?"), QStringLiteral("updater"), QStringLiteral("status item"),
                     QStringLiteral("request"), QStringLiteral("menu"), QStringLiteral("widget writer"),
                     QStringLiteral("authorization"), QStringLiteral("login item"), QStringLiteral("language")}));
    QCOMPARE(world.notifications.authorizationRequests, 1);
    QCOMPARE(world.loginItem.requests, std::vector<bool>{false});
    QCOMPARE(world.polls(), 1);
}

void StartUpOrderTest::withoutUpdater()
{
    StartUpOrderWorld world;
    AppEnvironment environment = world.environment();
    environment.attachUpdater = {};
    world.delegate = std::make_unique<AppDelegate>(std::move(environment));
    world.record.clear();
    QCOMPARE(world.launch().mid(0, 2), (Record{QStringLiteral("second copy?"), QStringLiteral("status item")}));
    QVERIFY(!world.delegate->updateController().isAvailable());
}

void StartUpOrderTest::testHostStopsBeforeTheFirstStep()
{
    StartUpOrderWorld world;
    world.processEnvironment.insert(QStringLiteral("XCTestConfigurationFilePath"), QString());
    world.delegate = std::make_unique<AppDelegate>(world.environment());
    world.record.clear();
    QCOMPARE(world.launch(), Record());
}

void StartUpOrderTest::secondCopyStopsAtTheSecondStep()
{
    StartUpOrderWorld world;
    world.secondCopy = true;
    QCOMPARE(world.launch(), (Record{QStringLiteral("second copy?"), QStringLiteral("quit")}));
}

void StartUpOrderTest::widgetWriterWorksAfterStartUp()
{
    StartUpOrderWorld world;
    const QString snapshot = world.container.filePath(QStringLiteral("widget-snapshot.json"));
    QVERIFY(!world.launch().contains(QStringLiteral("widgets reloaded")));
    QTRY_COMPARE(world.record.count(QStringLiteral("widgets reloaded")), 1);
    QVERIFY(QFile::exists(snapshot));
}

void StartUpOrderTest::reloadStreamSkipsWhatTheStepsBeforeItChanged()
{
    StartUpOrderWorld world;
    world.loginItem.meanwhile = [&world] { world.setInterval(3600); };
    world.launch();
    QTest::qWait(afterTheDebounce);
    QCOMPARE(world.polls(), 1);
}

void StartUpOrderTest::reloadStreamSeesWhatTheStepsAfterItChange()
{
    StartUpOrderWorld world;
    bool changed = false;
    connect(world.delegate.get(), &AppDelegate::languageApplied, this, [&world, &changed] {
        if (!std::exchange(changed, true))
            world.setInterval(3600);
    });
    world.launch();
    QVERIFY(changed);
    QTRY_COMPARE(world.polls(), 2);
}

TICKWISE_TEST(StartUpOrderTest)
#include "StartUpOrderTest.moc"
