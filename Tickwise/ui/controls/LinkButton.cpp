#include "ui/controls/LinkButton.h"

#include "ui/controls/Look.h"

#include <QDesktopServices>
#include <QPainter>

namespace tickwise {

namespace {

constexpr int ringMargin = 3; ///< inside the focus ring

} // namespace

LinkButton::LinkButton(const QUrl &address, QWidget *parent)
    : FlatButton(parent)
    , m_address(address)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setToolTip(address.toDisplayString());
    connect(this, &QAbstractButton::clicked, this, [this] { QDesktopServices::openUrl(m_address); });
}

QSize LinkButton::sizeHint() const
{
    return fontMetrics().size(Qt::TextSingleLine, text()) + QSize(2 * ringMargin, 2 * ringMargin);
}

void LinkButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QFont underlined = font();
    underlined.setUnderline(true);
    painter.setFont(underlined);
    painter.setPen(look::link(palette()));
    painter.drawText(rect(), int(Qt::AlignCenter), text());
    if (hasFocus())
        look::drawFocusRing(painter, rect(), ringMargin, palette());
}

} // namespace tickwise
