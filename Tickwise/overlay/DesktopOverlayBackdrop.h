#pragma once

#include <QWidget>

namespace tickwise {

/// The radius of the corners of windows on the desktop, in points.
inline constexpr double desktopCornerRadius = 22;

/// The ground of windows on the desktop: a sheet with round corners in the window color.
class DesktopOverlayBackdrop : public QWidget
{
    Q_OBJECT

public:
    explicit DesktopOverlayBackdrop(QWidget *parent = nullptr);

    double radius() const { return m_radius; }
    void setRadius(double radius);
    double opacity() const { return m_opacity; }
    void setOpacity(double opacity);
    /// Whether what lies outside the corners is painted, too: for a window whose corners are cut off.
    void setFillsCorners(bool fills);
    /// A sheet of that size, as a mask that cuts off the corners.
    QRegion outline(const QRect &sheet) const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRect inside() const;

    double m_radius = 0;
    double m_opacity = 1;
    bool m_fillsCorners = false;
};

} // namespace tickwise
