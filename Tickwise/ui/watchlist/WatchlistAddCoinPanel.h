#pragma once

#include "ui/controls/CompositionWatch.h"
#include "ui/watchlist/CoinToggleModel.h"
#include "ui/watchlist/WatchlistViewModel.h"

#include <QLineEdit>
#include <QWidget>

class QLabel;

namespace tickwise {

class CoinLogoStore;
class CoinToggleList;
class IconButton;
class WatchlistReorderSession;

/// Searches the coins and puts them into the watchlist: a panel over the whole of its parent. The search text lives in
/// the view model, so that it survives closing.
class WatchlistAddCoinPanel : public QWidget
{
    Q_OBJECT

public:
    WatchlistAddCoinPanel(WatchlistViewModel &viewModel, SettingsViewModel &settings, WatchlistReorderSession &session,
                          CoinLogoStore *logos, QWidget *parent);

    /// Covers the parent and takes the keyboard.
    void open();

Q_SIGNALS:
    void closed();
    /// A row of a coin came into sight; its logo is wanted.
    void coinSeen(const QString &id);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildField();
    void takeColors();
    void buildList(CoinLogoStore *logos);
    bool handleKey(QKeyEvent &event);
    bool handleFieldKey(const QKeyEvent &event);
    bool typeInField(QKeyEvent &event);
    void place();
    void showCoins();
    void writeTexts();

    WatchlistViewModel &m_viewModel;
    WatchlistReorderSession &m_session;
    CoinToggleModel m_model;
    QWidget *m_box;
    QLineEdit *m_field;
    CompositionWatch m_composition;
    IconButton *m_clear;
    CoinToggleList *m_list;
    QLabel *m_noResults;
    QPropertyNotifier m_searchNotifier;
    QPropertyNotifier m_settingsNotifier;
};

} // namespace tickwise
