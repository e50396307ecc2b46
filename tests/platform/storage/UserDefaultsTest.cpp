#include "platform/storage/UserDefaults.h"
#include "doubles/TestProgram.h"

#include "doubles/LogCapture.h"
#include "settings/SettingsViewModel.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>

using namespace tickwise;
using tickwise::test::LogCapture;

namespace {

const QString key = QStringLiteral("appSettings");

/// No file can grow beyond that size while it lives, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int) = nullptr;
};

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

void write(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray garbage(qsizetype size)
{
    QByteArray bytes(size, '\0');
    quint32 state = 12345;
    for (char &byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

AppSettings withInterval(double seconds)
{
    AppSettings settings;
    settings.pollingInterval = seconds;
    return settings;
}

} // namespace

class UserDefaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void fileBelongsToOrganizationAndApplication();
    void readingWritesNothing();
    void storesAndRemoves();
    void storesAnyBytes();
    void seesEveryOneOfQuickChanges();
    void fileIsForTheUserAlone();
    void followsALink();
    void keepsOtherEntries();
    void valueOfAnotherKind();
    void fullDiskKeepsWhatIsStored();
    void fullDiskWithSettings();
    void pathThatCannotBeWritten_data();
    void pathThatCannotBeWritten();
    void damagedFileIsKeptAside_data();
    void damagedFileIsKeptAside();
    void damagedFileThatWasReadFirst();
    void damagedFileThatCannotBeKeptAside();
    void healthyFileIsNotKeptAside();
    void hugeFile();
    void badDocuments_data();
    void badDocuments();

private:
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
    m_path = m_home->filePath(QStringLiteral("com.pelmo/tickwise.conf"));
}

void UserDefaultsTest::cleanup()
{
    qputenv("XDG_CONFIG_HOME", m_configHome);
    m_home.reset();
}

void UserDefaultsTest::fileBelongsToOrganizationAndApplication()
{
    QCOMPARE(UserDefaults().path(), m_path);
    UserDefaults demo(QStringLiteral("com.pelmo"), QStringLiteral("tickwise-demo"));
    QCOMPARE(demo.path(), m_home->filePath(QStringLiteral("com.pelmo/tickwise-demo.conf")));
    QVERIFY(demo.setData(key, QByteArray("{}")).has_value());
    QVERIFY(!UserDefaults().data(key));
}

void UserDefaultsTest::readingWritesNothing()
{
    QVERIFY(!UserDefaults().data(key));
    QVERIFY(QDir(m_home->path()).isEmpty());
}

void UserDefaultsTest::storesAndRemoves()
{
    UserDefaults defaults;
    QVERIFY(defaults.setData(key, QByteArray("one")).has_value());
    QCOMPARE(defaults.data(key), std::optional(QByteArray("one")));
    QVERIFY(defaults.setData(key, QByteArray("two")).has_value());
    QCOMPARE(UserDefaults().data(key), std::optional(QByteArray("two")));
    QVERIFY(content(m_path).contains("appSettings=@ByteArray(two)"));
    QVERIFY(defaults.setData(key, std::nullopt).has_value());
    QVERIFY(!UserDefaults().data(key));
    QVERIFY(!content(m_path).contains("appSettings"));
}

void UserDefaultsTest::storesAnyBytes()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(static_cast<char>(byte));
    UserDefaults defaults;
    for (const QByteArray &bytes : {QByteArray(""), all, QByteArray("a\nb\\c\"d=;[e]"), QByteArray(1000000, '\\')}) {
        QVERIFY(defaults.setData(key, bytes).has_value());
        QVERIFY(UserDefaults().data(key) == bytes);
    }
}

void UserDefaultsTest::seesEveryOneOfQuickChanges()
{
    UserDefaults defaults;
    for (int i = 100; i < 300; ++i) {
        QVERIFY(defaults.setData(key, QByteArray::number(i)).has_value());
        QCOMPARE(defaults.data(key), std::optional(QByteArray::number(i)));
    }
}

void UserDefaultsTest::fileIsForTheUserAlone()
{
    QVERIFY(UserDefaults().setData(key, QByteArray("{}")).has_value());
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QVERIFY(!(QFile::permissions(m_path) & others));
}

void UserDefaultsTest::followsALink()
{
    const QString real = m_home->filePath(QStringLiteral("dotfiles.conf"));
    write(real, "[General]\nother=1\n");
    QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
    QVERIFY(QFile::link(real, m_path));
    QVERIFY(UserDefaults().setData(key, QByteArray("{}")).has_value());
    QVERIFY(QFileInfo(m_path).isSymLink());
    QVERIFY(content(real).contains("appSettings="));
    QVERIFY(content(real).contains("other=1"));
}

void UserDefaultsTest::keepsOtherEntries()
{
    write(m_path, "; kept by hand\n[General]\nother=1\n\n[Window]\nwidth=5\n");
    QVERIFY(UserDefaults().setData(key, QByteArray("{}")).has_value());
    const QSettings stored(m_path, QSettings::IniFormat);
    QCOMPARE(stored.value(QStringLiteral("other")).toInt(), 1);
    QCOMPARE(stored.value(QStringLiteral("Window/width")).toInt(), 5);
}

void UserDefaultsTest::valueOfAnotherKind()
{
    write(m_path, "[General]\nappSettings=1, 2, 3\n");
    QCOMPARE(UserDefaults().data(key), std::optional(QByteArray()));
    const LogCapture log;
    UserDefaults defaults;
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == AppSettings());
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Settings")).size(), 1);
}

void UserDefaultsTest::fullDiskKeepsWhatIsStored()
{
    UserDefaults defaults;
    QVERIFY(defaults.setData(key, QByteArray("small")).has_value());
    const QByteArray before = content(m_path);
    {
        const FullDisk full(1024);
        // The first does not fit, the second is cut off before its last line break only.
        for (const int size : {5000, 990}) {
            const Result<void> stored = defaults.setData(key, QByteArray(size, 'x'));
            QVERIFY(!stored.has_value());
            QCOMPARE(std::get<FileError>(stored.error()).path, m_path);
            QCOMPARE(defaults.data(key), std::optional(QByteArray("small")));
        }
    }
    QCOMPARE(content(m_path), before);
    QVERIFY(defaults.setData(key, QByteArray(5000, 'y')).has_value());
    QCOMPARE(UserDefaults().data(key), std::optional(QByteArray(5000, 'y')));
    QCOMPARE(QDir(QFileInfo(m_path).path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void UserDefaultsTest::fullDiskWithSettings()
{
    const LogCapture log;
    UserDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    model.update(withInterval(3));
    {
        const FullDisk full(64);
        model.update(withInterval(4));
    }
    QCOMPARE(model.settings().pollingInterval, 4.0);
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Settings")),
             QStringList(QStringLiteral("Failed to store settings: %1: cannot be written").arg(m_path)));
    QCOMPARE(log.lines().size(), 1U);
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(3));
    model.update(withInterval(5));
    QVERIFY(UserDefaultsSettingsStore(defaults).load() == withInterval(5));
}

void UserDefaultsTest::pathThatCannotBeWritten_data()
{
    QTest::addColumn<std::function<void()>>("prepare");
    QTest::newRow("directory") << std::function<void()>([this] { QVERIFY(QDir().mkpath(m_path)); });
    QTest::newRow("below a file") << std::function<void()>(
        [this] { write(m_home->filePath(QStringLiteral("com.pelmo")), "a file"); });
    QTest::newRow("file system without files") << std::function<void()>([] { qputenv("XDG_CONFIG_HOME", "/proc"); });
    QTest::newRow("device") << std::function<void()>([] { qputenv("XDG_CONFIG_HOME", "/dev/null"); });
}

void UserDefaultsTest::pathThatCannotBeWritten()
{
    QFETCH(std::function<void()>, prepare);
    prepare();
    const LogCapture log;
    UserDefaults defaults;
    SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    QVERIFY(model.settings() == AppSettings());
    const Result<void> stored = defaults.setData(key, QByteArray("{}"));
    QVERIFY(!stored.has_value());
    QCOMPARE(std::get<FileError>(stored.error()).path, defaults.path());
    QVERIFY(!defaults.data(key));
    QCOMPARE(log.lines().size(), 0U);
    model.update(withInterval(3));
    QCOMPARE(model.settings().pollingInterval, 3.0);
    QCOMPARE(log.lines().size(), 1U);
}

void UserDefaultsTest::damagedFileIsKeptAside_data()
{
    QTest::addColumn<QByteArray>("damaged");
    QTest::newRow("text") << QByteArray("this is no settings file\n");
    QTest::newRow("JSON") << QByteArray("{\"language\": \"en\"}");
    QTest::newRow("broken header") << QByteArray("[General\nappSettings=1\n");
    QTest::newRow("cut off") << QByteArray("[General]\nother=1\nappSet");
    QTest::newRow("NUL bytes") << QByteArray(4096, '\0');
    QTest::newRow("garbage") << garbage(2000000);
}

void UserDefaultsTest::damagedFileIsKeptAside()
{
    QFETCH(QByteArray, damaged);
    write(m_path, damaged);
    const LogCapture log;
    UserDefaults defaults;
    QVERIFY(defaults.setData(key, QByteArray("{}")).has_value());
    const QString aside = m_path + QStringLiteral(".broken");
    QVERIFY(content(aside) == damaged);
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.UserDefaults")),
             QStringList(QStringLiteral("Damaged settings file kept as ") + aside));
    QVERIFY(defaults.setData(key, QByteArray("{ }")).has_value());
    QCOMPARE(log.lines().size(), 1U);
    QVERIFY(content(aside) == damaged);
    QCOMPARE(UserDefaults().data(key), std::optional(QByteArray("{ }")));
}

void UserDefaultsTest::damagedFileThatWasReadFirst()
{
    write(m_path, "no settings file, but read before");
    const LogCapture log;
    UserDefaults defaults;
    QVERIFY(!defaults.data(key));
    QVERIFY(!defaults.data(key));
    QCOMPARE(content(m_path), QByteArray("no settings file, but read before"));
    QVERIFY(defaults.setData(key, QByteArray("{}")).has_value());
    QCOMPARE(content(m_path + QStringLiteral(".broken")), QByteArray("no settings file, but read before"));
}

void UserDefaultsTest::damagedFileThatCannotBeKeptAside()
{
    write(m_path, "damaged");
    QVERIFY(QDir().mkpath(m_path + QStringLiteral(".broken/x")));
    const Result<void> stored = UserDefaults().setData(key, QByteArray("{}"));
    QVERIFY(!stored.has_value());
    QCOMPARE(std::get<FileError>(stored.error()).path, m_path);
    QCOMPARE(content(m_path), QByteArray("damaged"));
}

void UserDefaultsTest::healthyFileIsNotKeptAside()
{
    UserDefaults defaults;
    const QByteArray awkward("[\n;\x01]\"\\=,@Variant()");
    QVERIFY(defaults.setData(key, awkward).has_value());
    QVERIFY(defaults.setData(QStringLiteral("odd key/[x]\n="), awkward).has_value());
    QVERIFY(defaults.setData(key, awkward).has_value());
    QVERIFY(!QFile::exists(m_path + QStringLiteral(".broken")));
}

void UserDefaultsTest::hugeFile()
{
    const QByteArray huge = garbage(50000000);
    write(m_path, huge);
    const LogCapture log;
    UserDefaults defaults;
    QVERIFY(!defaults.data(key));
    QVERIFY(defaults.setData(key, QByteArray("{}")).has_value());
    QVERIFY(content(m_path + QStringLiteral(".broken")) == huge);
    QCOMPARE(defaults.data(key), std::optional(QByteArray("{}")));
    QCOMPARE(log.lines().size(), 1U);
}

void UserDefaultsTest::badDocuments_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("reason");
    QTest::newRow("deep") << QByteArray(1000000, '[') << QStringLiteral("not valid JSON at byte 1000001");
    QTest::newRow("invalid UTF-8") << QByteArray("{\"language\": \"\xff\"}")
                                   << QStringLiteral("not valid JSON at byte 15");
    QTest::newRow("too large") << QByteArray(5000000, ' ')
                               << QStringLiteral("5000000 bytes are more than a settings document may have");
}

void UserDefaultsTest::badDocuments()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, reason);
    UserDefaults defaults;
    QVERIFY(defaults.setData(key, document).has_value());
    const LogCapture log;
    const SettingsViewModel model{UserDefaultsSettingsStore(defaults)};
    QVERIFY(model.settings() == AppSettings());
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.Settings")),
             QStringList(QStringLiteral("Failed to decode stored settings: ") + reason));
    QVERIFY(defaults.data(key) == document);
}

TICKWISE_TEST(UserDefaultsTest)
#include "UserDefaultsTest.moc"
