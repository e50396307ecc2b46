#include "app/LocalizationManager.h"

#include <QCoreApplication>
#include <QLocale>
#include <QThread>
#include <QTranslator>

#include <algorithm>
#include <array>

namespace tickwise {

namespace {

LocalizationBundle openBundle(const QString &resources, AppLanguage language)
{
    auto table = std::make_shared<QTranslator>();
    if (!table->load(QStringLiteral("%1/%2.lproj/Localizable.qm").arg(resources, rawValue(language))))
        return nullptr;
    return table;
}

/// English, the language that texts fall back to. Without its table it answers every key with nothing.
LocalizationBundle mainBundle()
{
    static const LocalizationBundle bundle = [] {
        LocalizationBundle english = openBundle(QStringLiteral(":"), AppLanguage::en);
        return english ? english : std::make_shared<const QTranslator>();
    }();
    return bundle;
}

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
    // POSIX locale names join with an underscore what language tags join with a hyphen.
    const QString tag = QString(preferredLanguages.first()).replace(u'_', u'-');
    if (isTraditionalChinese(tag))
        return AppLanguage::zhHant;
    return tag.startsWith(QStringLiteral("zh")) ? AppLanguage::zhHans : AppLanguage::en;
}

QStringList preferredLanguages()
{
    return QLocale::system().uiLanguages();
}

LocalizationManager::LocalizationManager()
    : m_bundle(mainBundle())
{
}

LocalizationManager &LocalizationManager::shared()
{
    static LocalizationManager manager;
    return manager;
}

LocalizationBundle LocalizationManager::bundleFor(AppLanguage language, const QStringList &preferred,
                                                  const QString &resources)
{
    const LocalizationBundle bundle = openBundle(resources, effectiveLanguage(language, preferred));
    return bundle ? bundle : mainBundle();
}

void LocalizationManager::apply(AppLanguage language)
{
    Q_ASSERT(!QCoreApplication::instance() || QThread::currentThread() == QCoreApplication::instance()->thread());
    m_bundle = bundleFor(language);
}

QString localized(const QString &key)
{
    return localized(key, LocalizationManager::shared().bundle());
}

QString localized(const QString &key, const LocalizationBundle &bundle)
{
    const QString text = bundle ? bundle->translate("", key.toUtf8().constData()) : QString();
    return text.isEmpty() ? key : text;
}

} // namespace tickwise
