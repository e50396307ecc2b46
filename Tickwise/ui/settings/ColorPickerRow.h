#pragma once

#include <QWidget>

class QLineEdit;
class QToolButton;

namespace tickwise {

/// A color well that opens a color dialog, and the color's text "#RRGGBB". A text is taken as soon as it is a color;
/// one that is none is put back when its editing ends.
class ColorPickerRow : public QWidget
{
    Q_OBJECT

public:
    explicit ColorPickerRow(QWidget *parent = nullptr);

    const QString &hexColor() const { return m_hexColor; }
    /// Shows the text as it is stored; the well is empty for a text that is no color.
    void setHexColor(const QString &text);
    /// The name of both controls for screen readers.
    void setName(const QString &name);

Q_SIGNALS:
    /// The user chose a color.
    void hexColorEdited(const QString &hexColor);

protected:
    void changeEvent(QEvent *event) override;

private:
    void showColor();
    void chooseColor();
    void takeText(const QString &text);
    void take(const QColor &color);

    QString m_hexColor;
    QToolButton *m_well;
    QLineEdit *m_field;
};

} // namespace tickwise
