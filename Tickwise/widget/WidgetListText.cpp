#include "widget/WidgetListText.h"

#include "pipeline/PriceFormat.h"

#include <QDateTime>
#include <QLocale>

namespace tickwise {

namespace {

constexpr QChar upTriangle(0x25b2);
constexpr QChar downTriangle(0x25bc);

QLocale localeOf(AppLanguage effective)
{
    switch (effective) {
    case AppLanguage::zhHans:
        return {QLocale::Chinese, QLocale::SimplifiedHanScript, QLocale::China};
    case AppLanguage::zhHant:
        return {QLocale::Chinese, QLocale::TraditionalHanScript, QLocale::Taiwan};
    case AppLanguage::system:
    case AppLanguage::en:
        break;
    }
    return {QLocale::English, QLocale::UnitedStates};
}

QString timeText(TimePoint time, const QTimeZone &zone, const QLocale &locale)
{
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch()).count();
    return locale.toString(QDateTime::fromMSecsSinceEpoch(milliseconds, zone).time(), QLocale::ShortFormat);
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
        text.updated = timeText(*content.updatedAt, zone, localeOf(language));
        text.isStale = now - *content.updatedAt > staleAge;
    }
    text.rows.reserve(content.rows.size());
    for (const WidgetRow &row : content.rows)
        text.rows.push_back(rowText(row, content, bundle));
    return text;
}

} // namespace tickwise
