#include "catalog/logos/LogoPicture.h"

#include "catalog/logos/ByteFields.h"

namespace tickwise {

namespace {

constexpr quint8 startOfBaseline = 0xc0;
constexpr quint8 startOfExtended = 0xc1;
constexpr quint8 startOfProgressive = 0xc2;
constexpr quint8 huffmanTables = 0xc4;
constexpr quint8 endOfImage = 0xd9;
constexpr quint8 startOfScan = 0xda;
constexpr quint8 quantizationTables = 0xdb;
constexpr quint8 restartInterval = 0xdd;
constexpr quint8 firstApplication = 0xe0;     // JFIF
constexpr quint8 adobeApplication = 0xee;     // says how the colours are stored
constexpr double nanosecondsPerSample = 0.25; // of one component in one scan
constexpr double nanosecondsPerByte = 8;
constexpr double nanosecondsPerRefinedSample = 1; // in a scan that adds a bit to what earlier ones brought
constexpr double nanosecondsPerProgressiveByte = 30;

bool isFrame(quint8 marker)
{
    return marker == startOfBaseline || marker == startOfExtended || marker == startOfProgressive;
}

bool isNeeded(quint8 marker)
{
    return isFrame(marker) || marker == huffmanTables || marker == quantizationTables || marker == restartInterval ||
           marker == startOfScan || marker == firstApplication || marker == adobeApplication;
}

bool isApplicationOrComment(quint8 marker)
{
    return (marker >= firstApplication && marker <= 0xef) || marker == 0xfe;
}

/// Walks through a file from segment to segment.
class JpegWalk
{
public:
    explicit JpegWalk(const QByteArray &bytes)
        : m_bytes(bytes)
    {
    }

    std::optional<LogoPicture> walk()
    {
        m_picture.bytes = QByteArray("\xff\xd8");
        while (segment()) {
        }
        if (!m_ended || m_scanCost <= 0)
            return std::nullopt;
        m_picture.bytes.append("\xff\xd9");
        const double perByte = m_progressive ? nanosecondsPerProgressiveByte : nanosecondsPerByte;
        const double cost = m_scanCost + double(m_bytes.size()) * perByte;
        m_picture.cost = std::chrono::nanoseconds(qint64(cost));
        return isAffordable(m_picture) ? std::optional(m_picture) : std::nullopt;
    }

private:
    /// False at the end and where the file is none.
    bool segment()
    {
        while (byteAt(m_bytes, m_at) == 0xff && byteAt(m_bytes, m_at + 1) == 0xff)
            ++m_at; // fill bytes
        const quint8 marker = byteAt(m_bytes, m_at + 1);
        if (byteAt(m_bytes, m_at) != 0xff || marker == endOfImage) {
            m_ended = marker == endOfImage && byteAt(m_bytes, m_at) == 0xff;
            return false;
        }
        const qsizetype length = bigEndian<quint16>(m_bytes, m_at + 2);
        if (length < 2 || m_at + 2 + length > m_bytes.size() || (!isNeeded(marker) && !isApplicationOrComment(marker)))
            return false;
        if (isFrame(marker) && !frame())
            return false;
        m_progressive = m_progressive || marker == startOfProgressive;
        qsizetype next = m_at + 2 + length;
        if (marker == startOfScan)
            next = scan(next);
        if (isNeeded(marker))
            m_picture.bytes.append(QByteArrayView(m_bytes).sliced(m_at, next - m_at));
        m_at = next;
        return true;
    }

    bool frame()
    {
        if (m_picture.size.isValid())
            return false;
        m_picture.size = QSize(bigEndian<quint16>(m_bytes, m_at + 7), bigEndian<quint16>(m_bytes, m_at + 5));
        return isAffordable(m_picture);
    }

    /// The offset of the marker that ends the scan.
    qsizetype scan(qsizetype at)
    {
        const int components = byteAt(m_bytes, m_at + 4);
        const bool refines = byteAt(m_bytes, m_at + 7 + 2LL * components) >> 4 != 0;
        const double samples = double(m_picture.size.width()) * double(m_picture.size.height()) * components;
        m_scanCost += samples * (refines ? nanosecondsPerRefinedSample : nanosecondsPerSample);
        while (at < m_bytes.size()) {
            at = m_bytes.indexOf(char(0xff), at);
            if (at < 0)
                return m_bytes.size();
            const quint8 next = byteAt(m_bytes, at + 1);
            const bool restart = next >= 0xd0 && next <= 0xd7;
            if (next != 0 && !restart && next != 0xff)
                return at;
            at += next == 0xff ? 1 : 2;
        }
        return m_bytes.size();
    }

    const QByteArray &m_bytes;
    qsizetype m_at = 2;
    LogoPicture m_picture{"jpeg", {}, {}, {}};
    double m_scanCost = 0; ///< nanoseconds
    bool m_progressive = false;
    bool m_ended = false;
};

} // namespace

std::optional<LogoPicture> inspectJpeg(const QByteArray &bytes)
{
    return JpegWalk(bytes).walk();
}

} // namespace tickwise
