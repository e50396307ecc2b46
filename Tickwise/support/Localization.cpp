#include "support/Localization.h"

#include "support/MainThread.h"

#include <QTranslator>

#include <utility>

namespace tickwise {

namespace {

LocalizationBundle &currentBundle()
{
    static LocalizationBundle bundle = mainLocalizationBundle();
    return bundle;
}

} // namespace

LocalizationBundle openLocalizationBundle(const QString &language, const QString &resources)
{
    auto table = std::make_shared<QTranslator>();
    if (!table->load(QStringLiteral("%1/%2.lproj/Localizable.qm").arg(resources, language)))
        return nullptr;
    return table;
}

LocalizationBundle mainLocalizationBundle()
{
    static const LocalizationBundle bundle = [] {
        LocalizationBundle english = openLocalizationBundle(QStringLiteral("en"));
        return english ? english : std::make_shared<const QTranslator>();
    }();
    return bundle;
}

const LocalizationBundle &currentLocalizationBundle()
{
    return currentBundle();
}

void setCurrentLocalizationBundle(LocalizationBundle bundle)
{
    requireMainThread();
    currentBundle() = std::move(bundle);
}

QString localized(const QString &key)
{
    return localized(key, currentBundle());
}

QString localized(const QString &key, const LocalizationBundle &bundle)
{
    const QString text = bundle ? bundle->translate("", key.toUtf8().constData()) : QString();
    return text.isEmpty() ? key : text;
}

} // namespace tickwise
