#pragma once

#include <QByteArray>
#include <QString>

namespace tickwise::test {

/// The path of a file below tests/data.
QString dataPath(const QString &name);

/// Its bytes; ends the program with a clear message when it cannot be read.
QByteArray readData(const QString &name);

} // namespace tickwise::test
