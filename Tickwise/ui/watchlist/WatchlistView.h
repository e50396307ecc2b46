#pragma once

#include "ui/watchlist/CoinToggleModel.h"
#include "ui/watchlist/WatchlistAddCoinPanel.h"
#include "ui/watchlist/WatchlistReorderSession.h"
#include "ui/watchlist/WatchlistViewModel.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QPushButton;

namespace tickwise {

class CoinLogoStore;
class CoinToggleList;
class MotionPreference;
class WatchlistRows;

/// What the watchlist tab works on; all of it outlives the view.
struct WatchlistContext
{
    SettingsViewModel &settings;
    CoinCatalog &catalog;
    WatchlistViewModel &viewModel;
    CoinLogoStore *logos = nullptr;
    const MotionPreference *motion = nullptr; ///< none: only the style decides
};

/// The watchlist in its user's hands: adding, removing, reordering, alerts, recommended coins. Any window can host it.
class WatchlistView : public QWidget
{
    Q_OBJECT

public:
    explicit WatchlistView(WatchlistContext context, QWidget *parent = nullptr);
    ~WatchlistView() override;

    WatchlistReorderSession &session() { return m_session; }
    WatchlistRows &rows() { return *m_rows; }
    /// Opens the panel that searches coins.
    void openSearch();

protected:
    void changeEvent(QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void hideEvent(QHideEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void buildHeader();
    void buildRows();
    void buildRecommended();
    void connectSources();
    void edit(const AppSettings &settings);
    void editEntry(int index, const std::function<void(WatchlistCoin &)> &change);
    void showSettings();
    void followMotion();
    void writeTexts();
    void ensureLogo(const QString &id);

    WatchlistContext m_context;
    WatchlistReorderSession m_session;
    CoinToggleModel m_recommendedModel;
    QPushButton *m_add;
    WatchlistRows *m_rows;
    QLabel *m_empty;
    QLabel *m_recommendedTitle;
    CoinToggleList *m_recommended;
    QPointer<WatchlistAddCoinPanel> m_panel; ///< the window's
    QPropertyNotifier m_settingsNotifier;
};

} // namespace tickwise
