#pragma once

#include <QColor>
#include <QString>

#include <optional>

namespace tickwise {

/// The opaque sRGB color that a text such as "#2CBD84" names: six hexadecimal digits, in any case, with or without
/// "#", white space around them allowed. None for any other text.
std::optional<QColor> colorFromHex(const QString &text);

/// The text of a color, "#" and six upper-case digits; its opacity is not kept.
QString hexFromColor(const QColor &color);

} // namespace tickwise
