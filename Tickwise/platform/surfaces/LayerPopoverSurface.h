#pragma once

#include "platform/surfaces/LayerClickCatcher.h"
#include "ui/popover/PopoverSurface.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <vector>

namespace tickwise {

/// A popover on Wayland's layers: a transparent window over the whole screen, panels included, so that every click
/// outside the popover is the popover's to see. Panels do not tell where they were clicked; the pointer that enters the
/// new window does. Where there are several screens, each is covered until the pointer has told which of them was
/// clicked, and the others again while the popover is open.
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
    bool attach(QScreen *screen);
    void detach();
    void openAt(QScreen *screen, std::optional<QPoint> pointer);
    void pointerIsAway();
    void place();
    void noteClick(QPoint pointer);
    void follow(QSize screen);
    void takeAwayLater();
    void findItsScreen();
    void coverScreens();

    std::unique_ptr<LayerShell> m_shell;
    std::unique_ptr<LayerSurface> m_surface;
    QPointer<QWidget> m_window;
    std::vector<std::unique_ptr<LayerClickCatcher>> m_covers; ///< of the screens that do not show the window
    QTimer m_pointerIsAway;
    QTimer m_isOnItsScreen; ///< runs until the window knows its screen
    PopoverAnchor m_anchor;
    QSize m_popover;
    QSize m_usable; ///< the screen without panels
    std::optional<QPoint> m_click;
};

} // namespace tickwise
