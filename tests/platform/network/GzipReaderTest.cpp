#include "platform/network/GzipReader.h"

#include "demo/LoopbackHttp.h"
#include "doubles/TestProgram.h"

using namespace tickwise;

class GzipReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void inflatesInPiecesOfAnySize_data();
    void inflatesInPiecesOfAnySize();
    void readsMembersOneAfterAnother();
    void tellsAnUnfinishedStream();
    void tellsDamage_data();
    void tellsDamage();
    void stopsWhenTold();
};

void GzipReaderTest::inflatesInPiecesOfAnySize_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("piece");
    for (const int size : {0, 1, 32 * 1024, 32 * 1024 + 1, 300000}) {
        for (const int piece : {1, 7, 1000, 1 << 20})
            QTest::addRow("%d bytes by %d", size, piece) << size << piece;
    }
}

void GzipReaderTest::inflatesInPiecesOfAnySize()
{
    QFETCH(int, size);
    QFETCH(int, piece);
    const QByteArray text = QByteArray("0123456789abcdef").repeated(size / 16 + 1).left(size);
    const QByteArray stream = gzipped(text);
    GzipReader reader;
    QVERIFY(reader.isComplete());
    QByteArray read;
    const auto receiver = [&read](const char *bytes, qint64 count) {
        read.append(bytes, count);
        return true;
    };
    for (qsizetype at = 0; at < stream.size(); at += piece) {
        const qint64 count = std::min<qint64>(piece, stream.size() - at);
        QCOMPARE(reader.feed(stream.constData() + at, count, receiver), GzipReader::Status::more);
        QCOMPARE(reader.isComplete(), at + count == stream.size());
    }
    QVERIFY(read == text);
}

void GzipReaderTest::readsMembersOneAfterAnother()
{
    const QByteArray stream = gzipped("one ") + gzipped("two");
    GzipReader reader;
    QByteArray read;
    const auto receiver = [&read](const char *bytes, qint64 count) {
        read.append(bytes, count);
        return true;
    };
    QCOMPARE(reader.feed(stream.constData(), stream.size(), receiver), GzipReader::Status::more);
    QVERIFY(reader.isComplete());
    QCOMPARE(read, QByteArray("one two"));
}

void GzipReaderTest::tellsAnUnfinishedStream()
{
    const QByteArray stream = gzipped(QByteArray(100000, 'x'));
    GzipReader reader;
    const auto receiver = [](const char *, qint64) { return true; };
    QCOMPARE(reader.feed(stream.constData(), stream.size() - 1, receiver), GzipReader::Status::more);
    QVERIFY(!reader.isComplete());
}

void GzipReaderTest::tellsDamage_data()
{
    QTest::addColumn<QByteArray>("stream");
    const QByteArray good = gzipped("some text that is long enough to be damaged");
    QByteArray wrongSum = good;
    wrongSum[wrongSum.size() - 6] = static_cast<char>(wrongSum.at(wrongSum.size() - 6) ^ 1);
    QTest::newRow("no gzip at all") << QByteArray("{\"code\":\"0\"}");
    QTest::newRow("a zlib stream") << qCompress("text").mid(4);
    QTest::newRow("damaged inside") << good.left(10) + QByteArray(20, '\xff');
    QTest::newRow("wrong check sum") << wrongSum;
    QTest::newRow("something behind it") << good + "trailing";
}

void GzipReaderTest::tellsDamage()
{
    QFETCH(QByteArray, stream);
    GzipReader reader;
    QCOMPARE(reader.feed(stream.constData(), stream.size(), [](const char *, qint64) { return true; }),
             GzipReader::Status::damaged);
}

void GzipReaderTest::stopsWhenTold()
{
    const QByteArray stream = gzipped(QByteArray(10 * 1024 * 1024, '\0'));
    GzipReader reader;
    qint64 received = 0;
    const auto receiver = [&received](const char *, qint64 count) {
        received += count;
        return received < 100000;
    };
    QCOMPARE(reader.feed(stream.constData(), stream.size(), receiver), GzipReader::Status::stopped);
    QVERIFY2(received < 200000, qPrintable(QString::number(received)));
}

TICKWISE_TEST(GzipReaderTest)
#include "GzipReaderTest.moc"
