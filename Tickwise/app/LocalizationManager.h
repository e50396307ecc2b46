#pragma once

#include "support/RawValue.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QTranslator;

namespace tickwise {

/// The interface languages, in the order of their picker; stored by raw value ("system", "en", "zh-Hans", "zh-Hant").
enum class AppLanguage
{
    system,
    en,
    zhHans,
    zhHant
};

QString rawValue(AppLanguage language);

template<>
std::vector<AppLanguage> allCases<AppLanguage>();

/// The language that a choice means for a user with these preferred languages (BCP 47, most preferred first); never
/// `system`.
AppLanguage effectiveLanguage(AppLanguage language, const QStringList &preferredLanguages);

/// The user's preferred languages as the desktop reports them.
QStringList preferredLanguages();

/// One language's texts.
using LocalizationBundle = std::shared_ptr<const QTranslator>;

/// The application's shared source of texts. The language switch is its only writer; main thread only.
class LocalizationManager
{
public:
    /// The one shared instance; it starts with the main bundle.
    static LocalizationManager &shared();

    /// The bundle of a language, whose folder `<language>.lproj` lies below `resources`; the main bundle (English)
    /// where that language's table cannot be opened.
    static LocalizationBundle bundleFor(AppLanguage language, const QStringList &preferred = preferredLanguages(),
                                        const QString &resources = QStringLiteral(":"));

    const LocalizationBundle &bundle() const { return m_bundle; }

    /// Makes every later lookup answer in that language.
    void apply(AppLanguage language);

private:
    LocalizationManager();
    LocalizationBundle m_bundle;
};

/// The text of the key in the shared bundle; the key itself when the table lacks it.
QString localized(const QString &key);

/// The same in a bundle of the caller's choice.
QString localized(const QString &key, const LocalizationBundle &bundle);

} // namespace tickwise
