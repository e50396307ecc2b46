#include "app/AppDelegate.h"

#include "doubles/AppDoubles.h"
#include "doubles/Languages.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/RecordingDesktopSurface.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"

#include <QFile>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

namespace {

/// What happened, in order.
class Record
{
public:
    void add(const char *what)
    {
        steps.append(QString::fromLatin1(what));
        if (afterEach)
            afterEach();
    }

    QStringList steps;
    std::function<void()> afterEach;
};

QStringList stepList(const char *text)
{
    return QString::fromLatin1(text).split(QStringLiteral(", "));
}

class TellingNotificationCenter : public RecordingNotificationCenter
{
public:
    explicit TellingNotificationCenter(Record &record)
        : m_record(record)
    {
    }
    void requestAuthorization(Completion<void> done) override
    {
        m_record.add("authorization");
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
        m_record.add("login item");
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
        const bool isPoll = request.url.host() == QUrl(Endpoints().binanceMain).host();
        m_record.add(isPoll ? "request" : "logo request");
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
        m_record.add("content");
        RecordingStatusItem::setContent(content);
    }
    void setMenu(std::function<Menu()> provider) override
    {
        m_record.add("menu");
        RecordingStatusItem::setMenu(std::move(provider));
    }

private:
    Record &m_record;
};

class TellingPopoverSurface : public PopoverSurface
{
public:
    explicit TellingPopoverSurface(Record &record)
        : m_record(record)
    {
        m_record.add("popover surface");
    }
    bool show(QWidget &, QSize, int, const PopoverAnchor &) override
    {
        m_record.add("popover");
        return true;
    }
    void resize(QSize) override {}
    void hide() override {}

private:
    Record &m_record;
};

class TellingDesktopSurface : public RecordingDesktopSurface
{
public:
    TellingDesktopSurface(QStringList &calls, Record &record)
        : RecordingDesktopSurface(calls)
        , m_record(record)
    {
        m_record.add("desktop surface");
    }
    void setInteractive(bool interactive) override
    {
        RecordingDesktopSurface::setInteractive(interactive);
        if (interactive && !std::exchange(m_wasInteractive, true))
            m_record.steps.append(QStringLiteral("adjusting"));
    }

private:
    Record &m_record;
    bool m_wasInteractive = false;
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
        m_record->add("widget writer");
    }
    void operator()() const { m_record->add("widgets reloaded"); }

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
        QObject::connect(delegate.get(), &AppDelegate::languageApplied, [this] { record.add("language"); });
        QObject::connect(delegate.get(), &AppDelegate::quitRequested, [this] { record.add("quit"); });
        record.steps.clear();
    }

    AppEnvironment environment()
    {
        return {.defaults = storage,
                .httpClient = http,
                .notificationCenter = notifications,
                .loginItem = loginItem,
                .attachUpdater = [this](UpdateController &) { record.add("updater"); },
                .makeStatusItem =
                    [this] {
                        record.add("status item");
                        return std::make_unique<TellingStatusItem>(record);
                    },
                .makePopoverSurface = [this] { return std::make_unique<TellingPopoverSurface>(record); },
                .makeDesktopSurface = [this] { return std::make_unique<TellingDesktopSurface>(overlayCalls, record); },
                .reloadWidgets = TellingReload(record),
                .isSecondCopy =
                    [this] {
                        record.add("second copy?");
                        return secondCopy;
                    },
                .container = container.path(),
                .environment = processEnvironment,
                .clock = clock.clock()};
    }

    QStringList launch()
    {
        delegate->applicationDidFinishLaunching();
        return record.steps;
    }
    void change(const std::function<void(AppSettings &)> &edit)
    {
        AppSettings settings = delegate->settingsViewModel().settings();
        edit(settings);
        delegate->settingsViewModel().update(settings);
    }
    void setInterval(double seconds)
    {
        change([seconds](AppSettings &settings) { settings.pollingInterval = seconds; });
    }
    /// From now on posts both notifications after each step, which tells from when on they are observed.
    void postAfterEachStep()
    {
        QObject::connect(delegate.get(), &AppDelegate::settingsWindowRequested,
                         [this] { record.steps.append(QStringLiteral("settings window")); });
        record.afterEach = [this] {
            delegate->notificationCenter().post(NotificationCenter::adjustDesktopOverlay);
            delegate->notificationCenter().post(NotificationCenter::navigate);
        };
    }
    int polls() const { return static_cast<int>(http.urls(Endpoints().binanceMain).size()); }

    Record record;
    TestClock clock;
    QTemporaryDir container;
    MemoryDefaults storage;
    TellingHttpClient http{record};
    TellingNotificationCenter notifications{record};
    TellingLoginItem loginItem{record};
    QStringList overlayCalls;
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
    QCOMPARE(world.record.steps, QStringList());
    QCOMPARE(world.storage.writes, 0);
}

void StartUpOrderTest::everyStepInItsOrder()
{
    StartUpOrderWorld world;
    world.change([](AppSettings &settings) {
        settings.watchlistCoins.push_back({QStringLiteral("stellar")}); // has no shipped logo
        settings.desktopOverlayEnabled = true;
    });
    world.delegate->setOpensPopoverAfterLaunch(true);
    world.postAfterEachStep();
    QStringList steps = world.launch();
    world.record.add("started");
    QCOMPARE(world.record.steps.mid(steps.size()), stepList("started, settings window"));
    // The language that is applied last draws the item once more.
    QCOMPARE(steps.mid(steps.indexOf(QStringLiteral("login item")) + 1), stepList("content, language"));
    steps.removeAll(QStringLiteral("content"));
    steps.removeDuplicates();
    QCOMPARE(steps, stepList("second copy?, updater, status item, request, menu, popover surface, widget writer, "
                             "desktop surface, logo request, popover, adjusting, authorization, login item, language"));
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
    world.record.steps.clear();
    QCOMPARE(world.launch().mid(0, 2), stepList("second copy?, status item"));
    QVERIFY(!world.delegate->updateController().isAvailable());
}

void StartUpOrderTest::testHostStopsBeforeTheFirstStep()
{
    StartUpOrderWorld world;
    world.processEnvironment.insert(QStringLiteral("XCTestConfigurationFilePath"), QString());
    world.delegate = std::make_unique<AppDelegate>(world.environment());
    world.record.steps.clear();
    QCOMPARE(world.launch(), QStringList());
}

void StartUpOrderTest::secondCopyStopsAtTheSecondStep()
{
    StartUpOrderWorld world;
    world.secondCopy = true;
    QCOMPARE(world.launch(), stepList("second copy?, quit"));
}

void StartUpOrderTest::widgetWriterWorksAfterStartUp()
{
    StartUpOrderWorld world;
    const QString snapshot = world.container.filePath(QStringLiteral("widget-snapshot.json"));
    QVERIFY(!world.launch().contains(QStringLiteral("widgets reloaded")));
    QTRY_COMPARE(world.record.steps.count(QStringLiteral("widgets reloaded")), 1);
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

TICKWISE_WIDGET_TEST(StartUpOrderTest)
#include "StartUpOrderTest.moc"
