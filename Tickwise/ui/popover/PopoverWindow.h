#pragma once

#include "ui/popover/PopoverFrame.h"
#include "ui/popover/PopoverSurface.h"
#include "widget/views/AccessibleWindow.h"

class QLabel;

namespace tickwise {

/// The window that a popover's content is shown in: a rounded panel with a border and, where there is room, a shadow.
/// The window may be larger than the panel; what lies outside counts as outside the popover.
class PopoverWindow : public AccessibleWindow
{
    Q_OBJECT

public:
    /// The room that the shadow needs on each side, in logical pixels.
    static int shadowMargin();

    /// Takes the content, which covers the panel.
    explicit PopoverWindow(QWidget *content);

    /// Nothing is drawn before this is called and after `unplace`.
    void place(const PopoverPlace &place);
    void unplace();

    const QRect &panel() const { return m_place.panel; }

Q_SIGNALS:
    /// The user wants the popover closed: Escape, a click outside the panel, the focus gone.
    void dismissed();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showToolTip(const QString &text, QPoint position);
    void followToolTips();

    QWidget *m_content;
    QLabel *m_toolTip = nullptr; ///< made when the desktop lets no window show it
    PopoverPlace m_place;
    PopoverFrame m_frame;
    bool m_isPressedOutside = false;
};

} // namespace tickwise
