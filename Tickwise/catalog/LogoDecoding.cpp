#include "catalog/LogoDecoding.h"

#include "catalog/LogoPicture.h"

#include <QBuffer>
#include <QImageReader>

namespace tickwise {

namespace {

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
    QBuffer buffer(&picture->bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, picture->format);
    reader.setAutoDetectImageFormat(false);
    // The decoder has the last word about the size: it is the one that allocates.
    if (reader.size() != picture->size)
        return std::nullopt;
    if (picture->size.width() > logoPixels || picture->size.height() > logoPixels)
        reader.setScaledSize(keptSize(picture->size));
    const QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace tickwise
