#include "support/drawing/TabularText.h"

#include <QGlyphRun>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace tickwise {

namespace {

constexpr std::size_t keptShapes = 64; // prices need about twenty

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

/// The first part of a text that is not empty.
QStringView firstPart(QStringView text)
{
    qsizetype length = 1;
    while (!isAsciiDigit(text.front()) && length < text.size() && !isAsciiDigit(text[length]))
        ++length;
    return text.first(length);
}

} // namespace

TabularText::TabularText(const QFont &font)
    : m_font(font)
    , m_metrics(font)
    , m_cell(widestDigit(m_metrics))
{
}

void TabularText::trimShapes() const
{
    if (m_shapes.size() > keptShapes)
        m_shapes.clear();
}

const TabularText::Shape &TabularText::shapeOf(QStringView part) const
{
    const QString borrowed = QString::fromRawData(part.data(), part.size());
    if (const auto known = m_shapes.find(borrowed); known != m_shapes.end())
        return known->second;
    const QString own = part.toString();
    return m_shapes.emplace(own, shaped(own)).first->second;
}

TabularText::Shape TabularText::shaped(const QString &part) const
{
    QTextLayout layout(part, m_font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    Shape shape{.advance = m_metrics.horizontalAdvance(part)};
    for (const QGlyphRun &run : layout.glyphRuns()) {
        Glyphs glyphs{.font = indexOf(run.rawFont())};
        for (const quint32 index : run.glyphIndexes())
            glyphs.indexes.push_back(index);
        for (const QPointF place : run.positions())
            glyphs.places.push_back(place - QPointF(0, line.ascent()));
        shape.glyphs.push_back(std::move(glyphs));
    }
    return shape;
}

std::size_t TabularText::indexOf(const QRawFont &font) const
{
    const auto known = std::ranges::find(m_rawFonts, font);
    const auto index = std::size_t(known - m_rawFonts.begin());
    if (known == m_rawFonts.end())
        m_rawFonts.push_back(font);
    return index;
}

/// Of a part that has not been drawn yet it takes no shaping.
double TabularText::advanceOf(QStringView part) const
{
    const QString borrowed = QString::fromRawData(part.data(), part.size());
    const auto known = m_shapes.find(borrowed);
    return known != m_shapes.end() ? known->second.advance : m_metrics.horizontalAdvance(borrowed);
}

double TabularText::width(QStringView text) const
{
    double total = 0;
    while (!text.isEmpty()) {
        const QStringView part = firstPart(text);
        total += isAsciiDigit(part.front()) ? m_cell : std::round(advanceOf(part));
        text = text.sliced(part.size());
    }
    return total;
}

std::vector<TabularText::Part> TabularText::parts(QStringView text, double x) const
{
    trimShapes();
    std::vector<Part> parts;
    while (!text.isEmpty()) {
        const QStringView part = firstPart(text);
        const Shape &shape = shapeOf(part);
        const bool isDigit = isAsciiDigit(part.front());
        parts.push_back({part, isDigit ? x + std::round((m_cell - shape.advance) / 2) : x, &shape});
        x += isDigit ? m_cell : std::round(shape.advance);
        text = text.sliced(part.size());
    }
    return parts;
}

void TabularText::draw(QPainter &painter, double x, double baseline, QStringView text) const
{
    Glyphs line; // as many as possible at once
    for (const Part &part : parts(text, x)) {
        for (const Glyphs &glyphs : part.shape->glyphs) {
            if (glyphs.font != line.font) {
                drawGlyphs(painter, line);
                line = {.font = glyphs.font};
            }
            line.indexes.insert(line.indexes.end(), glyphs.indexes.begin(), glyphs.indexes.end());
            for (const QPointF place : glyphs.places)
                line.places.push_back(place + QPointF(part.left, baseline));
        }
    }
    drawGlyphs(painter, line);
}

void TabularText::drawGlyphs(QPainter &painter, const Glyphs &glyphs) const
{
    if (glyphs.indexes.empty())
        return;
    QGlyphRun run;
    run.setRawFont(m_rawFonts[glyphs.font]);
    run.setRawData(glyphs.indexes.data(), glyphs.places.data(), int(glyphs.indexes.size()));
    painter.drawGlyphRun(QPointF(), run);
}

} // namespace tickwise
