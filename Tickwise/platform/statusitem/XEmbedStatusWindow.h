#pragma once

#include "pipeline/StatusItemPainter.h"
#include "platform/statusitem/StatusItemWidth.h"

#include <QWidget>

namespace tickwise {

/// The window that shows the status item inside an X11 system tray: as wide as its text, or square.
class XEmbedStatusWindow : public QWidget
{
    Q_OBJECT

public:
    enum class Shape
    {
        wide,
        square
    };

    explicit XEmbedStatusWindow(Shape shape);

    void setContent(const StatusItemContent &content, const StatusItemStyle &style);

Q_SIGNALS:
    /// A click with the left button; `position` is on the screen.
    void clicked(QPoint position);
    /// A click with the right button.
    void menuRequested(QPoint position);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void fit();
    int leastHeight() const;

    Shape m_shape;
    StatusItemContent m_content;
    StatusItemStyle m_style;
    StatusItemWidth m_widths;
};

} // namespace tickwise
