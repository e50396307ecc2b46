#pragma once

#include <QWidget>

class QAbstractButton;
class QLabel;

namespace tickwise {

/// What the overlay shows while it is adjusted: a hint and the button that ends it.
class DesktopOverlayAdjustControls : public QWidget
{
    Q_OBJECT

public:
    explicit DesktopOverlayAdjustControls(QWidget *parent = nullptr);

    QAbstractButton &doneButton() { return *m_done; }
    /// The size for a window of that width.
    QSize sizeWithin(int width) const;
    /// Takes the texts anew.
    void retranslate();

Q_SIGNALS:
    void done();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QLabel *m_hint;
    QAbstractButton *m_done;
};

} // namespace tickwise
