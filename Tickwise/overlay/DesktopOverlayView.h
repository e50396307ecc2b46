#pragma once

#include "overlay/DesktopOverlayAdjustControls.h"
#include "overlay/DesktopOverlayBackdrop.h"
#include "overlay/DesktopOverlayModel.h"
#include "overlay/WallpaperLegibility.h"
#include "widget/views/WidgetListView.h"

namespace tickwise {

/// The desktop overlay's content: the list on its backdrop, and the controls of adjusting above it.
class DesktopOverlayView : public QWidget
{
    Q_OBJECT

public:
    /// The model outlives the view.
    DesktopOverlayView(DesktopOverlayModel &model, WidgetListView::LogoSource logos, Clock clock = systemClock,
                       QWidget *parent = nullptr);

    /// Whether the desktop can be seen through what is not painted.
    void setTranslucent(bool translucent);
    /// Draws everything so much larger, as the desktop draws its texts; 1 at first.
    void setScale(double scale);
    /// Takes the texts anew.
    void retranslate();

    const WidgetListView &list() const { return *m_list; }
    const DesktopOverlayBackdrop &backdrop() const { return *m_backdrop; }
    DesktopOverlayAdjustControls &adjustControls() { return *m_adjustControls; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void refresh();
    void arrange();

    DesktopOverlayModel &m_model;
    DesktopOverlayBackdrop *m_backdrop;
    WidgetListView *m_list;
    DesktopOverlayAdjustControls *m_adjustControls;
    bool m_isTranslucent = true;
    double m_scale = 1;
};

} // namespace tickwise
