#pragma once

#include "settings/AppLanguage.h"
#include "support/Localization.h"

#include <memory>

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

    /// Every later lookup uses that language, and Qt's own dialogs and menus do where its translations are installed.
    void apply(AppLanguage language);

private:
    LocalizationManager() = default;
    void applyToQt(AppLanguage effective);

    std::unique_ptr<QTranslator> m_qtTexts; ///< none in English, which Qt's texts are written in
};

} // namespace tickwise
