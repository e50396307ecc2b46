#pragma once

#include "support/drawing/TextScale.h"

#include <QColor>
#include <QFont>

class QPainter;
class QPalette;
class QRectF;

/// The measures and colors of the surfaces that we paint. Colors come from the palette; lengths are points, which
/// `scaled` turns into logical pixels at the desktop's text scale.
namespace tickwise::look {

inline constexpr int popoverRadius = 12;
inline constexpr int rowRadius = 6;
inline constexpr int titleSize = 15;
inline constexpr int bodySize = 13;
inline constexpr int captionSize = 11;

using tickwise::textScale;

/// A length at the desktop's text scale, in whole logical pixels.
int scaled(double points);

/// The desktop's font at that size.
QFont font(int points, QFont::Weight weight = QFont::Normal);

/// What a text stands on.
enum class Ground
{
    plain,
    hovered ///< takes some of the contrast, which a stronger secondary text gives back
};

QColor text(const QPalette &palette);
QColor secondaryText(const QPalette &palette, Ground ground = Ground::plain);
QColor separator(const QPalette &palette);
QColor hover(const QPalette &palette);
QColor pressed(const QPalette &palette);
QColor accent(const QPalette &palette);
/// The palette's link color where it can be read on the window, else that of the text.
QColor link(const QPalette &palette);

/// The sign of the keyboard's focus: a line inside the box's edge.
void drawFocusRing(QPainter &painter, const QRectF &box, double radius, const QPalette &palette);

} // namespace tickwise::look
