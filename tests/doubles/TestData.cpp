#include "doubles/TestData.h"

#include <QFile>

namespace tickwise::test {

QString dataPath(const QString &name)
{
    return QStringLiteral(TICKWISE_TEST_DATA "/") + name;
}

QByteArray readData(const QString &name)
{
    QFile file(dataPath(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("test data %s cannot be read", qPrintable(file.fileName()));
    return file.readAll();
}

} // namespace tickwise::test
