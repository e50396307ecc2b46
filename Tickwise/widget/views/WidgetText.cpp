#include "widget/views/WidgetText.h"

#include <QPainter>

#include <cmath>
#include <utility>

namespace tickwise {

namespace {

constexpr double overhang = 4; ///< points around a text's line that its glyphs may reach

} // namespace

WidgetFace::WidgetFace(const QFont &sized)
    : font(sized)
    , metrics(sized)
    , ascent(metrics.ascent())
    , descent(metrics.descent())
    , tabular(sized)
    , halo(sized)
{
}

double WidgetFace::width(const QString &text, bool isTabular) const
{
    return isTabular ? tabular.width(text) : metrics.horizontalAdvance(text);
}

PlacedWidgetText::PlacedWidgetText(const WidgetText &text)
    : m_text(text)
{
    measure();
    m_look = placed();
}

void PlacedWidgetText::measure()
{
    m_wholeWidth = m_text.face->width(m_text.text, m_text.isTabular);
}

PlacedWidgetText::Look PlacedWidgetText::placed() const
{
    const QRectF &box = m_text.box;
    const WidgetFace &face = *m_text.face;
    Look look{.shown = m_text.text, .color = m_text.color, .width = m_wholeWidth};
    if (m_wholeWidth > box.width()) {
        look.shown = face.metrics.elidedText(m_text.text, Qt::ElideRight, box.width());
        look.width = face.width(look.shown, m_text.isTabular);
    }
    const double free = box.width() - look.width;
    look.left = m_text.alignment == Qt::AlignRight     ? box.left() + free
                : m_text.alignment == Qt::AlignHCenter ? box.left() + free / 2
                                                       : box.left();
    look.baseline = std::round(box.center().y() + (face.ascent - face.descent) / 2);
    return look;
}

QRectF PlacedWidgetText::replace(const WidgetText &text, bool halo)
{
    if (m_text == text)
        return {};
    const QRectF oldInk = ink(halo);
    const WidgetText before = std::exchange(m_text, text);
    const bool isSameFace = before.face == text.face && before.isTabular == text.isTabular;
    if (before.text != text.text || !isSameFace)
        measure();
    const Look oldLook = std::exchange(m_look, placed());
    return m_look == oldLook && isSameFace ? QRectF() : oldInk | ink(halo);
}

QRectF PlacedWidgetText::ink(bool halo) const
{
    if (m_look.shown.isEmpty())
        return {};
    const double around = halo ? TextHalo::reach : overhang;
    const WidgetFace &face = *m_text.face;
    return QRectF(m_look.left, m_look.baseline - face.ascent, m_look.width, face.ascent + face.descent)
        .adjusted(-around, -around, around, around);
}

void PlacedWidgetText::paint(QPainter &painter, bool halo) const
{
    const WidgetFace &face = *m_text.face;
    if (halo && m_text.isTabular) {
        for (const TabularText::Part &part : face.tabular.parts(m_look.shown, m_look.left))
            face.halo.draw(painter, part.left, m_look.baseline, part.text);
    } else if (halo) {
        face.halo.draw(painter, m_look.left, m_look.baseline, m_look.shown);
    }
    painter.setPen(m_look.color);
    if (m_text.isTabular)
        return face.tabular.draw(painter, m_look.left, m_look.baseline, m_look.shown);
    painter.setFont(face.font);
    painter.drawText(QPointF(m_look.left, m_look.baseline), m_look.shown);
}

QRectF replaceTexts(std::vector<PlacedWidgetText> &placed, const std::vector<WidgetText> &asked, bool halo)
{
    QRectF changed;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (i < placed.size())
            changed |= placed[i].replace(asked[i], halo);
        else
            changed |= placed.emplace_back(asked[i]).ink(halo);
    }
    while (placed.size() > asked.size()) {
        changed |= placed.back().ink(halo);
        placed.pop_back();
    }
    return changed;
}

} // namespace tickwise
