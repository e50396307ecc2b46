#include "widget/views/TextHalo.h"

#include "support/drawing/TabularText.h"

#include <QCache>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace tickwise {

namespace {

struct Shadow
{
    double opacity;
    double radius; ///< points
    double offsetY;
};

constexpr std::array shadows{Shadow{0.15, 3, 0}, Shadow{0.45, 1.5, 0.5}};
constexpr double shadowReach = 8; ///< points around the text that its shadows may cover

void drawRun(QPainter &painter, double x, double baseline, const WidgetTextRun &run)
{
    if (run.tabular)
        return TabularText(run.font).draw(painter, x, baseline, run.text);
    painter.setFont(run.font);
    painter.drawText(QPointF(x, baseline), run.text);
}

constexpr int weightSum = 1 << 16;
constexpr int keptHaloBytes = 512 * 1024;

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

/// The text in black, with room for its shadows.
QImage textImage(const WidgetTextRun &run, const QSizeF &size, double baseline, double scale)
{
    QImage image((size * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    drawRun(painter, shadowReach, baseline, run);
    return image;
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

void drawShadows(QPainter &painter, double x, double baseline, const WidgetTextRun &run)
{
    // Most texts of a list stay when its prices change.
    static QCache<QString, QImage> halos(keptHaloBytes);
    const double scale = painter.device()->devicePixelRatioF() * painter.worldTransform().m11();
    const QFontMetricsF metrics(run.font);
    const double innerBaseline = shadowReach + metrics.ascent();
    const QString key = QStringLiteral("%1 %2 %3 %4").arg(run.font.key()).arg(scale).arg(run.tabular).arg(run.text);
    if (!halos.contains(key)) {
        const QSizeF size(widgetTextWidth(run) + 2 * shadowReach, metrics.height() + 2 * shadowReach);
        const QImage text = textImage(run, size, innerBaseline, scale).convertToFormat(QImage::Format_Alpha8);
        auto halo = std::make_unique<QImage>(haloImage(text, scale));
        const auto cost = int(std::min<qsizetype>(halo->sizeInBytes(), keptHaloBytes));
        halos.insert(key, halo.release(), cost);
    }
    if (const QImage *const halo = halos.object(key))
        painter.drawImage(QPointF(x - shadowReach, baseline - innerBaseline), *halo);
}

} // namespace

double widgetTextWidth(const WidgetTextRun &run)
{
    return run.tabular ? TabularText(run.font).width(run.text) : QFontMetricsF(run.font).horizontalAdvance(run.text);
}

void paintWidgetText(QPainter &painter, const QRectF &box, Qt::Alignment alignment, const WidgetTextRun &run, bool halo)
{
    const QFontMetricsF metrics(run.font);
    WidgetTextRun shown = run;
    double width = widgetTextWidth(run);
    if (width > box.width()) {
        shown.text = metrics.elidedText(run.text, Qt::ElideRight, box.width());
        width = widgetTextWidth(shown);
    }
    const double free = box.width() - width;
    const double x = alignment.testFlag(Qt::AlignRight)     ? box.left() + free
                     : alignment.testFlag(Qt::AlignHCenter) ? box.left() + free / 2
                                                            : box.left();
    const double baseline = std::round(box.center().y() + (metrics.ascent() - metrics.descent()) / 2);
    painter.save();
    if (halo)
        drawShadows(painter, x, baseline, shown);
    painter.setPen(shown.color);
    drawRun(painter, x, baseline, shown);
    painter.restore();
}

} // namespace tickwise
