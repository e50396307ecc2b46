#include "support/files/BaseDirectory.h"

#include "doubles/TestProgram.h"

#include <QDir>

using namespace tickwise;

class BaseDirectoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void follows_data();
    void follows();
};

void BaseDirectoryTest::follows_data()
{
    QTest::addColumn<QStandardPaths::StandardLocation>("location");
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("path");
    const auto rows = [](const char *variable, QStandardPaths::StandardLocation location, const QString &byDefault) {
        const auto row = [&](const char *value, const QString &path) {
            QTest::addRow("%s=%s", variable, value) << location << QByteArray(variable) << QByteArray(value) << path;
        };
        row("/somewhere/else", QStringLiteral("/somewhere/else"));
        row("", byDefault);
        row("relative/folder", byDefault);
        row("./here", byDefault);
    };
    const QDir home = QDir::home();
    rows("XDG_DATA_HOME", QStandardPaths::GenericDataLocation, home.filePath(QStringLiteral(".local/share")));
    rows("XDG_CONFIG_HOME", QStandardPaths::GenericConfigLocation, home.filePath(QStringLiteral(".config")));
    rows("XDG_CACHE_HOME", QStandardPaths::GenericCacheLocation, home.filePath(QStringLiteral(".cache")));
}

void BaseDirectoryTest::follows()
{
    QFETCH(QStandardPaths::StandardLocation, location);
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, value);
    const QByteArray before = qgetenv(variable.constData());
    qputenv(variable.constData(), value);
    const QString path = baseDirectory(location);
    before.isNull() ? qunsetenv(variable.constData()) : qputenv(variable.constData(), before);
    QTEST(path, "path");
}

TICKWISE_TEST(BaseDirectoryTest)
#include "BaseDirectoryTest.moc"
