#pragma once

#include "ui/controls/FlatButton.h"

namespace tickwise {

/// A flat button with one of the interface's symbols, and with its text beside the symbol if it has one. Its tooltip is
/// its name for screen readers unless it has a text.
class IconButton : public FlatButton
{
    Q_OBJECT

public:
    explicit IconButton(const QString &symbol, QWidget *parent = nullptr);

    /// The tooltip, and the name for screen readers.
    void setHelp(const QString &help);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_symbol;
};

} // namespace tickwise
