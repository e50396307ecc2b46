#pragma once

#include <QPixmap>

namespace tickwise {

class CoinLogoStore;
struct CoinMetadata;

/// The coin's logo as it is drawn now: shipped, from the store, or the letters that stand in for it. `side` in logical
/// pixels. The pixmaps last drawn are kept, so that a row that is painted again costs one lookup.
QPixmap coinLogoPixmap(const CoinMetadata &coin, CoinLogoStore *store, const QColor &accent, int side,
                       qreal devicePixelRatio);

} // namespace tickwise
