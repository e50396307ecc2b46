#include "platform/network/SystemAuthorities.h"

#include "doubles/TestProgram.h"

#include <QDir>
#include <QTemporaryDir>

using namespace tickwise;

class SystemAuthoritiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folders_data();
    void folders();
    void thisSystemHasAuthorities();
};

void SystemAuthoritiesTest::folders_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("bundled"); // -1: no bundle
    QTest::addColumn<bool>("isComplete");
    const auto row = [](const char *title, const char *names, int bundled, bool isComplete) {
        QTest::newRow(title) << QString::fromLatin1(names).split(u' ', Qt::SkipEmptyParts) << bundled << isComplete;
    };
    row("nothing", "", -1, false);
    row("empty bundle", "", 0, false);
    row("folder alone", "0123abcd.0", -1, true);
    row("as many as the bundle", "0123abcd.0 0123abcd.1 fedc9876.0", 3, true);
    row("more than the bundle", "0123abcd.0 fedc9876.0", 1, true);
    row("one fewer than the bundle", "0123abcd.0 fedc9876.0", 3, false);
    row("one unrelated authority", "0123abcd.0", 140, false);
    row("no hashed names",
        "authority.pem readme 0123abcd 0123abcd. 0123abcd.pem 0123ABCD.0 0123abcg.0 123abcd.0 "
        "00123abcd.0 0123abcd.r0 0123abcd.0a",
        -1, false);
    row("many files for one authority", "0123abcd.10", 1, true);
}

void SystemAuthoritiesTest::folders()
{
    QFETCH(QStringList, names);
    QFETCH(int, bundled);
    const QTemporaryDir folder;
    for (const QString &name : names)
        QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    const QString bundle = folder.filePath(QStringLiteral("bundle.crt"));
    if (bundled >= 0) {
        QFile file(bundle);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(
            QByteArray("# a name\n-----BEGIN CERTIFICATE-----\nAAAA\n-----END CERTIFICATE-----\n").repeated(bundled));
    }
    QTEST(isFolderComplete({folder.path().toLocal8Bit(), bundle.toLocal8Bit()}), "isComplete");
}

void SystemAuthoritiesTest::thisSystemHasAuthorities()
{
    const AuthorityFiles files = systemAuthorityFiles();
    QVERIFY(!files.folder.isEmpty() || !files.bundle.isEmpty());
    QVERIFY(!isFolderComplete({{}, files.bundle}));
}

TICKWISE_TEST(SystemAuthoritiesTest)
#include "SystemAuthoritiesTest.moc"
