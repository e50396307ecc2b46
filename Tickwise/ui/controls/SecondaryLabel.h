#pragma once

#include <QLabel>

namespace tickwise {

/// A label in the color of secondary text, in every palette.
class SecondaryLabel : public QLabel
{
    Q_OBJECT

public:
    explicit SecondaryLabel(QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void takeColor();
};

} // namespace tickwise
