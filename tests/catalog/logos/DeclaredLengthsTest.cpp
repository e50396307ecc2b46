#include "catalog/logos/DeclaredLengths.h"

#include "catalog/logos/LogoDecoding.h"
#include "doubles/LogoPictures.h"
#include "doubles/TestProgram.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QRgb brown = qRgb(120, 80, 40);

/// The file with another four bytes at that place.
QByteArray with(QByteArray bytes, qsizetype at, const char *four)
{
    return bytes.replace(at, 4, QByteArray(four, 4));
}

/// A PNG file whose text behind the picture declares 2 GiB.
QByteArray pngWithLongText()
{
    const QByteArray text = pngChunk("tEXt", QByteArray("Comment\0text", 12));
    const QByteArray plain = blankPng({4, 4});
    return plain.chopped(12) + with(text, 0, "\x7f\xff\xff\xff") + plain.last(12);
}

QByteArray manyPictures(int count)
{
    return icon(std::vector<IconPicture>(std::size_t(count), {1, iconBitmap(1, brown)}));
}

} // namespace

class DeclaredLengthsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void png_data();
    void png();
    void icons_data();
    void icons();
};

void DeclaredLengthsTest::png_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("fits");
    const QByteArray plain = blankPng({4, 4});
    QTest::newRow("usual") << plain << true;
    QTest::newRow("zeros behind its end") << paddedTo(1000, plain) << true;
    QTest::newRow("a chunk behind its end that is too long")
        << plain + QByteArray("\x7f\xff\xff\xfftEXt....", 12) << true;
    QTest::newRow("a byte short") << plain.chopped(1) << true; // the decoder finds out
    QTest::newRow("first chunk too long") << with(plain, 8, "\xff\xff\xff\xff") << false;
    QTest::newRow("text of 2 GiB") << pngWithLongText() << false;
    QTest::newRow("last chunk a byte too long") << with(plain, plain.size() - 12, "\0\0\0\1") << false;
    QTest::newRow("signature alone") << plain.first(8) << true;
}

void DeclaredLengthsTest::png()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, fits);
    QCOMPARE(pngPartsFit(bytes), fits);
    if (!fits)
        QCOMPARE(decodeLogo(bytes), std::nullopt);
}

void DeclaredLengthsTest::icons_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("fits");
    const QByteArray plain = icon({{16, iconBitmap(16, brown)}, {4, blankPng({4, 4})}});
    QTest::newRow("usual") << plain << true;
    QTest::newRow("bytes behind") << plain + "..." << true;
    QTest::newRow("no pictures") << QByteArray("\0\0\1\0\0\0", 6) << true;
    QTest::newRow("head cut") << QByteArray("\0\0\1\0\0", 5) << false;
    QTest::newRow("directory cut") << plain.first(6 + 31) << false;
    QTest::newRow("length beyond the file") << with(plain, 6 + 8, "\xff\xff\xff\xff") << false;
    QTest::newRow("offset beyond the file") << with(plain, 6 + 12, "\xff\xff\xff\xff") << false;
    QTest::newRow("last picture a byte short") << plain.chopped(1) << false;
    QTest::newRow("png with a text of 2 GiB") << icon({{16, iconBitmap(16, brown)}, {4, pngWithLongText()}}) << false;
    QTest::newRow("256 pictures") << manyPictures(256) << true;
    QTest::newRow("257 pictures") << manyPictures(257) << false;
}

void DeclaredLengthsTest::icons()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, fits);
    QCOMPARE(iconPartsFit(bytes), fits);
    if (!fits)
        QCOMPARE(decodeLogo(bytes), std::nullopt);
}

TICKWISE_TEST(DeclaredLengthsTest)
#include "DeclaredLengthsTest.moc"
