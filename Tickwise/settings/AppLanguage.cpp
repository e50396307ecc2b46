#include "settings/AppLanguage.h"

#include <QLocale>

#include <algorithm>
#include <array>

namespace tickwise {

namespace {

bool isTraditionalChinese(const QString &tag)
{
    const std::array prefixes{QStringLiteral("zh-Hant"), QStringLiteral("zh-TW"), QStringLiteral("zh-HK"),
                              QStringLiteral("zh-MO")};
    return std::ranges::any_of(prefixes, [&](const QString &prefix) { return tag.startsWith(prefix); });
}

} // namespace

QString rawValue(AppLanguage language)
{
    switch (language) {
    case AppLanguage::system:
        return QStringLiteral("system");
    case AppLanguage::en:
        return QStringLiteral("en");
    case AppLanguage::zhHans:
        return QStringLiteral("zh-Hans");
    case AppLanguage::zhHant:
        return QStringLiteral("zh-Hant");
    }
    return {};
}

template<>
std::vector<AppLanguage> allCases<AppLanguage>()
{
    return {AppLanguage::system, AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant};
}

AppLanguage effectiveLanguage(AppLanguage language, const QStringList &preferredLanguages)
{
    if (language != AppLanguage::system)
        return language;
    if (preferredLanguages.isEmpty())
        return AppLanguage::en;
    const QString &tag = preferredLanguages.first();
    if (isTraditionalChinese(tag))
        return AppLanguage::zhHant;
    return tag.startsWith(QStringLiteral("zh")) ? AppLanguage::zhHans : AppLanguage::en;
}

QStringList preferredLanguages()
{
    return QLocale::system().uiLanguages();
}

} // namespace tickwise
