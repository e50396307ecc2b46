#include "support/Graphemes.h"

#include <QTextBoundaryFinder>

namespace tickwise {

qsizetype characterCount(const QString &text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() >= 0)
        ++count;
    return count;
}

QString firstCharacters(const QString &text, qsizetype count)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    while (count-- > 0 && end >= 0)
        end = finder.toNextBoundary();
    return end < 0 ? text : text.first(end);
}

} // namespace tickwise
