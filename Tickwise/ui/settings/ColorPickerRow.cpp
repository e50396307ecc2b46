#include "ui/settings/ColorPickerRow.h"

#include "settings/HexColor.h"
#include "ui/controls/Look.h"

#include <QColorDialog>
#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>

namespace tickwise {

namespace {

constexpr QSize wellSize(28, 16);
constexpr int fieldMargins = 24; ///< of a text field's style, both sides

QIcon wellIcon(const std::optional<QColor> &color, const QPalette &palette, qreal scale)
{
    QPixmap pixmap(wellSize * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(look::secondaryText(palette));
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
    connect(m_well, &QToolButton::clicked, this, &ColorPickerRow::chooseColor);
    connect(m_field, &QLineEdit::textEdited, this, &ColorPickerRow::takeText);
    connect(m_field, &QLineEdit::editingFinished, this, [this] { m_field->setText(m_hexColor); });
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
    showColor();
    // A text that the user is writing stays until its editing ends.
    if (!m_field->hasFocus() || !m_field->isModified())
        m_field->setText(text);
}

void ColorPickerRow::changeEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
        showColor();
        break;
    default:
        break;
    }
    QWidget::changeEvent(event);
}

void ColorPickerRow::showColor()
{
    m_well->setIcon(wellIcon(colorFromHex(m_hexColor), palette(), devicePixelRatioF()));
    m_well->setAccessibleDescription(m_hexColor);
    m_field->setFixedWidth(m_field->fontMetrics().horizontalAdvance(QStringLiteral("#WWWWWW")) + fieldMargins);
}

void ColorPickerRow::chooseColor()
{
    auto *const dialog = new QColorDialog(colorFromHex(m_hexColor).value_or(Qt::gray), window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(accessibleName());
    connect(dialog, &QColorDialog::colorSelected, this, &ColorPickerRow::take);
    dialog->open();
}

void ColorPickerRow::takeText(const QString &text)
{
    const std::optional<QColor> color = colorFromHex(text);
    if (!color || hexFromColor(*color) == m_hexColor)
        return;
    setHexColor(hexFromColor(*color));
    Q_EMIT hexColorEdited(m_hexColor);
}

void ColorPickerRow::take(const QColor &color)
{
    setHexColor(hexFromColor(color));
    m_field->setText(m_hexColor);
    Q_EMIT hexColorEdited(m_hexColor);
}

} // namespace tickwise
