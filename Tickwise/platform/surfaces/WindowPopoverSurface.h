#pragma once

#include "platform/surfaces/PopoverPlacement.h"
#include "ui/popover/PopoverSurface.h"

#include <QPointer>
#include <QWidget>

namespace tickwise {

/// A popover as a window that chooses its own place: on X11, and on XWayland.
class WindowPopoverSurface : public PopoverSurface
{
public:
    struct Environment
    {
        bool isXWayland = false; ///< pointer and grabs reach no farther than the X11 windows
        std::function<bool()> hasCompositor;
        std::function<QPoint()> pointer;
        std::function<std::vector<PopoverScreen>()> screens;
        std::function<void(QWidget &window)> keepOutOfTaskBar; ///< before a managed window is shown
    };

    /// The environment of this process.
    static Environment currentEnvironment();

    explicit WindowPopoverSurface(Environment environment = currentEnvironment());

    bool show(QWidget &window, QSize popover, int margin, const PopoverAnchor &anchor) override;
    void resize(QSize popover) override;
    void hide() override;

private:
    void prepare(QWidget &window, bool isTranslucent);
    QRect place(QSize popover) const;
    void apply(QSize popover);

    Environment m_environment;
    QPointer<QWidget> m_window;
    PopoverAnchor m_anchor;
    QPoint m_pointer; ///< when the popover was asked for
    int m_margin = 0;
    bool m_isTranslucent = false;
};

} // namespace tickwise
