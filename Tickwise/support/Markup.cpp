#include "support/Markup.h"

namespace tickwise {

QString plainTextMarkup(const QString &lines, LineBreak lineBreak)
{
    QString markup = lines;
    markup.replace(u'&', QStringLiteral("&amp;"))
        .replace(u'<', QStringLiteral("&lt;"))
        .replace(u'>', QStringLiteral("&gt;"));
    return lineBreak == LineBreak::newline ? markup : markup.replace(u'\n', QStringLiteral("<br/>"));
}

QString toolTipMarkup(const QString &title, const QString &lines)
{
    if (title.isEmpty() && lines.isEmpty())
        return {};
    return QStringLiteral("<b>%1</b><br/>%2").arg(plainTextMarkup(title), plainTextMarkup(lines));
}

} // namespace tickwise
