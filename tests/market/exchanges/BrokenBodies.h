#pragma once

#include <QByteArray>
#include <QTest>

#include <vector>

namespace tickwise::test {

/// Adds rows of bodies that are no JSON document of any service, in a column "body".
inline void addGarbageRows()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blank") << QByteArray(" \n");
    QTest::newRow("page") << QByteArray("<!DOCTYPE html><html><body>Attention Required!</body></html>");
    QTest::newRow("binary") << QByteArray("\x1f\x8b\x08\x00\x00\xff\xfe\x00\x01", 9);
    QTest::newRow("NUL") << QByteArray(64, '\0');
    QTest::newRow("text") << QByteArray("\"OK\"");
    QTest::newRow("number") << QByteArray("0");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("true") << QByteArray("true");
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("list in list") << QByteArray("[[]]");
    QTest::newRow("unfinished") << QByteArray("[{");
    QTest::newRow("two documents") << QByteArray("{} {}");
    QTest::newRow("bad UTF-8") << QByteArray("{\"code\":\"\xc3\x28\"}");
    QTest::newRow("deep lists") << QByteArray(100000, '[');
    QTest::newRow("deep closed lists") << QByteArray(100000, '[') + QByteArray(100000, ']');
    QTest::newRow("deep objects") << QByteArray("{\"a\":").repeated(100000);
}

/// The body cut off at every kilobyte and in its last bytes.
inline std::vector<QByteArray> truncations(const QByteArray &body)
{
    std::vector<QByteArray> cut;
    for (qsizetype length = 0; length < body.size(); length += 1024)
        cut.push_back(body.first(length));
    for (qsizetype missing = 1; missing <= 3 && missing < body.size(); ++missing)
        cut.push_back(body.first(body.size() - missing));
    return cut;
}

} // namespace tickwise::test
