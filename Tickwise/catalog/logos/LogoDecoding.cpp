#include "catalog/logos/LogoDecoding.h"

#include "catalog/logos/DeclaredLengths.h"
#include "support/LogCategories.h"

#include <QIODevice>
#include <QImageReader>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <string_view>

namespace tickwise {

namespace {

using namespace std::string_view_literals;

Q_LOGGING_CATEGORY(lcLogoDecoding, "com.pelmo.tickwise.CoinLogos")

constexpr int largestSide = 2048;       // pixels
constexpr int allocationLimit = 33;     // mebibytes; the largest side squared takes 32 with 16 bits a channel
constexpr qint64 bytesPerLook = 256;    // between two looks at the clock, each of which costs more than reading a byte
constexpr qint64 longestJpegRead = 256; // bytes; the clock must be looked at between the scans of a JPEG file

// An emergency stop for files that are made to take minutes. Any other picture of an accepted size takes a fraction.
constexpr std::chrono::milliseconds emergencyStop{250};

struct RasterFormat
{
    std::string_view start;   ///< the first bytes of every file of the format
    std::string_view decoder; ///< Qt's name of its decoder
};

constexpr std::array<RasterFormat, 6> rasterFormats{{{"\x89PNG\r\n\x1a\n"sv, "png"sv},
                                                     {"\xff\xd8\xff"sv, "jpeg"sv},
                                                     {"GIF87a"sv, "gif"sv},
                                                     {"GIF89a"sv, "gif"sv},
                                                     {"BM"sv, "bmp"sv},
                                                     {"\0\0\1\0"sv, "ico"sv}}};

/// The decoder for what the bytes start with; empty for anything that is not one of the raster formats.
QByteArray decoderName(const QByteArray &bytes)
{
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return "webp";
    const auto matches = [&](const RasterFormat &format) {
        return bytes.startsWith(QByteArrayView(format.start.data(), qsizetype(format.start.size())));
    };
    const auto format = std::ranges::find_if(rasterFormats, matches);
    return format == rasterFormats.end() ? QByteArray()
                                         : QByteArray(format->decoder.data(), qsizetype(format->decoder.size()));
}

bool partsFit(const QByteArray &bytes, const QByteArray &decoder)
{
    return (decoder != "png" || pngPartsFit(bytes)) && (decoder != "ico" || iconPartsFit(bytes));
}

/// Lowers the limit of what image decoders may allocate, for as long as it lives.
class AllocationLimit
{
public:
    AllocationLimit()
        : m_usual(QImageReader::allocationLimit())
    {
        QImageReader::setAllocationLimit(allocationLimit);
    }
    ~AllocationLimit() { QImageReader::setAllocationLimit(m_usual); }
    AllocationLimit(const AllocationLimit &) = delete;
    AllocationLimit &operator=(const AllocationLimit &) = delete;

private:
    int m_usual;
};

/// The time that this thread has computed for. Unlike the time of day it stands while other programs run.
std::chrono::nanoseconds threadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// The bytes of a file, which a decoder gets no more of after the emergency stop.
class BoundedBytes : public QIODevice
{
public:
    BoundedBytes(QByteArray bytes, QByteArrayView decoder)
        : m_bytes(std::move(bytes))
        , m_longestRead(decoder == "jpeg" ? longestJpegRead : m_bytes.size())
        , m_readsInBlocks(decoder == "jpeg" || decoder == "gif")
        , m_end(threadTime() + emergencyStop)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    qint64 size() const override { return m_bytes.size(); }
    /// A read was refused because the time was up.
    bool hasStopped() const { return m_stopped; }
    /// The decoder needed more bytes than the file has. Decoders show what they have got of such a picture.
    bool hasRunOut() const { return m_runOut; }
    /// Forgets that the bytes ran out: some decoders look for the size in the whole file.
    void forgetRunOut() { m_runOut = false; }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        if (m_sinceLook >= bytesPerLook) {
            m_stopped = m_stopped || threadTime() > m_end;
            m_sinceLook = 0;
        }
        if (m_stopped)
            return -1;
        const qint64 left = std::max(m_bytes.size() - pos(), qint64(0));
        m_runOut = m_runOut || (most > 0 && left < (m_readsInBlocks ? 1 : most));
        const qint64 count = std::min({left, most, m_longestRead});
        std::copy_n(m_bytes.constData() + pos(), count, data);
        m_sinceLook += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    qint64 m_longestRead;
    bool m_readsInBlocks; ///< the decoder asks for whole blocks, the last of which may be cut
    std::chrono::nanoseconds m_end;
    qint64 m_sinceLook = 0; ///< bytes read since the last look at the clock
    bool m_stopped = false;
    bool m_runOut = false;
};

bool isAccepted(QSize size)
{
    return !size.isEmpty() && size.width() <= largestSide && size.height() <= largestSide;
}

bool isLargerThanKept(QSize size)
{
    return size.width() > logoPixels || size.height() > logoPixels;
}

QSize keptSize(QSize size)
{
    return size.scaled(logoPixels, logoPixels, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

/// Moves to the largest picture of an icon file, the first of which is often the smallest.
void selectLargestPicture(QImageReader &reader)
{
    int largest = 0;
    int width = 0;
    for (int i = 0; i < reader.imageCount() && reader.jumpToImage(i); ++i) {
        if (reader.size().width() > width) {
            largest = i;
            width = reader.size().width();
        }
    }
    reader.jumpToImage(largest);
}

QImage readScaled(BoundedBytes &bytes, const QByteArray &decoder)
{
    QImageReader reader(&bytes, decoder);
    reader.setAutoDetectImageFormat(false);
    if (decoder == "ico")
        selectLargestPicture(reader);
    const QSize size = reader.size();
    if (!isAccepted(size))
        return {};
    if (isLargerThanKept(size) && reader.supportsOption(QImageIOHandler::ScaledSize))
        reader.setScaledSize(keptSize(size));
    bytes.forgetRunOut();
    QImage image = reader.read();
    // The directory of an icon file may state another size than its picture has.
    if (!isAccepted(image.size()))
        return {};
    if (!isLargerThanKept(image.size()))
        return image;
    return image.scaled(keptSize(image.size()), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

std::optional<QImage> decodeLogo(const QByteArray &bytes)
{
    const QByteArray decoder = decoderName(bytes);
    if (decoder.isEmpty() || !partsFit(bytes, decoder))
        return std::nullopt;
    const AllocationLimit limit;
    BoundedBytes bounded(bytes, decoder);
    const QImage image = readScaled(bounded, decoder);
    if (bounded.hasStopped()) {
        qCWarning(lcLogoDecoding, "Logo decoding stopped after %d ms: %lld bytes of %s", int(emergencyStop.count()),
                  qlonglong(bytes.size()), decoder.constData());
        return std::nullopt;
    }
    if (image.isNull() || bounded.hasRunOut())
        return std::nullopt;
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace tickwise
