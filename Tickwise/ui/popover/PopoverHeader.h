#pragma once

#include <QWidget>

class QLabel;

namespace tickwise {

class IconButton;

/// The popover's first line: its title and the buttons.
class PopoverHeader : public QWidget
{
    Q_OBJECT

public:
    static constexpr int headerHeight = 52; ///< points

    /// Has no texts before the first `refresh`.
    explicit PopoverHeader(QWidget *parent = nullptr);

    void setUpdateAvailable(bool available);
    /// Takes language, font and text scale anew.
    void refresh();

Q_SIGNALS:
    void updateRequested();
    void watchlistRequested();
    void settingsRequested();
    void quitRequested();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    IconButton *addButton(const QString &name, const QString &symbol);

    QLabel *m_title;
    IconButton *m_update;
    IconButton *m_watchlist;
    IconButton *m_settings;
    IconButton *m_quit;
};

} // namespace tickwise
