#include "ui/settings/ColorPickerRow.h"

#include "settings/HexColor.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>

namespace tickwise {

namespace {

constexpr QSize wellSize(28, 16);

QIcon wellIcon(const std::optional<QColor> &color, const QPalette &palette, qreal scale)
{
    QPixmap pixmap(wellSize * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor border = palette.color(QPalette::WindowText);
    border.setAlphaF(0.4F);
    painter.setPen(border);
    painter.setBrush(color ? QBrush(*color) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(QRectF(QPointF(0.5, 0.5), QSizeF(wellSize) - QSizeF(1, 1)), 3, 3);
    return pixmap;
}

} // namespace

ColorPickerRow::ColorPickerRow(QWidget *parent)
    : QWidget(parent)
    , m_well(new QToolButton(this))
    , m_field(new QLineEdit(this))
{
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_well);
    row->addWidget(m_field);
    m_well->setFocusPolicy(Qt::StrongFocus);
    m_well->setIconSize(wellSize);
    m_field->setFixedWidth(m_field->fontMetrics().horizontalAdvance(QStringLiteral("#WWWWWW")) + 24);
    connect(m_well, &QToolButton::clicked, this, &ColorPickerRow::chooseColor);
    connect(m_field, &QLineEdit::editingFinished, this, &ColorPickerRow::endEditing);
    setFocusProxy(m_well);
}

void ColorPickerRow::setName(const QString &name)
{
    setAccessibleName(name);
    m_well->setAccessibleName(name);
    m_field->setAccessibleName(name);
}

void ColorPickerRow::setHexColor(const QString &text)
{
    m_hexColor = text;
    m_well->setIcon(wellIcon(colorFromHex(text), palette(), devicePixelRatioF()));
    if (!m_field->hasFocus())
        m_field->setText(text);
}

void ColorPickerRow::chooseColor()
{
    auto *const dialog = new QColorDialog(colorFromHex(m_hexColor).value_or(Qt::gray), window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QColorDialog::colorSelected, this, &ColorPickerRow::take);
    dialog->open();
}

void ColorPickerRow::endEditing()
{
    const std::optional<QColor> color = colorFromHex(m_field->text());
    if (color && hexFromColor(*color) != m_hexColor)
        take(*color);
    m_field->setText(m_hexColor);
}

void ColorPickerRow::take(const QColor &color)
{
    setHexColor(hexFromColor(color));
    m_field->setText(m_hexColor);
    Q_EMIT hexColorEdited(m_hexColor);
}

} // namespace tickwise
