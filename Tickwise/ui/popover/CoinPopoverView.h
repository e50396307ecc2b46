#pragma once

#include "settings/SettingsViewModel.h"
#include "support/Clock.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QLabel;
class QListView;

namespace tickwise {

class CoinListViewModel;
class CoinLogoStore;
class CoinRowDelegate;
class CoinRowModel;
class EmptyWatchlistView;
class PopoverHeader;
class UpdateController;

/// What the popover shows and what it starts. All of it outlives the view.
struct CoinPopoverContext
{
    CoinListViewModel &coinList;
    SettingsViewModel &settings;
    UpdateController &updates;
    CoinLogoStore *logos = nullptr;
    std::function<void(SettingsTab)> navigate; ///< opens the settings window on a tab
    std::function<void()> quit;
    Clock clock = systemClock;
};

/// The watchlist with its prices, and the ways on from it. Holds no state but what it shows.
class CoinPopoverView : public QWidget
{
    Q_OBJECT

public:
    explicit CoinPopoverView(CoinPopoverContext context, QWidget *parent = nullptr);
    ~CoinPopoverView() override;

    /// The size for that many coins: a list of four to eight rows.
    static QSize sizeFor(std::size_t coins);

    /// Takes language, font and text scale anew.
    void refresh();

    /// Forgets where the last use left off: scrolled to the top, nothing focused.
    void rewind();

    QListView &list() { return *m_list; }

protected:
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildList();
    void buildEmpty();
    void connectSources();
    void showCoins();
    void showStatus();

    CoinPopoverContext m_context;
    PopoverHeader *m_header;
    EmptyWatchlistView *m_empty = nullptr; ///< made for the first empty watchlist
    CoinRowModel *m_model;
    CoinRowDelegate *m_delegate;
    QListView *m_list;
    QLabel *m_status;
    QTimer m_aging{this}; ///< runs while the view is visible
};

} // namespace tickwise
