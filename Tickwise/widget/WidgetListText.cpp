#include "widget/WidgetListText.h"

#include "pipeline/PriceFormat.h"

#include <unicode/datefmt.h>
#include <unicode/timezone.h>

namespace tickwise {

namespace {

constexpr QChar upTriangle(0x25b2);
constexpr QChar downTriangle(0x25bc);

// ICU, because Qt writes the day periods of traditional Chinese as pattern letters.
QString timeText(TimePoint time, const QTimeZone &zone, AppLanguage effective)
{
    const icu::Locale locale(rawValue(effective).toLatin1().constData());
    const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale));
    if (!format)
        return {};
    format->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString(zone.id().constData())));
    const std::chrono::duration<double, std::milli> sinceEpoch = time.time_since_epoch();
    icu::UnicodeString text;
    format->format(UDate(sinceEpoch.count()), text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

QString changeText(double percent)
{
    if (percent >= 0)
        return upTriangle + QString::asprintf(" +%.2f%%", percent);
    return downTriangle + QString::asprintf(" %.2f%%", percent);
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
        text.change = changeText(*row.change24hPercent);
        if (content.colorByChange)
            text.changeColorHex = *row.change24hPercent >= 0 ? content.upColorHex : content.downColorHex;
    }
    text.accessibleText = text.name;
    if (row.price)
        text.accessibleText += QStringLiteral(", ") + text.price + QLatin1Char(' ') + rawValue(content.currency);
    if (row.change24hPercent)
        text.accessibleText += QStringLiteral(", ") + text.change.mid(2);
    return text;
}

} // namespace

WidgetListText widgetListText(const WidgetEntryContent &content, TimePoint now, const QTimeZone &zone)
{
    const AppLanguage language = effectiveLanguage(content.language, preferredLanguages());
    LocalizationBundle bundle = openLocalizationBundle(rawValue(language));
    if (!bundle)
        bundle = mainLocalizationBundle();
    WidgetListText text;
    text.title = localized(QStringLiteral("widget.list.title"), bundle);
    text.emptyText = localized(QStringLiteral("widget.empty"), bundle);
    if (content.updatedAt) {
        text.updated = timeText(*content.updatedAt, zone, language);
        text.isStale = now - *content.updatedAt > staleAge;
    }
    text.rows.reserve(content.rows.size());
    for (const WidgetRow &row : content.rows)
        text.rows.push_back(rowText(row, content, bundle));
    return text;
}

} // namespace tickwise
