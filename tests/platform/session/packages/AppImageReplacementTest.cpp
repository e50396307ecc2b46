#include "platform/session/packages/AppImageReplacement.h"

#include "doubles/TestProgram.h"
#include "platform/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

class AppImageReplacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void toldByContent_data();
    void toldByContent();
    void replacesInOneStep();
    void replacesBehindALink();
    void failuresLeaveTheOldOne();
    void answersLater();

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_source;
    QString m_target;
};

void AppImageReplacementTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_source = m_directory->filePath(QStringLiteral("new"));
    m_target = m_directory->filePath(QStringLiteral("Tickwise.AppImage"));
    put(m_source, QByteArray("new ").repeated(1000000));
    put(m_target, "old");
}

void AppImageReplacementTest::toldByContent_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("expected");
    const QByteArray elf = QByteArray("\x7f"
                                      "ELF\x02\x01\x01\x00",
                                      8);
    QTest::newRow("type 2") << elf + "AI\x02 more" << true;
    QTest::newRow("type 1") << elf + "AI\x01" << true;
    QTest::newRow("program") << elf + QByteArray(8, '\0') << false;
    QTest::newRow("type 3") << elf + "AI\x03" << false;
    QTest::newRow("no program") << QByteArray("!<arch>\nAI\x02") << false;
    QTest::newRow("short") << elf << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void AppImageReplacementTest::toldByContent()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, expected);
    put(m_source, content);
    QCOMPARE(isAppImage(m_source), expected);
    QVERIFY(!isAppImage(m_directory->filePath(QStringLiteral("missing"))));
}

void AppImageReplacementTest::replacesInOneStep()
{
    QVERIFY(QFile::setPermissions(m_target, QFile::ReadOwner | QFile::ReadGroup));
    QFile running(m_target); // stays the old file
    QVERIFY(running.open(QIODevice::ReadOnly));
    QVERIFY(replaceProgram(m_source, m_target));
    QCOMPARE(running.readAll(), QByteArray("old"));
    QCOMPARE(contents(m_target), contents(m_source));
    const QFile::Permissions permissions = QFile::permissions(m_target);
    QVERIFY(permissions.testFlag(QFile::ExeOwner) && permissions.testFlag(QFile::WriteOwner));
    QVERIFY(permissions.testFlag(QFile::ReadGroup) && !permissions.testFlag(QFile::ReadOther));
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

void AppImageReplacementTest::replacesBehindALink()
{
    const QString link = m_directory->filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(m_target, link));
    QVERIFY(replaceProgram(m_source, link));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(contents(m_target), contents(m_source));
}

void AppImageReplacementTest::failuresLeaveTheOldOne()
{
    QVERIFY(!replaceProgram(m_directory->filePath(QStringLiteral("missing")), m_target));
    QCOMPARE(contents(m_target), QByteArray("old"));
    const Result<void> result = replaceProgram(m_source, QStringLiteral("/dev/null/Tickwise.AppImage"));
    QVERIFY(!result);
    QVERIFY(description(result.error()).contains(QStringLiteral("/dev/null/Tickwise.AppImage")));
    QVERIFY(!replaceProgram(m_directory->path(), m_target)); // a folder cannot be read
    QCOMPARE(contents(m_target), QByteArray("old"));
}

void AppImageReplacementTest::answersLater()
{
    std::optional<Result<void>> answer;
    Subscription replacement(std::make_unique<AppImageReplacement>(m_source, m_target, [&](const Result<void> &result) {
        answer = result;
        replacement.cancel();
    }));
    QVERIFY(!answer);
    QTRY_VERIFY(answer);
    QVERIFY(answer->has_value());
    QCOMPARE(contents(m_target), contents(m_source));
}

TICKWISE_TEST(AppImageReplacementTest)
#include "AppImageReplacementTest.moc"
