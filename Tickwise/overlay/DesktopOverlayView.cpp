#include "overlay/DesktopOverlayView.h"

#include <QAbstractButton>

namespace tickwise {

namespace {

constexpr int listPadding = 14;
constexpr int controlsMargin = 4; // the least that the overlay shows around its controls

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
    refresh();
}

void DesktopOverlayView::setTranslucent(bool translucent)
{
    m_isTranslucent = translucent;
    m_backdrop->setFillsCorners(!translucent);
    refresh();
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
}

void DesktopOverlayView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    arrange();
}

void DesktopOverlayView::arrange()
{
    m_backdrop->setGeometry(rect());
    m_list->setGeometry(rect().adjusted(listPadding, listPadding, -listPadding, -listPadding));
    if (!m_adjustControls->isVisibleTo(this))
        return;
    QRect controls(QPoint(), m_adjustControls->sizeWithin(width() - 2 * controlsMargin));
    controls.moveCenter(rect().center());
    m_adjustControls->setGeometry(controls);
}

} // namespace tickwise
