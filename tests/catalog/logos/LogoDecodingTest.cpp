#include "catalog/logos/LogoDecoding.h"

#include "doubles/LogCapture.h"
#include "doubles/LogoPictures.h"
#include "doubles/TestProgram.h"

#include <QImageReader>

using namespace tickwise;
using namespace tickwise::test;

class LogoDecodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesEveryFormat_data();
    void decodesEveryFormat();
    void keepsSmallPictures();
    void scalesLargePictures_data();
    void scalesLargePictures();
    void refusesWhatIsNoPicture_data();
    void refusesWhatIsNoPicture();
    void refusesTruncatedPictures_data();
    void refusesTruncatedPictures();
    void takesAJpegInBlocksOfAnySize();
    void sizeLimit_data();
    void sizeLimit();
    void alwaysDecodes_data();
    void alwaysDecodes();
    void refusesImpossibleSizes_data();
    void refusesImpossibleSizes();
    void stopsOnAFileMadeToTakeMinutes();
    void animationShowsItsFirstFrame();
    void iconShowsItsLargestPicture();
    void leavesTheAllocationLimitOfOthers();
};

namespace {

const QRgb brownPixel = qRgb(120, 80, 40);
constexpr qsizetype largestFile = 524288;

/// What `make` gives for the best quality whose file a logo may have.
template<class Make>
QByteArray largestThatFits(Make make)
{
    for (int quality = 95; quality > 0; quality -= 10) {
        const QByteArray bytes = make(quality);
        if (bytes.size() <= largestFile)
            return bytes;
    }
    return make(0);
}

QImage flatImage(int side, QRgb color)
{
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

bool isClose(QRgb a, QRgb b)
{
    constexpr int lossy = 12;
    return std::abs(qRed(a) - qRed(b)) < lossy && std::abs(qGreen(a) - qGreen(b)) < lossy &&
           std::abs(qBlue(a) - qBlue(b)) < lossy && std::abs(qAlpha(a) - qAlpha(b)) < lossy;
}

/// One picture of each format, 40 by 40 pixels, brown.
std::vector<std::pair<const char *, QByteArray>> everyFormat()
{
    const QImage image = flatImage(40, brownPixel);
    return {{"png", encoded(image, "png")},
            {"png, palette", encoded(image.convertToFormat(QImage::Format_Indexed8), "png")},
            {"jpeg", encoded(image, "jpeg", 95)},
            {"jpeg, progressive", progressiveJpeg(image, 95)},
            {"webp", encoded(image, "webp", 90)},
            {"webp, lossless", encoded(image, "webp", 100)},
            {"gif", gif(40, 40, {brownPixel})},
            {"bmp", encoded(image, "bmp")},
            {"ico, bitmap", icon({{40, iconBitmap(40, brownPixel)}})},
            {"ico, png", icon({{40, encoded(image, "png")}})}};
}

/// Whether the bytes are taken without a word. A busy machine makes the thread's own time longer, which the decoder
/// limits: one of three attempts counts.
bool decodes(const QByteArray &bytes)
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        const LogCapture log;
        if (decodeLogo(bytes) && log.lines().empty())
            return true;
    }
    return false;
}

} // namespace

void LogoDecodingTest::decodesEveryFormat_data()
{
    QTest::addColumn<QByteArray>("bytes");
    for (const auto &[name, bytes] : everyFormat())
        QTest::newRow(name) << bytes;
}

void LogoDecodingTest::decodesEveryFormat()
{
    QFETCH(QByteArray, bytes);
    const std::optional<QImage> image = decodeLogo(bytes);
    QVERIFY(image);
    QCOMPARE(image->size(), QSize(40, 40));
    QCOMPARE(image->format(), QImage::Format_ARGB32_Premultiplied);
    QVERIFY2(isClose(image->pixel(20, 20), brownPixel), qPrintable(QString::number(image->pixel(20, 20), 16)));
}

void LogoDecodingTest::keepsSmallPictures()
{
    const QImage logo = logoLikeImage(96);
    QCOMPARE(*decodeLogo(encoded(logo, "png")), logo.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    QCOMPARE(decodeLogo(blankPng({1, 1}))->size(), QSize(1, 1));
    QCOMPARE(qAlpha(decodeLogo(blankPng({1, 1}))->pixel(0, 0)), 0);
}

void LogoDecodingTest::scalesLargePictures_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("size");
    QTest::newRow("png 97") << blankPng({97, 97}) << QSize(96, 96);
    QTest::newRow("png 250") << encoded(logoLikeImage(250), "png") << QSize(96, 96);
    QTest::newRow("png 500") << encoded(logoLikeImage(500), "png") << QSize(96, 96);
    QTest::newRow("png 200 x 100") << blankPng({200, 100}) << QSize(96, 48);
    QTest::newRow("png 100 x 200") << blankPng({100, 200}) << QSize(48, 96);
    QTest::newRow("png 2048 x 1") << blankPng({2048, 1}) << QSize(96, 1);
    QTest::newRow("png 1 x 2048") << blankPng({1, 2048}) << QSize(1, 96);
    QTest::newRow("png 250, interlaced") << blankPng({250, 250, 8, 6, 1}) << QSize(96, 96);
    QTest::newRow("png 250, 16 bit") << blankPng({250, 250, 16, 2}) << QSize(96, 96);
    QTest::newRow("jpeg 250") << encoded(logoLikeImage(250), "jpeg") << QSize(96, 96);
    QTest::newRow("jpeg 250, progressive") << progressiveJpeg(logoLikeImage(250), 80) << QSize(96, 96);
    QTest::newRow("webp 250") << encoded(logoLikeImage(250), "webp") << QSize(96, 96);
    QTest::newRow("gif 250") << gifOfData(250, 250, flatGifData(62500)) << QSize(96, 96);
    QTest::newRow("bmp 250") << encoded(logoLikeImage(250), "bmp") << QSize(96, 96);
    QTest::newRow("bmp 250, runs") << runLengthBmp(250, 250) << QSize(96, 96);
    QTest::newRow("ico 256") << icon({{0, iconBitmap(256, brownPixel)}}) << QSize(96, 96);
}

void LogoDecodingTest::scalesLargePictures()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QSize, size);
    const std::optional<QImage> image = decodeLogo(bytes);
    QVERIFY(image);
    QCOMPARE(image->size(), size);
}

void LogoDecodingTest::refusesWhatIsNoPicture_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("<html><body>404</body></html>");
    QTest::newRow("drawing") << QByteArray(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 9 9\"><circle r=\"4\"/></svg>");
    QTest::newRow("drawing with a declaration")
        << QByteArray("<?xml version=\"1.0\"?><svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>");
    QTest::newRow("pixel map") << QByteArray("/* XPM */ static char *a[] = {\"1 1 1 1\", \"a c #ff0000\", \"a\"};");
    QTest::newRow("portable pixel map") << QByteArray("P6 1 1 255 \1\2\3");
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    for (const auto &[name, bytes] : everyFormat()) {
        for (qsizetype length : {2, 4, 8, 12, 16, 20, 26, 30})
            QTest::newRow(qPrintable(QStringLiteral("%1 bytes of %2").arg(length).arg(QLatin1String(name))))
                << bytes.first(length);
    }
}

void LogoDecodingTest::refusesWhatIsNoPicture()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(decodeLogo(bytes), std::nullopt);
}

void LogoDecodingTest::refusesTruncatedPictures_data()
{
    QTest::addColumn<QByteArray>("bytes");
    for (const auto &[name, bytes] : everyFormat()) {
        QTest::newRow(qPrintable(QStringLiteral("half of %1").arg(QLatin1String(name))))
            << bytes.first(bytes.size() / 2);
        QTest::newRow(qPrintable(QStringLiteral("three quarters of %1").arg(QLatin1String(name))))
            << bytes.first(bytes.size() * 3 / 4);
    }
    const QByteArray png = encoded(noiseImage(64), "png");
    QTest::newRow("png without its end") << png.chopped(12);
    QTest::newRow("png with too few rows") << test::png({4, 4}, QByteArray(3 * 17, '\0'));
    QTest::newRow("jpeg without its end") << encoded(noiseImage(64), "jpeg").chopped(2);
    QByteArray damaged = png;
    damaged[damaged.size() / 2] = char(damaged[damaged.size() / 2] ^ 1);
    QTest::newRow("png with a wrong bit") << damaged;
}

void LogoDecodingTest::refusesTruncatedPictures()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(decodeLogo(bytes), std::nullopt);
}

// The decoder reads 256 bytes at a time; the last block may be a single byte.
void LogoDecodingTest::takesAJpegInBlocksOfAnySize()
{
    const QByteArray jpeg = encoded(noiseImage(64), "jpeg");
    for (int length = 2; length < 258; ++length) {
        const QByteArray comment = QByteArray("\xff\xfe") + char(length >> 8) + char(length & 255);
        QByteArray bytes = jpeg;
        bytes.insert(2, comment + QByteArray(length - 2, 'c'));
        QVERIFY2(decodeLogo(bytes), qPrintable(QString::number(bytes.size() % 256)));
    }
}

void LogoDecodingTest::sizeLimit_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("taken");
    QTest::newRow("png 2048 x 2048") << blankPng({2048, 2048, 8, 0}) << true;
    QTest::newRow("png 2049 x 2048") << blankPng({2049, 2048, 8, 0}) << false;
    QTest::newRow("png 2048 x 2049") << blankPng({2048, 2049, 8, 0}) << false;
    QTest::newRow("png 2049 x 1") << blankPng({2049, 1}) << false;
    QTest::newRow("png 2048 x 2048, rgba") << blankPng({2048, 2048}) << true;
    QTest::newRow("jpeg 2048") << encoded(logoLikeImage(2048), "jpeg") << true;
    QTest::newRow("jpeg 2049") << encoded(logoLikeImage(2049), "jpeg") << false;
    QTest::newRow("webp 2048") << encoded(logoLikeImage(2048), "webp", 100) << true;
    QTest::newRow("webp 2049") << encoded(logoLikeImage(2049), "webp", 100) << false;
    QTest::newRow("bmp 2048") << runLengthBmp(2048, 2048) << true;
    QTest::newRow("bmp 2049") << runLengthBmp(2049, 2049) << false;
    QTest::newRow("gif 2048") << gifOfData(2048, 2048, flatGifData(2048 * 2048)) << true;
    QTest::newRow("gif 2049") << gifOfData(2049, 1, flatGifData(2049)) << false;
}

void LogoDecodingTest::sizeLimit()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, taken);
    QCOMPARE(decodes(bytes), taken);
}

void LogoDecodingTest::alwaysDecodes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    for (char filter = 0; filter < 5; ++filter)
        QTest::newRow(qPrintable(QStringLiteral("png 1000, filter %1").arg(int(filter))))
            << blankPng({1000, 1000}, filter);
    QTest::newRow("png 1000, interlaced") << blankPng({1000, 1000, 8, 6, 1}, 4);
    QTest::newRow("png 1000, 16 bit") << blankPng({1000, 1000, 16, 6}, 4);
    QTest::newRow("png 2048, 16 bit") << blankPng({2048, 2048, 16, 6}, 4);
    QTest::newRow("jpeg 1200, progressive") << progressiveJpeg(logoLikeImage(1200), 90);
    QTest::newRow("jpeg 1200, progressive noise")
        << largestThatFits([](int quality) { return progressiveJpeg(noiseImage(1200), quality); });
    QTest::newRow("jpeg 2048, noise") << largestThatFits(
        [](int quality) { return encoded(noiseImage(2048), "jpeg", quality); });
    QTest::newRow("gif 2000") << gifOfData(2000, 2000, flatGifData(4'000'000));
    QTest::newRow("webp 1000, noise") << largestThatFits(
        [](int quality) { return encoded(noiseImage(1000), "webp", quality); });
    QTest::newRow("bmp 2048, runs") << runLengthBmp(2048, 2048);
    for (const auto &[name, bytes] : everyFormat())
        QTest::newRow(qPrintable(QStringLiteral("524288 bytes of %1").arg(QLatin1String(name))))
            << paddedTo(largestFile, bytes);
}

void LogoDecodingTest::alwaysDecodes()
{
    QFETCH(QByteArray, bytes);
    QVERIFY2(bytes.size() <= largestFile, qPrintable(QString::number(bytes.size())));
    QVERIFY(decodes(bytes));
}

void LogoDecodingTest::refusesImpossibleSizes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("png of 30000 x 30000") << pngStart({30000, 30000}) + pngChunk("IDAT", {}) + pngChunk("IEND", {});
    QTest::newRow("png of 4294967295 x 1") << pngStart({4294967295U, 1}) + pngChunk("IDAT", {}) + pngChunk("IEND", {});
    QTest::newRow("icon with a png of 30000 x 30000")
        << icon({{16, pngStart({30000, 30000}) + pngChunk("IDAT", QByteArray(100, 'x')) + pngChunk("IEND", {})}});
    QTest::newRow("icon with a png of 2049 x 1") << icon({{16, blankPng({2049, 1})}});
    QByteArray wide = encoded(flatImage(8, brownPixel), "bmp");
    wide.replace(18, 4, QByteArray("\xff\xff\xff\x7f", 4));
    QTest::newRow("bmp of 2147483647 x 8") << wide;
    QByteArray lowest = encoded(flatImage(8, brownPixel), "bmp");
    lowest.replace(22, 4, QByteArray("\0\0\0\x80", 4));
    QTest::newRow("bmp of 8 x -2147483648") << lowest;
    QByteArray huge = encoded(flatImage(8, brownPixel), "jpeg");
    const qsizetype frame = huge.indexOf(QByteArray("\xff\xc0", 2));
    huge.replace(frame + 5, 4, QByteArray("\xff\xff\xff\xff", 4));
    QTest::newRow("jpeg of 65535 x 65535") << huge;
}

void LogoDecodingTest::refusesImpossibleSizes()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(bytes.size() <= largestFile);
    QCOMPARE(decodeLogo(bytes), std::nullopt);
}

void LogoDecodingTest::stopsOnAFileMadeToTakeMinutes()
{
    QByteArray scans = progressiveJpeg(flatImage(2048, brownPixel), 50);
    QVERIFY(decodes(scans)); // with each scan once
    const qsizetype scan = scans.lastIndexOf(QByteArray("\xff\xda", 2));
    const QByteArray last = scans.mid(scan, scans.size() - 2 - scan);
    const QByteArray end("\xff\xd9", 2);
    scans = scans.chopped(2) + last.repeated((largestFile - scans.size()) / last.size()) + end;
    QVERIFY(scans.size() > largestFile - 100 && scans.size() <= largestFile);
    const LogCapture log;
    QCOMPARE(decodeLogo(scans), std::nullopt);
    QCOMPARE(log.texts(QStringLiteral("com.pelmo.tickwise.CoinLogos")),
             QStringList{QStringLiteral("Logo decoding stopped after 250 ms: %1 bytes of jpeg").arg(scans.size())});
    QCOMPARE(log.lines().front().type, QtWarningMsg);
}

void LogoDecodingTest::animationShowsItsFirstFrame()
{
    const QRgb green = qRgb(10, 200, 30);
    const std::optional<QImage> image = decodeLogo(gif(20, 20, {green, brownPixel, qRgb(0, 0, 0)}));
    QVERIFY(image);
    QCOMPARE(image->size(), QSize(20, 20));
    QCOMPARE(image->pixel(10, 10), green);
}

void LogoDecodingTest::iconShowsItsLargestPicture()
{
    const QRgb green = qRgb(10, 200, 30);
    const std::optional<QImage> image = decodeLogo(icon({{16, iconBitmap(16, brownPixel)},
                                                         {48, iconBitmap(48, green)},
                                                         {32, encoded(flatImage(32, brownPixel), "png")}}));
    QVERIFY(image);
    QCOMPARE(image->size(), QSize(48, 48));
    QCOMPARE(image->pixel(24, 24), green);
}

void LogoDecodingTest::leavesTheAllocationLimitOfOthers()
{
    QImageReader::setAllocationLimit(77);
    QVERIFY(decodeLogo(encoded(logoLikeImage(40), "png")));
    QCOMPARE(QImageReader::allocationLimit(), 77);
}

TICKWISE_TEST(LogoDecodingTest)
#include "LogoDecodingTest.moc"
