#pragma once

#include "settings/AppLanguage.h"
#include "support/Localization.h"

namespace tickwise {

/// Selects the language in which the application's texts are looked up. Main thread only.
class LocalizationManager
{
public:
    /// The one shared instance; it starts with the main bundle.
    static LocalizationManager &shared();

    /// The bundle of a language, whose folder `<language>.lproj` lies below `resources`; the main bundle (English)
    /// when that language's table cannot be opened.
    static LocalizationBundle bundleFor(AppLanguage language, const QStringList &preferred = preferredLanguages(),
                                        const QString &resources = QStringLiteral(":"));

    const LocalizationBundle &bundle() const { return currentLocalizationBundle(); }

    /// Every later lookup uses that language.
    void apply(AppLanguage language);

private:
    LocalizationManager() = default;
};

} // namespace tickwise
