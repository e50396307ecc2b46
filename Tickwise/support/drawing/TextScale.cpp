#include "support/drawing/TextScale.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace tickwise {

namespace {

constexpr double usualDotsPerInch = 96;
constexpr double largestScale = 4;

} // namespace

double textScale()
{
    const QScreen *const screen = QGuiApplication::primaryScreen();
    return screen ? std::clamp(screen->logicalDotsPerInchY() / usualDotsPerInch, 1.0, largestScale) : 1.0;
}

} // namespace tickwise
