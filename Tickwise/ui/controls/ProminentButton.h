#pragma once

#include "ui/controls/FlatButton.h"

namespace tickwise {

/// The one button that a surface wants to be pressed: its text on the accent color.
class ProminentButton : public FlatButton
{
    Q_OBJECT

public:
    explicit ProminentButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tickwise
