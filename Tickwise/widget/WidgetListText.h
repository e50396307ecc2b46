#pragma once

#include "support/Localization.h"
#include "widget/WidgetEntryContent.h"

#include <QTimeZone>

#include <chrono>

namespace tickwise {

/// The age from which the widget marks its prices as old; older ones are stale.
inline constexpr std::chrono::seconds staleAge{1800};

/// The texts of one coin's line.
struct WidgetRowText
{
    QString symbol;
    QString name;
    QString price;          ///< "--" without one, empty when delisted
    QString change;         ///< "▲ +1.23%", the delisted text, or empty
    QString changeColorHex; ///< empty: the text color
    bool isDelisted = false;
    QString accessibleText; ///< the line as it is read out
    bool operator==(const WidgetRowText &) const = default;
};

/// The texts of the whole list.
struct WidgetListText
{
    QString title;
    QString emptyText;
    QString updated; ///< the time of the prices; empty without one
    bool isStale = false;
    std::vector<WidgetRowText> rows;
    bool operator==(const WidgetListText &) const = default;
};

/// The texts in that language, which may be `system`; in English where they cannot be opened.
LocalizationBundle widgetTexts(AppLanguage language);

/// The texts of the content in its own language.
WidgetListText widgetListText(const WidgetEntryContent &content, TimePoint now, const QTimeZone &zone);

} // namespace tickwise
