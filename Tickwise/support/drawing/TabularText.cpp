#include "support/drawing/TabularText.h"

#include <QPainter>

#include <cmath>

namespace tickwise {

namespace {

bool isAsciiDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

double widestDigit(const QFontMetricsF &metrics)
{
    double widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return std::round(widest);
}

/// Calls `visit` with each single digit and with each run of other characters, which are shaped together.
void forEachRun(const QString &text, const std::function<void(const QString &, bool)> &visit)
{
    qsizetype start = 0;
    while (start < text.size()) {
        const bool digit = isAsciiDigit(text[start]);
        qsizetype end = start + 1;
        while (!digit && end < text.size() && !isAsciiDigit(text[end]))
            ++end;
        visit(text.mid(start, end - start), digit);
        start = end;
    }
}

} // namespace

TabularText::TabularText(const QFont &font)
    : m_font(font)
    , m_metrics(font)
    , m_cell(widestDigit(m_metrics))
{
}

// A single character is measured without shaping, which is the most expensive step.
double TabularText::advanceOf(const QString &run) const
{
    return run.size() == 1 ? m_metrics.horizontalAdvance(run.front()) : m_metrics.horizontalAdvance(run);
}

double TabularText::width(const QString &text) const
{
    double total = 0;
    forEachRun(text, [&](const QString &run, bool digit) { total += digit ? m_cell : std::round(advanceOf(run)); });
    return total;
}

void TabularText::draw(QPainter &painter, double x, double baseline, const QString &text) const
{
    painter.setFont(m_font);
    forEachRun(text, [&](const QString &run, bool digit) {
        const double advance = advanceOf(run);
        const double inset = digit ? std::round((m_cell - advance) / 2) : 0;
        painter.drawText(QPointF(x + inset, baseline), run);
        x += digit ? m_cell : std::round(advance);
    });
}

} // namespace tickwise
