#include "platform/storage/UserDefaults.h"

#include "doubles/FullDisk.h"
#include "doubles/LogCapture.h"
#include "doubles/TestProgram.h"
#include "platform/Files.h"
#include "settings/SettingsViewModel.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace tickwise;
using namespace tickwise::test;
using tickwise::test::FullDisk;
using tickwise::test::LogCapture;

namespace {

const QString identifier = QStringLiteral("com.pelmo.tickwise");
const QString key = QStringLiteral("appSettings");

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

AppSettings withInterval(double seconds)
{
    AppSettings settings;
    settings.pollingInterval = seconds;
    return settings;
}

QString brokenName(const QString &path)
{
    return path + QStringLiteral(".broken");
}

} // namespace

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void oneFolderAnIdentifier();
    void oneFileAKey();
    void readingWritesNothing();
    void storesAndRemoves();
    void removingWhatIsNotStored();
    void storesAnyBytes();
    void seesEveryOneOfQuickChanges();
    void fileIsForTheUserAlone();
    void relativeConfigHomeIsIgnored();
    void followsALink();
    void theFileIsTheSettingsDocument();
    void fullDiskKeepsWhatIsStored();
    void removesOnAFullDisk();
    void fullDiskWithSettings();
    void pathThatCannotBeWritten_data();
    void pathThatCannotBeWritten();
    void refusedValueIsKeptAside();
    void refusedValueIsKeptBeforeItIsRemoved();
    void refusedValueThatCannotBeKeptAside();
    void refusedValueOnAFullDisk();
    void valueThatCannotBeRead_data();
    void valueThatCannotBeRead();
    void largestValue();
    void healthyValueIsNotKeptAside();
    void refusedSettings_data();
    void refusedSettings();

private:
    QStringList names() const;

    QString m_path;
    std::unique_ptr<QTemporaryDir> m_home;
    QByteArray m_configHome;
};

void UserDefaultsTest::init()
{
    m_configHome = qgetenv("XDG_CONFIG_HOME");
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    qputenv("XDG_CONFIG_HOME", m_home->path().toUtf8());
    m_path = m_home->filePath(QStringLiteral("com.pelmo.tickwise/appSettings.json"));
}

void UserDefaultsTest::cleanup()
{
    qputenv("XDG_CONFIG_HOME", m_configHome);
    m_home.reset();
}

/// What is in the folder of the defaults.
QStringList UserDefaultsTest::names() const
{
    return QDir(QFileInfo(m_path).path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

void UserDefaultsTest::oneFolderAnIdentifier()
{
    QCOMPARE(UserDefaults(identifier).path(key), m_path);
    UserDefaults demo(QStringLiteral("com.pelmo.tickwise.demo"));
    QCOMPARE(demo.path(key), m_home->filePath(QStringLiteral("com.pelmo.tickwise.demo/appSettings.json")));
    QVERIFY(demo.setData(key, QByteArray("{}")).has_value());
    QVERIFY(!UserDefaults(identifier).data(key));
}

void UserDefaultsTest::oneFileAKey()
{
    UserDefaults defaults(identifier);
    const QString other = QStringLiteral("updater");
    QVERIFY(defaults.setData(key, QByteArray("one")).has_value());
    QVERIFY(defaults.setData(other, QByteArray("two")).has_value());
    QCOMPARE(names(), QStringList({QStringLiteral("appSettings.json"), QStringLiteral("updater.json")}));
    QCOMPARE(defaults.data(key), std::optional(QByteArray("one")));
    QCOMPARE(defaults.data(other), std::optional(QByteArray("two")));
    QVERIFY(defaults.setData(key, std::nullopt).has_value());
    QCOMPARE(defaults.data(other), std::optional(QByteArray("two")));
}

void UserDefaultsTest::readingWritesNothing()
{
    QVERIFY(!UserDefaults(identifier).data(key));
    QVERIFY(QDir(m_home->path()).isEmpty());
}

void UserDefaultsTest::storesAndRemoves()
{
    UserDefaults defaults(identifier);
    QVERIFY(defaults.setData(key, QByteArray("one")).has_value());
    QCOMPARE(defaults.data(key), std::optional(QByteArray("one")));
    QVERIFY(defaults.setData(key, QByteArray("two")).has_value());
    QCOMPARE(UserDefaults(identifier).data(key), std::optional(QByteArray("two")));
    QCOMPARE(content(m_path), QByteArray("two"));
    QVERIFY(defaults.setData(key, std::nullopt).has_value());
    QVERIFY(!UserDefaults(identifier).data(key));
    QVERIFY(names().isEmpty());
}

void UserDefaultsTest::removingWhatIsNotStored()
{
    QVERIFY(UserDefaults(identifier).setData(key, std::nullopt).has_value());
    QVERIFY(QDir(m_home->path()).isEmpty());
}

void UserDefaultsTest::storesAnyBytes()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(static_cast<char>(byte));
    UserDefaults defaults(identifier);
    for (const QByteArray &bytes : {QByteArray(""), all, QByteArray("a\nb\\c\"d=;[e]"), QByteArray(1000000, '\\')}) {
        QVERIFY(defaults.setData(key, bytes).has_value());
        QVERIFY(UserDefaults(identifier).data(key) == bytes);
    }
}

void UserDefaultsTest::seesEveryOneOfQuickChanges()
{
    UserDefaults defaults(identifier);
    for (int i = 100; i < 300; ++i) {
        QVERIFY(defaults.setData(key, QByteArray::number(i)).has_value());
        QCOMPARE(defaults.data(key), std::optional(QByteArray::number(i)));
    }
}

void UserDefaultsTest::fileIsForTheUserAlone()
{
    QVERIFY(UserDefaults(identifier).setData(key, QByteArray("{}")).has_value());
    QCOMPARE(mode(m_path), 0600U);
    QCOMPARE(mode(QFileInfo(m_path).path()), 0700U);
}

void UserDefaultsTest::relativeConfigHomeIsIgnored()
{
    qputenv("XDG_CONFIG_HOME", "relative/config");
    QCOMPARE(UserDefaults(identifier).path(key),
             QDir::home().filePath(QStringLiteral(".config/com.pelmo.tickwise/appSettings.json")));
}

void UserDefaultsTest::followsALink()
{
    const QString real = m_home->filePath(QStringLiteral("dotfiles.json"));
    put(real, "{}");
    QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
    QVERIFY(QFile::link(real, m_path));
    QCOMPARE(UserDefaults(identifier).data(key), std::optional(QByteArray("{}")));
    QVERIFY(UserDefaults(identifier).setData(key, QByteArray("{ }")).has_value());
    QVERIFY(QFileInfo(m_path).isSymLink());
    QCOMPARE(content(real), QByteArray("{ }"));
}

void UserDefaultsTest::theFileIsTheSettingsDocument()
{
    UserDefaults defaults(identifier);
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    model.update(withInterval(3));
    QVERIFY(content(m_path).startsWith("{\"launchAtLogin\":false,"));
    put(m_path, R"({"pollingInterval": 7})");
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(7));
}

void UserDefaultsTest::fullDiskKeepsWhatIsStored()
{
    UserDefaults defaults(identifier);
    QVERIFY(defaults.setData(key, QByteArray("small")).has_value());
    {
        const FullDisk full(1024);
        const Result<void> stored = defaults.setData(key, QByteArray(5000, 'x'));
        QVERIFY(!stored.has_value());
        QCOMPARE(std::get<FileError>(stored.error()).path, m_path);
        QCOMPARE(defaults.data(key), std::optional(QByteArray("small")));
    }
    QVERIFY(defaults.setData(key, QByteArray(5000, 'y')).has_value());
    QCOMPARE(UserDefaults(identifier).data(key), std::optional(QByteArray(5000, 'y')));
    QCOMPARE(names().size(), 1);
}

void UserDefaultsTest::removesOnAFullDisk()
{
    UserDefaults defaults(identifier);
    QVERIFY(defaults.setData(key, QByteArray("stored")).has_value());
    {
        const FullDisk full(0);
        QVERIFY(defaults.setData(key, std::nullopt).has_value());
    }
    QVERIFY(!defaults.data(key));
    QVERIFY(names().isEmpty());
}

void UserDefaultsTest::fullDiskWithSettings()
{
    const LogCapture log;
    UserDefaults defaults(identifier);
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    model.update(withInterval(3));
    {
        const FullDisk full(64);
        model.update(withInterval(4));
    }
    QCOMPARE(model.settings().pollingInterval, 4.0);
    const QStringList lines = log.texts(QStringLiteral("com.pelmo.tickwise.Settings"));
    QCOMPARE(lines.size(), 1);
    QVERIFY(lines.front().startsWith(QStringLiteral("Failed to store settings: %1: ").arg(m_path)));
    QCOMPARE(log.lines().size(), 1U);
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(3));
    model.update(withInterval(5));
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(5));
}

void UserDefaultsTest::pathThatCannotBeWritten_data()
{
    QTest::addColumn<std::function<void()>>("prepare");
    QTest::newRow("below a file") << std::function<void()>(
        [this] { put(m_home->filePath(QStringLiteral("com.pelmo.tickwise")), "a file"); });
    QTest::newRow("file system without files") << std::function<void()>([] { qputenv("XDG_CONFIG_HOME", "/proc"); });
    QTest::newRow("device") << std::function<void()>([] { qputenv("XDG_CONFIG_HOME", "/dev/null"); });
}

void UserDefaultsTest::pathThatCannotBeWritten()
{
    QFETCH(std::function<void()>, prepare);
    prepare();
    const LogCapture log;
    UserDefaults defaults(identifier);
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    QVERIFY(model.settings() == AppSettings());
    const Result<void> stored = defaults.setData(key, QByteArray("{}"));
    QVERIFY(!stored.has_value());
    QCOMPARE(std::get<FileError>(stored.error()).path, defaults.path(key));
    QVERIFY(!defaults.data(key));
    QCOMPARE(log.lines().size(), 0U);
    model.update(withInterval(3));
    QCOMPARE(model.settings().pollingInterval, 3.0);
    QCOMPARE(log.lines().size(), 1U);
}

void UserDefaultsTest::refusedValueIsKeptAside()
{
    const QByteArray damaged("{\"language\": \0\xff", 15);
    put(m_path, damaged);
    const LogCapture log;
    UserDefaults defaults(identifier);
    QCOMPARE(defaults.data(key), std::optional(damaged));
    defaults.keepBeforeOverwriting(key);
    QVERIFY(!QFile::exists(brokenName(m_path)));
    QVERIFY(defaults.setData(key, QByteArray("{}")).has_value());
    QCOMPARE(content(brokenName(m_path)), damaged);
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.UserDefaults")),
             QStringList(QStringLiteral("Unusable data kept as ") + brokenName(m_path)));
    QVERIFY(defaults.setData(key, QByteArray("{ }")).has_value());
    QCOMPARE(log.lines().size(), 1U);
    QCOMPARE(content(brokenName(m_path)), damaged);
    QCOMPARE(defaults.data(key), std::optional(QByteArray("{ }")));
    // A later one takes the place of the earlier.
    defaults.keepBeforeOverwriting(key);
    QVERIFY(defaults.setData(key, QByteArray("{}")).has_value());
    QCOMPARE(content(brokenName(m_path)), QByteArray("{ }"));
}

void UserDefaultsTest::refusedValueIsKeptBeforeItIsRemoved()
{
    put(m_path, "damaged");
    const LogCapture log;
    UserDefaults defaults(identifier);
    defaults.keepBeforeOverwriting(key);
    QVERIFY(defaults.setData(key, std::nullopt).has_value());
    QCOMPARE(content(brokenName(m_path)), QByteArray("damaged"));
    QVERIFY(!QFile::exists(m_path));
}

void UserDefaultsTest::refusedValueThatCannotBeKeptAside()
{
    put(m_path, "damaged");
    QVERIFY(QDir().mkpath(brokenName(m_path) + QStringLiteral("/x")));
    UserDefaults defaults(identifier);
    defaults.keepBeforeOverwriting(key);
    const Result<void> stored = defaults.setData(key, QByteArray("{}"));
    QVERIFY(!stored.has_value());
    QCOMPARE(std::get<FileError>(stored.error()).path, m_path);
    QCOMPARE(content(m_path), QByteArray("damaged"));
}

void UserDefaultsTest::refusedValueOnAFullDisk()
{
    put(m_path, QByteArray(5000, 'x'));
    const LogCapture log;
    UserDefaults defaults(identifier);
    defaults.keepBeforeOverwriting(key);
    {
        const FullDisk full(1024);
        QVERIFY(!defaults.setData(key, QByteArray("{}")).has_value());
    }
    QCOMPARE(content(m_path), QByteArray(5000, 'x'));
    QVERIFY(defaults.setData(key, QByteArray("{}")).has_value());
    QCOMPARE(content(brokenName(m_path)), QByteArray(5000, 'x'));
}

void UserDefaultsTest::valueThatCannotBeRead_data()
{
    QTest::addColumn<std::function<void()>>("prepare");
    QTest::newRow("folder") << std::function<void()>([this] { QVERIFY(QDir().mkpath(m_path + QStringLiteral("/x"))); });
    QTest::newRow("pipe") << std::function<void()>([this] {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        QCOMPARE(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    });
    QTest::newRow("too large") << std::function<void()>(
        [this] { put(m_path, QByteArray(UserDefaults::largestFile + 1, 'x')); });
}

void UserDefaultsTest::valueThatCannotBeRead()
{
    QFETCH(std::function<void()>, prepare);
    prepare();
    const LogCapture log;
    UserDefaults defaults(identifier);
    QVERIFY(!defaults.data(key));
    QVERIFY(!defaults.data(key));
    const QStringList lines = log.texts(QStringLiteral("com.pelmo.tickwise.UserDefaults"));
    QCOMPARE(lines.size(), 1);
    QVERIFY(lines.front().startsWith(QStringLiteral("Failed to read stored data: ") + m_path));
    QCOMPARE(log.lines().front().type, QtWarningMsg);
    QVERIFY(defaults.setData(key, QByteArray("{}")).has_value());
    QVERIFY(QFileInfo::exists(brokenName(m_path)));
    QCOMPARE(QFileInfo(brokenName(m_path)).isFile(), QByteArray(QTest::currentDataTag()) == "too large");
    QCOMPARE(defaults.data(key), std::optional(QByteArray("{}")));
}

void UserDefaultsTest::largestValue()
{
    put(m_path, QByteArray(UserDefaults::largestFile, 'x'));
    const LogCapture log;
    QVERIFY(UserDefaults(identifier).data(key) == QByteArray(UserDefaults::largestFile, 'x'));
    QVERIFY(log.lines().empty());
}

void UserDefaultsTest::healthyValueIsNotKeptAside()
{
    UserDefaults defaults(identifier);
    UserDefaultsSettingsStore store(defaults);
    store.save(withInterval(3));
    QVERIFY(store.load() == withInterval(3));
    store.save(withInterval(4));
    QVERIFY(!QFile::exists(brokenName(m_path)));
}

void UserDefaultsTest::refusedSettings_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("text");
    QTest::newRow("deep") << QByteArray(1000000, '[') << QStringLiteral("not valid JSON at byte 1000001");
    QTest::newRow("invalid UTF-8") << QByteArray("{\"language\": \"\xff\"}")
                                   << QStringLiteral("not valid JSON at byte 15");
    QTest::newRow("not an object") << QByteArray("[]") << QStringLiteral("not an object");
    QTest::newRow("too large") << QByteArray(5000000, ' ')
                               << QStringLiteral("5000000 bytes are more than the 4194304 of the largest document");
}

void UserDefaultsTest::refusedSettings()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, text);
    put(m_path, document);
    const LogCapture log;
    UserDefaults defaults(identifier);
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    QVERIFY(model.settings() == AppSettings());
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Settings")),
             QStringList(QStringLiteral("Failed to decode stored settings: ") + text));
    QVERIFY(content(m_path) == document);
    model.update(withInterval(3));
    QVERIFY(content(brokenName(m_path)) == document);
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(3));
}

TICKWISE_TEST(UserDefaultsTest)
#include "UserDefaultsTest.moc"
