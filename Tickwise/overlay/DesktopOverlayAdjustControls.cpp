#include "overlay/DesktopOverlayAdjustControls.h"

#include "overlay/ContinuousRect.h"
#include "support/Localization.h"
#include "support/drawing/Contrast.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

// In points.
constexpr int adjustSpacing = 8;
constexpr int adjustPadding = 12;
constexpr double adjustPanelRadius = 10;
constexpr int hintSize = 12;
constexpr int buttonTextSize = 13;
constexpr QSize adjustButtonPadding(16, 5);
constexpr double buttonRadius = 6;
constexpr double adjustFocusGap = 2.5; ///< between the button's edge and the line around it

constexpr float adjustBorderOpacity = 0.12F;
constexpr int adjustPressedDarkness = 112; // percent
constexpr int adjustHoverLightness = 108;  // percent

int adjustScaled(int points, double scale)
{
    return int(std::lround(points * scale));
}

QFont adjustFont(const QWidget &widget, int pixels, QFont::Weight weight)
{
    QFont font = widget.font();
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

} // namespace

/// A button on the accent color. Arrow keys are the window's.
class DesktopOverlayAdjustControls::DoneButton : public QAbstractButton
{
public:
    explicit DoneButton(QWidget *parent)
        : QAbstractButton(parent)
    {
        setObjectName(QStringLiteral("desktop.adjust.done"));
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    void setScale(double scale)
    {
        m_scale = scale;
        setFont(adjustFont(*this, adjustScaled(buttonTextSize, scale), QFont::DemiBold));
        updateGeometry();
    }

    QSize sizeHint() const override
    {
        return fontMetrics().size(Qt::TextSingleLine, text()) + 2 * adjustButtonPadding * m_scale;
    }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Space)
            QAbstractButton::keyPressEvent(event);
        else
            event->ignore();
    }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor accent = palette().color(QPalette::Highlight);
        const QColor ground = isDown()       ? accent.darker(adjustPressedDarkness)
                              : underMouse() ? accent.lighter(adjustHoverLightness)
                                             : accent;
        const double radius = buttonRadius * m_scale;
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        painter.drawRoundedRect(rect(), radius, radius);
        painter.setPen(readableOn(ground, palette().color(QPalette::HighlightedText)));
        painter.drawText(rect(), int(Qt::AlignCenter), text());
        if (!hasFocus())
            return;
        const double gap = adjustFocusGap * m_scale;
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(gap, gap, -gap, -gap), radius - gap, radius - gap);
    }

private:
    double m_scale = 1;
};

DesktopOverlayAdjustControls::DesktopOverlayAdjustControls(QWidget *parent)
    : QWidget(parent)
    , m_hint(new QLabel(this))
    , m_done(new DoneButton(this))
    , m_stack(new QVBoxLayout(this))
{
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setWordWrap(true);
    m_hint->setAlignment(Qt::AlignCenter);
    m_stack->addWidget(m_hint);
    m_stack->addWidget(m_done, 0, Qt::AlignHCenter);
    connect(m_done, &QAbstractButton::clicked, this, &DesktopOverlayAdjustControls::done);
    setScale(1);
    retranslate();
}

QAbstractButton &DesktopOverlayAdjustControls::doneButton()
{
    return *m_done;
}

void DesktopOverlayAdjustControls::setScale(double scale)
{
    m_scale = scale;
    const int margin = adjustScaled(adjustPadding, scale);
    m_stack->setContentsMargins(margin, margin, margin, margin);
    m_stack->setSpacing(adjustScaled(adjustSpacing, scale));
    m_hint->setFont(adjustFont(*this, adjustScaled(hintSize, scale), QFont::Normal));
    m_done->setScale(scale);
}

void DesktopOverlayAdjustControls::retranslate()
{
    m_hint->setText(localized(QStringLiteral("desktop.adjust.hint")));
    m_done->setText(localized(QStringLiteral("desktop.adjust.done")));
    m_done->updateGeometry();
}

QSize DesktopOverlayAdjustControls::sizeWithin(int width) const
{
    const QFontMetrics metrics = m_hint->fontMetrics();
    const int wanted = std::max(metrics.horizontalAdvance(m_hint->text()) + 1, m_done->sizeHint().width());
    const int whole = std::min(wanted + 2 * adjustScaled(adjustPadding, m_scale), width);
    return {whole, layout()->heightForWidth(whole)};
}

void DesktopOverlayAdjustControls::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor border = palette().color(QPalette::WindowText);
    border.setAlphaF(adjustBorderOpacity);
    const double radius = adjustPanelRadius * m_scale;
    painter.fillPath(continuousRect(rect(), radius), palette().color(QPalette::Base));
    painter.strokePath(continuousRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5), QPen(border, 1));
}

} // namespace tickwise
