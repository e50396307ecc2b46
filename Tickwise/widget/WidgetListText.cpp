#include "widget/WidgetListText.h"

#include "pipeline/PriceFormat.h"
#include "pipeline/TimeText.h"

#include <QLocale>

namespace tickwise {

namespace {

constexpr QChar upTriangle(0x25b2);
constexpr QChar downTriangle(0x25bc);

WidgetRowText rowText(const WidgetRow &row, const WidgetEntryContent &content, const LocalizationBundle &bundle)
{
    WidgetRowText text{.symbol = row.symbol, .name = row.name};
    text.isDelisted = !row.hasMarket;
    if (!row.hasMarket) {
        text.change = localized(QStringLiteral("coin.status.delisted"), bundle);
        text.accessibleText = text.name + QStringLiteral(", ") + text.change;
        return text;
    }
    text.accessibleText = text.name;
    text.price = row.price ? formatPrice(*row.price) : noPriceText();
    if (row.price)
        text.accessibleText += QStringLiteral(", ") + text.price + QLatin1Char(' ') + rawValue(content.currency);
    if (row.change24hPercent) {
        const QString change = changeText(*row.change24hPercent);
        const bool isRising = *row.change24hPercent >= 0;
        text.change = (isRising ? upTriangle : downTriangle) + QLatin1Char(' ') + change;
        if (content.colorByChange)
            text.changeColorHex = isRising ? content.upColorHex : content.downColorHex;
        text.accessibleText += QStringLiteral(", ") + change;
    }
    return text;
}

AppLanguage shownLanguage(AppLanguage language)
{
    return language == AppLanguage::system ? effectiveLanguage(language, preferredLanguages()) : language;
}

/// Opens the table of a language only when another one was asked for before: lists follow each other in one language.
const LocalizationBundle &bundleOf(AppLanguage language)
{
    static AppLanguage last = AppLanguage::system;
    static LocalizationBundle bundle;
    const bool isOther = std::exchange(last, language) != language;
    if (!bundle || isOther)
        bundle = openLocalizationBundle(rawValue(language));
    return bundle ? bundle : (bundle = mainLocalizationBundle());
}

} // namespace

LocalizationBundle widgetTexts(AppLanguage language)
{
    return bundleOf(shownLanguage(language));
}

WidgetListText widgetListText(const WidgetEntryContent &content, TimePoint now, const QTimeZone &zone)
{
    const AppLanguage language = shownLanguage(content.language);
    const LocalizationBundle &bundle = bundleOf(language);
    WidgetListText text;
    text.title = localized(QStringLiteral("widget.list.title"), bundle);
    text.emptyText = localized(QStringLiteral("widget.empty"), bundle);
    if (content.updatedAt) {
        text.updated = timeOfDayText(*content.updatedAt, zone, QLocale(rawValue(language)));
        text.isStale = now - *content.updatedAt > staleAge;
    }
    text.rows.reserve(content.rows.size());
    for (const WidgetRow &row : content.rows)
        text.rows.push_back(rowText(row, content, bundle));
    return text;
}

} // namespace tickwise
