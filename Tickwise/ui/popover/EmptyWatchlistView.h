#pragma once

#include <QWidget>

class QLabel;

namespace tickwise {

class ProminentButton;

/// What the popover shows instead of rows: a symbol, a line of text and the way to add coins.
class EmptyWatchlistView : public QWidget
{
    Q_OBJECT

public:
    /// Has no texts before the first `refresh`.
    explicit EmptyWatchlistView(QWidget *parent = nullptr);

    /// Takes language, font and text scale anew.
    void refresh();

Q_SIGNALS:
    void addCoinsRequested();

protected:
    void changeEvent(QEvent *event) override;

private:
    void drawSymbol();

    QLabel *m_symbol;
    QLabel *m_text;
    ProminentButton *m_button;
};

} // namespace tickwise
