#pragma once

#include <QColor>

namespace tickwise {

/// What text needs against its ground.
inline constexpr double readableContrast = 4.5;

/// How well the two are told apart, from 1 to 21, as the Web Content Accessibility Guidelines 2.1 compute it.
double contrast(const QColor &a, const QColor &b);

/// The preferred color where it can be read on the ground, else black or white, whichever is told apart better.
QColor readableOn(const QColor &ground, const QColor &preferred);

} // namespace tickwise
