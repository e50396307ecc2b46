#include "widget/program/WidgetLogos.h"

#include "catalog/logos/LogoDecoding.h"

#include <algorithm>

namespace tickwise {

WidgetLogos::WidgetLogos(CoinLogoCache cache)
    : m_cache(std::move(cache))
{
}

std::optional<QImage> WidgetLogos::image(const QString &coinId)
{
    if (const auto known = m_images.constFind(coinId); known != m_images.constEnd())
        return *known;
    const std::optional<QByteArray> bytes = m_cache.read(coinId);
    return *m_images.insert(coinId, bytes ? decodeLogo(*bytes) : std::nullopt);
}

bool WidgetLogos::findMissing()
{
    QStringList missing;
    for (auto entry = m_images.cbegin(); entry != m_images.cend(); ++entry) {
        if (!entry.value())
            missing.append(entry.key());
    }
    for (const QString &coinId : missing)
        m_images.remove(coinId);
    return std::count_if(missing.cbegin(), missing.cend(), [this](const QString &id) { return bool(image(id)); }) > 0;
}

} // namespace tickwise
