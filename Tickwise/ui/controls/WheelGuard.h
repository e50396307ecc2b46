#pragma once

#include <QObject>

class QWidget;

namespace tickwise {

/// Leaves the wheel to the page that scrolls: the control takes it only while it has the focus, which a wheel does not
/// give it.
class WheelGuard : public QObject
{
    Q_OBJECT

public:
    /// Lives as long as the control.
    static void guard(QWidget &control);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit WheelGuard(QWidget &control);
};

} // namespace tickwise
