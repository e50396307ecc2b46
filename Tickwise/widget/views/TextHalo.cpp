#include "widget/views/TextHalo.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>
#include <vector>

namespace tickwise {

namespace {

struct Shadow
{
    double opacity;
    double radius; ///< points
    double offsetY;
};

constexpr std::array shadows{Shadow{0.15, 3, 0}, Shadow{0.45, 1.5, 0.5}};
constexpr int weightSum = 1 << 16;
/// Points around the ink that shadows may cover: three deviations, an offset, and a pixel's smoothed edge.
constexpr int blur = 6;
constexpr int keptPoints = 64 * 1024; // square points of images

/// The weights of a Gaussian curve with that deviation and that middle, in pixels; their sum is `weightSum`.
std::vector<int> gaussianKernel(double deviation, double middle)
{
    const int reach = std::max(1, int(std::ceil(3 * deviation + middle)));
    std::vector<double> curve;
    for (int i = -reach; i <= reach; ++i)
        curve.push_back(std::exp(-(i + middle) * (i + middle) / (2 * deviation * deviation)));
    const double sum = std::accumulate(curve.begin(), curve.end(), 0.0);
    std::vector<int> kernel;
    kernel.reserve(curve.size());
    for (const double weight : curve)
        kernel.push_back(int(std::lround(weight / sum * weightSum)));
    return kernel;
}

/// Blurs the lines of an opacity image and turns it on its side, so that two calls blur both ways.
QImage blurredAndTransposed(const QImage &image, const std::vector<int> &kernel)
{
    const std::size_t reach = kernel.size() / 2;
    const int width = image.width();
    QImage result(image.height(), width, QImage::Format_Alpha8);
    uchar *const pixels = result.bits();
    const qsizetype stride = result.bytesPerLine();
    std::vector<uchar> line(std::size_t(width) + 2 * reach); // with nothing at both ends
    std::vector<int> sums(static_cast<std::size_t>(width));
    for (int y = 0; y < image.height(); ++y) {
        std::copy_n(image.constScanLine(y), width, line.begin() + qsizetype(reach));
        std::fill(sums.begin(), sums.end(), weightSum / 2);
        for (std::size_t i = 0; i < kernel.size(); ++i) {
            for (std::size_t x = 0; x < sums.size(); ++x)
                sums[x] += kernel[i] * line[x + i];
        }
        for (std::size_t x = 0; x < sums.size(); ++x)
            pixels[qsizetype(x) * stride + y] = uchar(std::min(sums[x] / weightSum, 255));
    }
    return result;
}

/// Both shadows of the text in one image.
QImage haloImage(const QImage &text, double scale)
{
    QImage halo(text.size(), QImage::Format_Alpha8);
    halo.fill(0);
    for (const Shadow &shadow : shadows) {
        // A shadow's radius is twice the deviation of its blur.
        const double deviation = shadow.radius / 2 * scale;
        const QImage blurred = blurredAndTransposed(blurredAndTransposed(text, gaussianKernel(deviation, 0)),
                                                    gaussianKernel(deviation, shadow.offsetY * scale));
        for (int y = 0; y < halo.height(); ++y) {
            uchar *const line = halo.scanLine(y);
            const uchar *const added = blurred.constScanLine(y);
            for (int x = 0; x < halo.width(); ++x)
                line[x] = uchar(255 - (255 - line[x]) * (255 - shadow.opacity * added[x]) / 255);
        }
    }
    halo.setDevicePixelRatio(scale);
    return halo;
}

} // namespace

TextHalo::TextHalo(const QFont &font)
    : m_font(font)
    , m_metrics(font)
    , m_images(keptPoints)
{
}

TextHalo::Image TextHalo::imageOf(const QString &text, double scale) const
{
    const QRect box = m_metrics.tightBoundingRect(text).toAlignedRect().adjusted(-blur, -blur, blur, blur);
    QImage image((QSizeF(box.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(m_font);
    painter.setPen(Qt::black);
    painter.drawText(-box.topLeft(), text);
    painter.end();
    // Painters blend this format fastest.
    return {haloImage(image.convertToFormat(QImage::Format_Alpha8), scale)
                .convertToFormat(QImage::Format_ARGB32_Premultiplied),
            box.topLeft()};
}

void TextHalo::draw(QPainter &painter, double x, double baseline, QStringView text) const
{
    const double scale = painter.device()->devicePixelRatioF() * painter.worldTransform().m11();
    const std::pair borrowed(QString::fromRawData(text.data(), text.size()), scale);
    const Image *image = m_images.object(borrowed);
    if (!image) {
        const QString own = text.toString();
        auto made = std::make_unique<Image>(imageOf(own, scale));
        const QSizeF size = made->pixels.deviceIndependentSize();
        const int cost = std::min(int(std::ceil(size.width() * size.height())), keptPoints);
        m_images.insert({own, scale}, made.release(), cost);
        image = m_images.object(borrowed);
    }
    if (image)
        painter.drawImage(QPointF(x, baseline) + image->place, image->pixels);
}

} // namespace tickwise
