#pragma once

#include "catalog/logos/CoinLogoCache.h"

#include <QHash>
#include <QImage>

namespace tickwise {

/// The logos that the application has downloaded. Each file is read and decoded once.
class WidgetLogos
{
public:
    explicit WidgetLogos(CoinLogoCache cache);

    /// The coin's logo; none without a file that can be decoded.
    std::optional<QImage> image(const QString &coinId);

    /// Looks again for the logos that were not there, which the application may have downloaded since. True: one is.
    bool findMissing();

private:
    CoinLogoCache m_cache;
    QHash<QString, std::optional<QImage>> m_images;
};

} // namespace tickwise
