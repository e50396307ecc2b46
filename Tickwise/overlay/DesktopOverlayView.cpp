#include "overlay/DesktopOverlayView.h"

#include <QAbstractButton>

#include <cmath>
#include <utility>

namespace tickwise {

namespace {

// In points.
constexpr double listPadding = 14;
constexpr double controlsMargin = 4; // the least that the overlay shows around its controls

} // namespace

DesktopOverlayView::DesktopOverlayView(DesktopOverlayModel &model, WidgetListView::LogoSource logos, Clock clock,
                                       QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_backdrop(new DesktopOverlayBackdrop(this))
    , m_list(new WidgetListView(std::move(logos), std::move(clock), this))
    , m_adjustControls(new DesktopOverlayAdjustControls(this))
{
    connect(&m_model, &DesktopOverlayModel::changed, this, &DesktopOverlayView::refresh);
    connect(m_adjustControls, &DesktopOverlayAdjustControls::done, this, [this] {
        if (m_model.onDoneAdjusting)
            m_model.onDoneAdjusting();
    });
    m_backdrop->setRadius(desktopCornerRadius);
    refresh();
}

void DesktopOverlayView::setTranslucent(bool translucent)
{
    m_isTranslucent = translucent;
    m_backdrop->setFillsCorners(!translucent);
    refresh();
}

void DesktopOverlayView::setScale(double scale)
{
    if (std::exchange(m_scale, scale) == scale)
        return;
    m_backdrop->setRadius(desktopCornerRadius * scale);
    m_list->setScale(scale);
    m_adjustControls->setScale(scale);
    arrange();
}

void DesktopOverlayView::retranslate()
{
    m_adjustControls->retranslate();
    arrange();
}

void DesktopOverlayView::refresh()
{
    const DesktopOverlayGround ground{m_model.backgroundOpacity(), m_model.isAdjusting(), m_isTranslucent};
    m_backdrop->setOpacity(backdropOpacity(ground));
    m_list->setLegibility(wallpaperLegibility(ground));
    m_list->setTextSize(m_model.textSize());
    m_list->setContent(m_model.content());
    if (m_adjustControls->isVisibleTo(this) == m_model.isAdjusting())
        return;
    m_adjustControls->setVisible(m_model.isAdjusting());
    m_adjustControls->doneButton().setFocus();
    arrange();
    update(); // the controls may begin or end between two pixels
}

void DesktopOverlayView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    arrange();
}

void DesktopOverlayView::arrange()
{
    m_backdrop->setGeometry(rect());
    const int padding = int(std::lround(listPadding * m_scale));
    m_list->setGeometry(rect().adjusted(padding, padding, -padding, -padding));
    if (!m_adjustControls->isVisibleTo(this))
        return;
    QRect controls(QPoint(), m_adjustControls->sizeWithin(width() - int(2 * controlsMargin * m_scale)));
    controls.moveCenter(rect().center());
    m_adjustControls->setGeometry(controls);
}

} // namespace tickwise
