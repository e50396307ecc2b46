#include "support/files/WholeFile.h"

#include "doubles/FullDisk.h"
#include "doubles/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

using namespace tickwise;
using tickwise::test::FullDisk;

namespace {

constexpr qint64 large = 1000000;

unsigned mode(const QString &path)
{
    struct stat status
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

FileError fileError(const auto &result)
{
    return result ? FileError{QStringLiteral("no error"), {}} : std::get<FileError>(result.error());
}

} // namespace

class WholeFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void writesAndReads_data();
    void writesAndReads();
    void permissions();
    void missingFoldersAreForTheUserAlone();
    void existingFolderStaysAsItIs();
    void followsALink();
    void readerOfTheOldFileKeepsIt();
    void leftoverOfAKilledWriterGoes();
    void fullDiskKeepsTheOldContent();
    void cannotBeWritten_data();
    void cannotBeWritten();
    void sizeLimit();
    void cannotBeRead_data();
    void cannotBeRead();

private:
    QStringList names() const;

    QString m_path;
    std::unique_ptr<QTemporaryDir> m_home;
    mode_t m_mask = 0;
};

void WholeFileTest::init()
{
    m_mask = ::umask(022);
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    m_path = m_home->filePath(QStringLiteral("document.json"));
}

void WholeFileTest::cleanup()
{
    m_home.reset();
    ::umask(m_mask);
}

QStringList WholeFileTest::names() const
{
    return QDir(m_home->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void WholeFileTest::writesAndReads_data()
{
    QTest::addColumn<Durability>("durability");
    QTest::newRow("synced") << Durability::synced;
    QTest::newRow("unsynced") << Durability::unsynced;
}

void WholeFileTest::writesAndReads()
{
    QFETCH(Durability, durability);
    for (const QByteArray &bytes :
         {QByteArray("one"), QByteArray(), QByteArray("a\0b\xff", 4), QByteArray(300000, 'x')}) {
        QVERIFY(writeWholeFile(m_path, bytes, durability).has_value());
        QVERIFY(readWholeFile(m_path, large) == bytes);
        QCOMPARE(names(), QStringList(QStringLiteral("document.json")));
    }
}

void WholeFileTest::permissions()
{
    QVERIFY(writeWholeFile(m_path, "{}").has_value());
    QCOMPARE(mode(m_path), 0600U);
    const auto readable = ownerOnly | QFileDevice::ReadGroup | QFileDevice::ReadOther;
    QVERIFY(writeWholeFile(m_path, "{}", Durability::unsynced, readable).has_value());
    QCOMPARE(mode(m_path), 0644U);
    QVERIFY(writeWholeFile(m_path, "{}").has_value());
    QCOMPARE(mode(m_path), 0600U);
}

void WholeFileTest::missingFoldersAreForTheUserAlone()
{
    const QString path = m_home->filePath(QStringLiteral("a/b/document.json"));
    QVERIFY(writeWholeFile(path, "{}").has_value());
    QCOMPARE(mode(m_home->filePath(QStringLiteral("a"))), 0700U);
    QCOMPARE(mode(m_home->filePath(QStringLiteral("a/b"))), 0700U);
    QVERIFY(makeFolder(m_home->filePath(QStringLiteral("c/d"))).has_value());
    QCOMPARE(mode(m_home->filePath(QStringLiteral("c"))), 0700U);
    QCOMPARE(mode(m_home->filePath(QStringLiteral("c/d"))), 0700U);
}

void WholeFileTest::existingFolderStaysAsItIs()
{
    const QString folder = m_home->filePath(QStringLiteral("a"));
    QCOMPARE(::mkdir(QFile::encodeName(folder).constData(), 0755), 0);
    QVERIFY(makeFolder(folder).has_value());
    QVERIFY(writeWholeFile(folder + QStringLiteral("/x"), "{}").has_value());
    QCOMPARE(mode(folder), 0755U);
}

void WholeFileTest::followsALink()
{
    const QString real = m_home->filePath(QStringLiteral("dotfiles"));
    QVERIFY(writeWholeFile(real, "old").has_value());
    QVERIFY(QFile::link(real, m_path));
    QVERIFY(writeWholeFile(m_path, "new").has_value());
    QVERIFY(QFileInfo(m_path).isSymLink());
    QVERIFY(readWholeFile(real, large) == QByteArray("new"));
}

void WholeFileTest::readerOfTheOldFileKeepsIt()
{
    QVERIFY(writeWholeFile(m_path, "old").has_value());
    QFile reader(m_path);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(writeWholeFile(m_path, "new").has_value());
    QCOMPARE(reader.readAll(), QByteArray("old"));
}

void WholeFileTest::leftoverOfAKilledWriterGoes()
{
    QFile leftover(m_path + QStringLiteral(".new"));
    QVERIFY(leftover.open(QIODevice::WriteOnly));
    QCOMPARE(leftover.write("half"), 4);
    leftover.close();
    QVERIFY(writeWholeFile(m_path, "whole").has_value());
    QVERIFY(readWholeFile(m_path, large) == QByteArray("whole"));
    QCOMPARE(names(), QStringList(QStringLiteral("document.json")));
}

void WholeFileTest::fullDiskKeepsTheOldContent()
{
    QVERIFY(writeWholeFile(m_path, "old").has_value());
    {
        const FullDisk full(1024);
        QCOMPARE(fileError(writeWholeFile(m_path, QByteArray(5000, 'x'))).path, m_path);
        QCOMPARE(fileError(writeWholeFile(m_path, QByteArray(1025, 'x'))).path, m_path);
        QVERIFY(readWholeFile(m_path, large) == QByteArray("old"));
        QVERIFY(writeWholeFile(m_path, QByteArray(1024, 'x')).has_value());
    }
    QVERIFY(readWholeFile(m_path, large) == QByteArray(1024, 'x'));
    QCOMPARE(names(), QStringList(QStringLiteral("document.json")));
}

void WholeFileTest::cannotBeWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("folder") << QStringLiteral("folder");
    QTest::newRow("below a file") << QStringLiteral("file/x");
    QTest::newRow("far below a file") << QStringLiteral("file/x/y");
    QTest::newRow("file system without files") << QStringLiteral("/proc/x");
}

void WholeFileTest::cannotBeWritten()
{
    QFETCH(QString, name);
    QVERIFY(makeFolder(m_home->filePath(QStringLiteral("folder"))).has_value());
    QVERIFY(writeWholeFile(m_home->filePath(QStringLiteral("file")), "kept").has_value());
    const QString path = QDir(m_home->path()).absoluteFilePath(name);
    const FileError error = fileError(writeWholeFile(path, "{}"));
    QCOMPARE(error.path, path);
    QVERIFY(!error.text.isEmpty());
    QCOMPARE(names(), QStringList({QStringLiteral("file"), QStringLiteral("folder")}));
}

void WholeFileTest::sizeLimit()
{
    QVERIFY(writeWholeFile(m_path, QByteArray(100, 'x')).has_value());
    QVERIFY(readWholeFile(m_path, 100) == QByteArray(100, 'x'));
    const FileError error = fileError(readWholeFile(m_path, 99));
    QCOMPARE(error.path, m_path);
    QCOMPARE(error.text, QStringLiteral("is larger than 99 bytes"));
}

void WholeFileTest::cannotBeRead_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << QStringLiteral("missing");
    QTest::newRow("folder") << QStringLiteral("folder");
    QTest::newRow("pipe") << QStringLiteral("pipe");
    QTest::newRow("device") << QStringLiteral("/dev/zero");
}

void WholeFileTest::cannotBeRead()
{
    QFETCH(QString, name);
    QVERIFY(makeFolder(m_home->filePath(QStringLiteral("folder"))).has_value());
    QCOMPARE(::mkfifo(QFile::encodeName(m_home->filePath(QStringLiteral("pipe"))).constData(), 0600), 0);
    const QString path = QDir(m_home->path()).absoluteFilePath(name);
    const FileError error = fileError(readWholeFile(path, large));
    QCOMPARE(error.path, path);
    QVERIFY(!error.text.isEmpty());
}

TICKWISE_TEST(WholeFileTest)
#include "WholeFileTest.moc"
