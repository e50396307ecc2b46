#pragma once

#include <QAbstractButton>
#include <QUrl>

namespace tickwise {

/// An underlined text that opens an address with the desktop's handler, by mouse and by key.
class LinkButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit LinkButton(const QUrl &address, QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QUrl m_address;
};

} // namespace tickwise
