#pragma once

#include "settings/AppLanguage.h"
#include "support/Localization.h"

namespace tickwise {

/// Chooses the language that the application's texts are looked up in. Main thread only.
class LocalizationManager
{
public:
    /// The one shared instance; it starts with the main bundle.
    static LocalizationManager &shared();

    /// The bundle of a language, whose folder `<language>.lproj` lies below `resources`; the main bundle (English)
    /// where that language's table cannot be opened.
    static LocalizationBundle bundleFor(AppLanguage language, const QStringList &preferred = preferredLanguages(),
                                        const QString &resources = QStringLiteral(":"));

    const LocalizationBundle &bundle() const { return currentLocalizationBundle(); }

    /// Makes every later lookup answer in that language.
    void apply(AppLanguage language);

private:
    LocalizationManager() = default;
};

} // namespace tickwise
