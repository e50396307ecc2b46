#pragma once

#include "platform/surfaces/LayerShell.h"
#include "ui/popover/PopoverSurface.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace tickwise {

/// A popover on Wayland's layers: a transparent window over the whole screen, panels included, so that every click
/// outside the popover is the popover's to see. Panels do not tell where they were clicked; the pointer that enters the
/// new window does.
class LayerPopoverSurface : public QObject, public PopoverSurface
{
public:
    explicit LayerPopoverSurface(std::unique_ptr<LayerShell> shell);
    ~LayerPopoverSurface() override;

    bool show(QWidget &window, QSize popover, int margin, const PopoverAnchor &anchor) override;
    void resize(QSize popover) override;
    void hide() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool attach(QWidget &window);
    void place();
    void follow(QSize screen);

    std::unique_ptr<LayerShell> m_shell;
    std::unique_ptr<LayerSurface> m_surface;
    QPointer<QWidget> m_window;
    QTimer m_pointerIsAway;
    PopoverAnchor m_anchor;
    QSize m_popover;
    QSize m_usable; ///< the screen without panels
    std::optional<QPoint> m_click;
};

} // namespace tickwise
