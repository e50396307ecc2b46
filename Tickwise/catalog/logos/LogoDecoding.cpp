#include "catalog/logos/LogoDecoding.h"

#include "catalog/logos/LogoPicture.h"

#include <QIODevice>
#include <QImageReader>

#include <algorithm>
#include <chrono>
#include <ctime>

namespace tickwise {

namespace {

// What a decoder does after it has read everything, scaling and converting, takes the rest of a frame's 16 ms.
constexpr std::chrono::milliseconds longestReading{13};
constexpr qint64 bytesPerLook = 256;
constexpr int allocationLimit = 17; // mebibytes; the largest picture takes 16

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

/// The time that this thread has computed for.
std::chrono::nanoseconds threadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Bytes that end when the time is up. A picture whose decoding takes longer than its header promises fails with that.
class TimedBytes : public QIODevice
{
public:
    explicit TimedBytes(QByteArray bytes)
        : m_bytes(std::move(bytes))
        , m_end(threadTime() + longestReading)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    qint64 size() const override { return m_bytes.size(); }
    bool timedOut() const { return m_timedOut; }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        if (m_sinceLook >= bytesPerLook) {
            m_timedOut = m_timedOut || threadTime() > m_end;
            m_sinceLook = 0;
        }
        if (m_timedOut)
            return -1;
        const qint64 count = std::clamp(m_bytes.size() - pos(), qint64(0), most);
        std::copy_n(m_bytes.constData() + pos(), count, data);
        m_sinceLook += count;
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_bytes;
    std::chrono::nanoseconds m_end;
    qint64 m_sinceLook = 0; ///< bytes read since the last look at the time, which costs more than reading a byte
    bool m_timedOut = false;
};

QSize keptSize(QSize size)
{
    return size.scaled(logoPixels, logoPixels, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

} // namespace

std::optional<QImage> decodeLogo(const QByteArray &bytes)
{
    std::optional<LogoPicture> picture = inspectLogo(bytes);
    if (!picture)
        return std::nullopt;
    const AllocationLimit limit;
    TimedBytes bytesInTime(std::move(picture->bytes));
    QImageReader reader(&bytesInTime, picture->format);
    reader.setAutoDetectImageFormat(false);
    // The decoder has the last word about the size: it is the one that allocates.
    if (reader.size() != picture->size)
        return std::nullopt;
    if (picture->size.width() > logoPixels || picture->size.height() > logoPixels)
        reader.setScaledSize(keptSize(picture->size));
    const QImage image = reader.read();
    if (image.isNull() || bytesInTime.timedOut())
        return std::nullopt;
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace tickwise
