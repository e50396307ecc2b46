#pragma once

#include "settings/AppLanguage.h"
#include "support/Localization.h"

namespace tickwise::test {

/// The texts of a language of the application.
inline LocalizationBundle textsOf(AppLanguage language)
{
    return openLocalizationBundle(rawValue(language));
}

/// Looks every text up in that language from now on.
inline void useLanguage(AppLanguage language)
{
    setCurrentLocalizationBundle(textsOf(language));
}

} // namespace tickwise::test
