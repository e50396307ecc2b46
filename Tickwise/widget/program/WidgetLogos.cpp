#include "widget/program/WidgetLogos.h"

#include "catalog/logos/LogoDecoding.h"

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

void WidgetLogos::forgetMissing()
{
    m_images.removeIf([](QHash<QString, std::optional<QImage>>::iterator entry) { return !entry.value(); });
}

} // namespace tickwise
