#include "widget/program/FileWatcher.h"

#include "doubles/TestProgram.h"
#include "support/files/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tickwise;

class FileWatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void fileThatIsReplaced();
    void fileThatIsWrittenInPlace();
    void fileThatComesAndGoes();
    void folderThatIsNotThereYet();
    void foldersThatAreNotThereYet();
    void folderThatIsRemovedAndMadeAgain();
    void folderThatIsReplaced();
    void changesTogetherAreToldOnce();
    void otherFilesAreNotTold();

private:
    QString folder() const { return m_directory->filePath(QStringLiteral("group")); }
    QString path() const { return folder() + QStringLiteral("/file.json"); }
    void write(const QByteArray &bytes) const;
    void follow();
    void changesAreTold(int count);

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<FileWatcher> m_watcher;
    std::unique_ptr<QSignalSpy> m_changes;
};

void FileWatcherTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
}

void FileWatcherTest::cleanup()
{
    m_changes.reset();
    m_watcher.reset();
    m_directory.reset();
}

void FileWatcherTest::write(const QByteArray &bytes) const
{
    const Result<void> written = writeWholeFile(path(), bytes, Durability::unsynced);
    QVERIFY2(written, written ? "" : qPrintable(description(written.error())));
}

void FileWatcherTest::follow()
{
    m_watcher = std::make_unique<FileWatcher>(path());
    m_changes = std::make_unique<QSignalSpy>(m_watcher.get(), &FileWatcher::changed);
}

/// Waits for the change, and that it is one only.
void FileWatcherTest::changesAreTold(int count)
{
    QTRY_COMPARE(m_changes->size(), count);
    // Whatever was told late would be told before this other file is.
    FileWatcher marker(m_directory->filePath(QStringLiteral("marker")));
    QSignalSpy marked(&marker, &FileWatcher::changed);
    QVERIFY(writeWholeFile(m_directory->filePath(QStringLiteral("marker")), "x", Durability::unsynced));
    QTRY_COMPARE(marked.size(), 1);
    QVERIFY(QFile::remove(m_directory->filePath(QStringLiteral("marker"))));
    QTRY_COMPARE(marked.size(), 2);
    QCOMPARE(m_changes->size(), count);
}

void FileWatcherTest::fileThatIsReplaced()
{
    write("1");
    follow();
    for (int time = 1; time <= 3; ++time) {
        write(QByteArray::number(time * 10));
        changesAreTold(time);
    }
}

void FileWatcherTest::fileThatIsWrittenInPlace()
{
    write("1");
    follow();
    for (int time = 1; time <= 2; ++time) {
        QFile file(path());
        QVERIFY(file.open(QIODevice::Append));
        file.write("more");
        file.close();
        changesAreTold(time);
    }
}

void FileWatcherTest::fileThatComesAndGoes()
{
    QVERIFY(makeFolder(folder()));
    follow();
    write("1");
    changesAreTold(1);
    QVERIFY(QFile::remove(path()));
    changesAreTold(2);
    write("2");
    changesAreTold(3);
}

void FileWatcherTest::folderThatIsNotThereYet()
{
    follow();
    write("1");
    changesAreTold(1);
    write("22");
    changesAreTold(2);
}

void FileWatcherTest::foldersThatAreNotThereYet()
{
    const QString deep = m_directory->filePath(QStringLiteral("a/b/c/file.json"));
    FileWatcher watcher(deep);
    QSignalSpy changes(&watcher, &FileWatcher::changed);
    QVERIFY(QDir(m_directory->path()).mkpath(QStringLiteral("a/b")));
    QVERIFY(writeWholeFile(deep, "1", Durability::unsynced));
    QTRY_COMPARE(changes.size(), 1);
    QVERIFY(writeWholeFile(deep, "22", Durability::unsynced));
    QTRY_COMPARE(changes.size(), 2);
}

void FileWatcherTest::folderThatIsRemovedAndMadeAgain()
{
    write("1");
    follow();
    QVERIFY(QDir(folder()).removeRecursively());
    changesAreTold(1);
    write("22");
    changesAreTold(2);
}

void FileWatcherTest::folderThatIsReplaced()
{
    write("1");
    follow();
    QVERIFY(QFile::rename(folder(), folder() + QStringLiteral(".old")));
    write("22");
    QTRY_VERIFY(!m_changes->isEmpty());
    const auto before = m_changes->size();
    write("333");
    QTRY_COMPARE(m_changes->size(), before + 1);
}

void FileWatcherTest::changesTogetherAreToldOnce()
{
    write("1");
    follow();
    for (int size = 2; size < 10; ++size)
        write(QByteArray(size, 'x'));
    changesAreTold(1);
}

void FileWatcherTest::otherFilesAreNotTold()
{
    write("1");
    follow();
    QVERIFY(writeWholeFile(folder() + QStringLiteral("/other.json"), "x", Durability::unsynced));
    changesAreTold(0);
}

TICKWISE_TEST(FileWatcherTest)
#include "FileWatcherTest.moc"
