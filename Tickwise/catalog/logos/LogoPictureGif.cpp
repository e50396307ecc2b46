#include "catalog/logos/LogoPicture.h"

#include "catalog/logos/ByteFields.h"

#include <array>

namespace tickwise {

namespace {

constexpr qsizetype headerLength = 13;
constexpr qsizetype descriptorLength = 10;
constexpr quint8 extension = 0x21;
constexpr quint8 graphicControl = 0xf9;
constexpr quint8 imageDescriptor = 0x2c;
constexpr double nanosecondsPerPixel = 3.6;
constexpr double nanosecondsPerByte = 15;

qsizetype colorTableLength(quint8 flags)
{
    return (flags & 0x80) != 0 ? qsizetype(3) << ((flags & 7) + 1) : 0;
}

/// The offset behind a row of blocks; none when they are cut short. The content of the blocks goes to `data`.
std::optional<qsizetype> readBlocks(QByteArrayView bytes, qsizetype at, QByteArray *data = nullptr)
{
    while (at < bytes.size()) {
        const qsizetype length = byteAt(bytes, at);
        if (length == 0)
            return at + 1;
        if (at + 1 + length > bytes.size())
            return std::nullopt;
        if (data)
            data->append(bytes.sliced(at + 1, length));
        at += 1 + length;
    }
    return std::nullopt;
}

/// The codes of an image's data, in the order of their bits.
class CodeReader
{
public:
    explicit CodeReader(const QByteArray &data)
        : m_data(data)
    {
    }

    std::optional<int> next(int width)
    {
        while (m_count < width) {
            if (m_at == m_data.size())
                return std::nullopt;
            m_bits |= quint32(byteAt(m_data, m_at++)) << m_count;
            m_count += 8;
        }
        const int code = int(m_bits & ((1U << width) - 1));
        m_bits >>= width;
        m_count -= width;
        return code;
    }

private:
    const QByteArray &m_data;
    qsizetype m_at = 0;
    quint32 m_bits = 0;
    int m_count = 0;
};

/// The number of pixels that the codes stand for, counted without writing one; none for codes that no encoder makes,
/// and as soon as there are more than `most`.
std::optional<qint64> countPixels(const QByteArray &data, int literalBits, qint64 most)
{
    constexpr int mostCodes = 4096;
    const int clear = 1 << literalBits;
    const int end = clear + 1;
    std::array<int, mostCodes> lengths;
    lengths.fill(1);
    int known = end + 1;
    int width = literalBits + 1;
    int previous = 0; // the length of the code before; 0 after a clear
    qint64 pixels = 0;
    CodeReader codes(data);
    for (std::optional<int> code = codes.next(width); code && *code != end; code = codes.next(width)) {
        if (*code == clear) {
            known = end + 1;
            width = literalBits + 1;
            previous = 0;
            continue;
        }
        if (*code > known || (*code == known && previous == 0) || (previous == 0 && *code > clear))
            return std::nullopt;
        if (previous != 0 && known < mostCodes) {
            lengths[std::size_t(known++)] = previous + 1;
            if (known == 1 << width && width < 12)
                ++width;
        }
        if (*code >= mostCodes)
            return std::nullopt;
        previous = lengths[std::size_t(*code)];
        pixels += previous;
        if (pixels > most)
            return std::nullopt;
    }
    return pixels;
}

/// The offset of the first image's descriptor; `control` becomes the extension that belongs to it.
std::optional<qsizetype> findImage(QByteArrayView bytes, qsizetype at, QByteArrayView &control)
{
    while (byteAt(bytes, at) == extension) {
        const std::optional<qsizetype> next = readBlocks(bytes, at + 2);
        if (!next)
            return std::nullopt;
        if (byteAt(bytes, at + 1) == graphicControl)
            control = bytes.sliced(at, *next - at);
        at = *next;
    }
    return byteAt(bytes, at) == imageDescriptor ? std::optional(at) : std::nullopt;
}

} // namespace

std::optional<LogoPicture> inspectGif(const QByteArray &bytes)
{
    const qsizetype head = headerLength + colorTableLength(byteAt(bytes, 10));
    QByteArrayView control;
    const std::optional<qsizetype> image = findImage(bytes, head, control);
    if (!image)
        return std::nullopt;
    const int frameWidth = littleEndian<quint16>(bytes, *image + 5);
    const int frameHeight = littleEndian<quint16>(bytes, *image + 7);
    const QSize canvas(littleEndian<quint16>(bytes, 6), littleEndian<quint16>(bytes, 8));
    if (littleEndian<quint16>(bytes, *image + 1) + frameWidth > canvas.width() ||
        littleEndian<quint16>(bytes, *image + 3) + frameHeight > canvas.height())
        return std::nullopt;
    const double pixels = double(canvas.width()) * double(canvas.height());
    LogoPicture picture{
        "gif",
        canvas,
        std::chrono::nanoseconds(qint64(pixels * nanosecondsPerPixel + double(bytes.size()) * nanosecondsPerByte)),
        {}};
    if (!isAffordable(picture))
        return std::nullopt;
    const qsizetype dataAt = *image + descriptorLength + colorTableLength(byteAt(bytes, *image + 9));
    const int literalBits = byteAt(bytes, dataAt);
    QByteArray data;
    const std::optional<qsizetype> end = readBlocks(bytes, dataAt + 1, &data);
    const qint64 framePixels = qint64(frameWidth) * frameHeight;
    if (!end || literalBits < 2 || literalBits > 8 || countPixels(data, literalBits, framePixels) != framePixels)
        return std::nullopt;
    picture.bytes = bytes.first(head) + control + QByteArrayView(bytes).sliced(*image, *end - *image) + ';';
    return picture;
}

} // namespace tickwise
