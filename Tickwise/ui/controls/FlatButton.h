#pragma once

#include <QAbstractButton>

namespace tickwise {

/// A button that paints itself. Enter presses it as the space bar does: once, however long the key is held.
class FlatButton : public QAbstractButton
{
    Q_OBJECT

public:
    using QAbstractButton::QAbstractButton;

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace tickwise
