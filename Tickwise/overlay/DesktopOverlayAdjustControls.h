#pragma once

#include <QWidget>

class QAbstractButton;
class QLabel;
class QVBoxLayout;

namespace tickwise {

/// What the overlay shows while it is adjusted: a hint and the button that ends it.
class DesktopOverlayAdjustControls : public QWidget
{
    Q_OBJECT

public:
    explicit DesktopOverlayAdjustControls(QWidget *parent = nullptr);

    QAbstractButton &doneButton();
    /// The size for a window of that width.
    QSize sizeWithin(int width) const;
    /// Draws everything so much larger; 1 at first.
    void setScale(double scale);
    /// Takes the texts anew.
    void retranslate();

Q_SIGNALS:
    void done();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    class DoneButton;

    QLabel *m_hint;
    DoneButton *m_done;
    QVBoxLayout *m_stack;
    double m_scale = 1;
};

} // namespace tickwise
