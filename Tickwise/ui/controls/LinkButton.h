#pragma once

#include "ui/controls/FlatButton.h"

#include <QUrl>

namespace tickwise {

/// An underlined text that opens an address with the desktop's handler, by mouse and by key.
class LinkButton : public FlatButton
{
    Q_OBJECT

public:
    explicit LinkButton(const QUrl &address, QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QUrl m_address;
};

} // namespace tickwise
