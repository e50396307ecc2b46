#include "widget/views/TextHalo.h"

#include "support/TabularText.h"

#include <QImage>
#include <QPainter>

#include <array>
#include <cmath>

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

/// The weights of a Gaussian curve with that deviation, in pixels; their sum is 1.
std::vector<float> gaussianKernel(double deviation)
{
    const int reach = std::max(1, int(std::ceil(3 * deviation)));
    std::vector<float> kernel;
    float sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        kernel.push_back(static_cast<float>(std::exp(-1.0 * i * i / (2 * deviation * deviation))));
        sum += kernel.back();
    }
    for (float &weight : kernel)
        weight /= sum;
    return kernel;
}

/// Blurs the lines of an opacity image and turns it on its side, so that two calls blur both ways.
QImage blurredAndTransposed(const QImage &image, const std::vector<float> &kernel)
{
    const int reach = int(kernel.size() / 2);
    QImage result(image.height(), image.width(), QImage::Format_Alpha8);
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const line = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            float sum = 0;
            for (int i = std::max(-reach, -x); i <= std::min(reach, image.width() - 1 - x); ++i) {
                const int weight = i + reach;
                sum += kernel[static_cast<size_t>(weight)] * static_cast<float>(line[x + i]);
            }
            result.scanLine(x)[y] = uchar(std::lround(sum));
        }
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

void drawShadows(QPainter &painter, double x, double baseline, const WidgetTextRun &run)
{
    const double scale = painter.device()->devicePixelRatioF() * painter.worldTransform().m11();
    const QFontMetricsF metrics(run.font);
    const QSizeF size(widgetTextWidth(run) + 2 * shadowReach, metrics.height() + 2 * shadowReach);
    const double innerBaseline = shadowReach + metrics.ascent();
    const QImage text = textImage(run, size, innerBaseline, scale).convertToFormat(QImage::Format_Alpha8);
    for (const Shadow &shadow : shadows) {
        // A shadow's radius is twice the deviation of its blur.
        const std::vector<float> kernel = gaussianKernel(shadow.radius / 2 * scale);
        QImage blurred = blurredAndTransposed(blurredAndTransposed(text, kernel), kernel);
        blurred.setDevicePixelRatio(scale);
        painter.setOpacity(shadow.opacity);
        painter.drawImage(QPointF(x - shadowReach, baseline - innerBaseline + shadow.offsetY), blurred);
    }
    painter.setOpacity(1);
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
