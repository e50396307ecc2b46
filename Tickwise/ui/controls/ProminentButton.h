#pragma once

#include <QAbstractButton>

namespace tickwise {

/// The one button that a surface wants to be pressed: its text on the accent color.
class ProminentButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ProminentButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tickwise
