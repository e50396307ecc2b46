#include "app/LocalizationManager.h"

namespace tickwise {

LocalizationManager &LocalizationManager::shared()
{
    static LocalizationManager manager;
    return manager;
}

LocalizationBundle LocalizationManager::bundleFor(AppLanguage language, const QStringList &preferred,
                                                  const QString &resources)
{
    const LocalizationBundle bundle =
        openLocalizationBundle(rawValue(effectiveLanguage(language, preferred)), resources);
    return bundle ? bundle : mainLocalizationBundle();
}

void LocalizationManager::apply(AppLanguage language)
{
    setCurrentLocalizationBundle(bundleFor(language));
}

} // namespace tickwise
