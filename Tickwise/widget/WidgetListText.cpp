#include "widget/WidgetListText.h"

#include "pipeline/PriceFormat.h"
#include "pipeline/TimeText.h"

#include <QLocale>

namespace tickwise {

namespace {

constexpr QChar upTriangle(0x25b2);
constexpr QChar downTriangle(0x25bc);

QString changeWithTriangle(double percent)
{
    return (percent >= 0 ? upTriangle : downTriangle) + QLatin1Char(' ') + changeText(percent);
}

WidgetRowText rowText(const WidgetRow &row, const WidgetEntryContent &content, const LocalizationBundle &bundle)
{
    WidgetRowText text{.symbol = row.symbol, .name = row.name};
    text.isDelisted = !row.hasMarket;
    if (!row.hasMarket) {
        text.change = localized(QStringLiteral("coin.status.delisted"), bundle);
        text.accessibleText = text.name + QStringLiteral(", ") + text.change;
        return text;
    }
    if (row.price)
        text.price = formatPrice(*row.price);
    if (row.change24hPercent) {
        text.change = changeWithTriangle(*row.change24hPercent);
        if (content.colorByChange)
            text.changeColorHex = *row.change24hPercent >= 0 ? content.upColorHex : content.downColorHex;
    }
    text.accessibleText = text.name;
    if (row.price)
        text.accessibleText += QStringLiteral(", ") + text.price + QLatin1Char(' ') + rawValue(content.currency);
    if (row.change24hPercent)
        text.accessibleText += QStringLiteral(", ") + changeText(*row.change24hPercent);
    return text;
}

} // namespace

LocalizationBundle widgetTexts(AppLanguage language)
{
    const LocalizationBundle bundle =
        openLocalizationBundle(rawValue(effectiveLanguage(language, preferredLanguages())));
    return bundle ? bundle : mainLocalizationBundle();
}

WidgetListText widgetListText(const WidgetEntryContent &content, TimePoint now, const QTimeZone &zone)
{
    const AppLanguage language = effectiveLanguage(content.language, preferredLanguages());
    const LocalizationBundle bundle = widgetTexts(language);
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
