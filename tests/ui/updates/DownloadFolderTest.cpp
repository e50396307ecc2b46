#include "ui/updates/DownloadFolder.h"

#include "doubles/TestProgram.h"

#include <QDir>
#include <QTemporaryDir>

using namespace tickwise;

namespace {

void put(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

QStringList filesIn(const QString &path)
{
    return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class DownloadFolderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void isForTheOwnerAlone();
    void takesAFolderThatExists();
    void removesItsOwnFiles();
    void leavesOtherFiles();
    void staysInsideTheFolder_data();
    void staysInsideTheFolder();
    void refusesALink();
    void partialsAreNoPackages();
    void failures();

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_path;
};

void DownloadFolderTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_path = m_directory->filePath(QStringLiteral("cache/updates"));
}

void DownloadFolderTest::isForTheOwnerAlone()
{
    QVERIFY(DownloadFolder(m_path).prepare());
    const auto others =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    QVERIFY(!(QFile::permissions(m_path) & others));
    QVERIFY(QFile::permissions(m_path).testFlag(QFile::ExeOwner));
}

void DownloadFolderTest::takesAFolderThatExists()
{
    QVERIFY(QDir().mkpath(m_path));
    QVERIFY(QFile::setPermissions(m_path, QFile::Permissions(0x7777)));
    isForTheOwnerAlone();
}

void DownloadFolderTest::removesItsOwnFiles()
{
    const DownloadFolder folder(m_path);
    QVERIFY(folder.prepare());
    QVERIFY(folder.recordPackage(QStringLiteral("tickwise.deb")));
    put(folder.packagePath(QStringLiteral("tickwise.deb")));
    put(folder.partialPath());
    QCOMPARE(filesIn(m_path).size(), 3);
    DownloadFolder(m_path).clear();
    QVERIFY(!QFile::exists(m_path));
    QVERIFY(QFile::exists(m_directory->filePath(QStringLiteral("cache"))));
}

void DownloadFolderTest::leavesOtherFiles()
{
    const DownloadFolder folder(m_path);
    QVERIFY(folder.prepare());
    QVERIFY(folder.recordPackage(QStringLiteral("tickwise.deb")));
    put(folder.packagePath(QStringLiteral("tickwise.deb")));
    put(m_path + QStringLiteral("/letter.txt"));
    QVERIFY(QDir().mkpath(m_path + QStringLiteral("/photos")));
    put(m_path + QStringLiteral("/photos/tickwise.deb"));
    QVERIFY(folder.prepare());
    QCOMPARE(filesIn(m_path), (QStringList{QStringLiteral("letter.txt"), QStringLiteral("photos")}));
    QCOMPARE(filesIn(m_path + QStringLiteral("/photos")).size(), 1);
}

void DownloadFolderTest::staysInsideTheFolder_data()
{
    QTest::addColumn<QString>("record");
    QTest::newRow("parent") << QStringLiteral("../precious");
    QTest::newRow("absolute") << m_path;
    QTest::newRow("nothing") << QString();
}

void DownloadFolderTest::staysInsideTheFolder()
{
    QFETCH(QString, record);
    const DownloadFolder folder(m_path);
    QVERIFY(folder.prepare());
    const QString precious = m_directory->filePath(QStringLiteral("cache/precious"));
    put(precious);
    QVERIFY(folder.recordPackage(record));
    folder.clear();
    QVERIFY(QFile::exists(precious));
    QVERIFY(!QFile::exists(m_path));
}

void DownloadFolderTest::refusesALink()
{
    const QString home = m_directory->filePath(QStringLiteral("home"));
    QVERIFY(QDir().mkpath(home));
    put(home + QStringLiteral("/.part"));
    QVERIFY(QDir().mkpath(m_directory->filePath(QStringLiteral("cache"))));
    QVERIFY(QFile::link(home, m_path));
    const DownloadFolder folder(m_path);
    const Result<void> prepared = folder.prepare();
    QVERIFY(!prepared);
    QVERIFY(description(prepared.error()).contains(m_path));
    folder.clear();
    QCOMPARE(filesIn(home), QStringList{QStringLiteral(".part")});
    QVERIFY(QFileInfo(m_path).isSymLink());
}

void DownloadFolderTest::partialsAreNoPackages()
{
    const DownloadFolder folder(m_path);
    QVERIFY(!isPackageFileName(QFileInfo(folder.partialPath()).fileName()));
    QVERIFY(isPackageFileName(QStringLiteral("download.part")));
}

void DownloadFolderTest::failures()
{
    QVERIFY(!DownloadFolder(QStringLiteral("/dev/null/updates")).prepare());
    QVERIFY(!DownloadFolder(QStringLiteral("/dev/null/updates")).recordPackage(QStringLiteral("tickwise.deb")));
}

TICKWISE_TEST(DownloadFolderTest)
#include "DownloadFolderTest.moc"
