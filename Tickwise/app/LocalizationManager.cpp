#include "app/LocalizationManager.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace tickwise {

namespace {

/// The name of Qt's own table; empty for English.
QString qtTable(AppLanguage effective)
{
    switch (effective) {
    case AppLanguage::zhHans:
        return QStringLiteral("qtbase_zh_CN");
    case AppLanguage::zhHant:
        return QStringLiteral("qtbase_zh_TW");
    case AppLanguage::system:
    case AppLanguage::en:
        break;
    }
    return {};
}

} // namespace

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
    applyToQt(effectiveLanguage(language, preferredLanguages()));
}

void LocalizationManager::applyToQt(AppLanguage effective)
{
    m_qtTexts.reset();
    const QString table = qtTable(effective);
    if (table.isEmpty())
        return;
    auto texts = std::make_unique<QTranslator>();
    if (!texts->load(table, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        return;
    QCoreApplication::installTranslator(texts.get());
    m_qtTexts = std::move(texts);
}

} // namespace tickwise
