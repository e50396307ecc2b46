#include "ui/watchlist/WatchlistView.h"

#include "catalog/logos/CoinLogoStore.h"
#include "pipeline/WatchlistEditing.h"
#include "support/Localization.h"
#include "ui/MotionPreference.h"
#include "ui/controls/Look.h"
#include "ui/controls/SecondaryLabel.h"
#include "ui/watchlist/CoinToggleList.h"
#include "ui/watchlist/WatchlistRows.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace tickwise {

namespace {

constexpr int recommendedRowsInSight = 3;

} // namespace

WatchlistView::WatchlistView(WatchlistContext context, QWidget *parent)
    : QWidget(parent)
    , m_context(context)
    , m_recommendedModel([&model = context.viewModel](const QString &id) { return model.isAdded(id); })
    , m_add(new QPushButton)
    , m_rows(new WatchlistRows(m_session, context.logos, *m_add))
    , m_empty(new SecondaryLabel)
    , m_recommendedTitle(new QLabel)
    , m_recommended(new CoinToggleList(m_recommendedModel, context.logos))
{
    new QVBoxLayout(this);
    buildHeader();
    buildRows();
    buildRecommended();
    connectSources();
    writeTexts();
    showSettings();
}

WatchlistView::~WatchlistView()
{
    // Both use the session, which ends before the widgets of this view would.
    delete m_panel;
    delete m_rows;
}

void WatchlistView::buildHeader()
{
    auto *const row = new QHBoxLayout;
    row->addStretch();
    m_add->setObjectName(QStringLiteral("watchlist.addCoin"));
    row->addWidget(m_add);
    static_cast<QVBoxLayout *>(layout())->addLayout(row);
    connect(m_add, &QPushButton::clicked, this, &WatchlistView::openSearch);
}

void WatchlistView::buildRows()
{
    m_empty->setAlignment(Qt::AlignCenter);
    auto *const column = static_cast<QVBoxLayout *>(layout());
    column->addWidget(m_rows, 1);
    column->addWidget(m_empty, 1);
    connect(m_rows, &WatchlistRows::reordered, this,
            [this](const QStringList &ids) { edit(withWatchlistOrder(m_context.settings.settings(), ids)); });
    connect(m_rows, &WatchlistRows::deleteRequested, this, [this](const QString &id) {
        m_session.cancel();
        edit(withCoinRemoved(m_context.settings.settings(), id));
    });
    connect(m_rows, &WatchlistRows::kindChosen, this, [this](int index, CoinAlertKind kind) {
        editEntry(index, [kind](WatchlistCoin &entry) { entry.alertKind = kind; });
    });
    connect(m_rows, &WatchlistRows::thresholdEdited, this, [this](int index, double threshold) {
        editEntry(index, [threshold](WatchlistCoin &entry) { entry.notificationThreshold = threshold; });
    });
}

void WatchlistView::buildRecommended()
{
    m_recommended->setObjectName(QStringLiteral("watchlist.recommended"));
    m_recommended->setFixedHeight(look::scaled(recommendedRowsInSight * CoinToggleDelegate::rowHeight));
    m_recommendedTitle->setBuddy(m_recommended);
    QFont font = m_recommendedTitle->font();
    font.setBold(true);
    m_recommendedTitle->setFont(font);
    layout()->addWidget(m_recommendedTitle);
    layout()->addWidget(m_recommended);
    connect(m_recommended, &CoinToggleList::toggled, this,
            [this](const QString &id) { m_context.viewModel.toggle(id, &m_session); });
    connect(static_cast<CoinToggleDelegate *>(m_recommended->itemDelegate()), &CoinToggleDelegate::coinSeen, this,
            &WatchlistView::ensureLogo, Qt::QueuedConnection);
}

void WatchlistView::connectSources()
{
    m_settingsNotifier = m_context.settings.bindableSettings().addNotifier([this] { showSettings(); });
    connect(&m_context.viewModel, &WatchlistViewModel::coinsChanged, this, &WatchlistView::showSettings);
    connect(m_rows, &WatchlistRows::dragAboutToStart, this, &WatchlistView::followMotion);
    if (m_context.logos) {
        connect(m_context.logos, &CoinLogoStore::cachedIDsChanged, this, [this] {
            m_recommendedModel.refresh();
            m_rows->viewport()->update();
        });
    }
}

void WatchlistView::openSearch()
{
    if (!m_panel) {
        m_panel =
            new WatchlistAddCoinPanel(m_context.viewModel, m_context.settings, m_session, m_context.logos, window());
        connect(m_panel, &WatchlistAddCoinPanel::coinSeen, this, &WatchlistView::ensureLogo);
        connect(m_panel, &WatchlistAddCoinPanel::closed, this, [this] {
            if (isVisible())
                m_add->setFocus();
        });
    }
    if (m_context.logos)
        m_context.logos->forgetFailures();
    m_panel->open();
}

void WatchlistView::ensureLogo(const QString &id)
{
    const CoinMetadata *const coin = m_context.catalog.byID().value(id);
    if (m_context.logos && coin)
        m_context.logos->ensureSeenLogo(*coin);
}

void WatchlistView::edit(const AppSettings &settings)
{
    if (settings != m_context.settings.settings())
        m_context.settings.update(settings);
}

void WatchlistView::editEntry(int index, const std::function<void(WatchlistCoin &)> &change)
{
    AppSettings settings = m_context.settings.settings();
    const auto place = static_cast<size_t>(index);
    if (place >= settings.watchlistCoins.size())
        return; // a row that has just gone
    change(settings.watchlistCoins[place]);
    edit(settings);
}

void WatchlistView::showSettings()
{
    std::vector<WatchlistRowContent> rows = watchlistRows(m_context.settings.settings(), m_context.catalog.byID());
    if (rows.empty() && m_rows->isAncestorOf(window()->focusWidget()))
        m_add->setFocus();
    m_rows->setRows(std::move(rows));
    m_rows->setVisible(!m_rows->rows().empty());
    m_empty->setVisible(m_rows->rows().empty());
    m_recommendedModel.setCoins(m_context.viewModel.recommendedCoins());
    const bool hasRecommended = m_recommendedModel.rowCount() > 0;
    m_recommendedTitle->setVisible(hasRecommended);
    m_recommended->setVisible(hasRecommended);
}

/// Rows that are far from sight have no controls: the way on starts and ends in sight.
bool WatchlistView::focusNextPrevChild(bool next)
{
    m_rows->revealFocus();
    const bool moved = QWidget::focusNextPrevChild(next);
    m_rows->revealFocus();
    return moved;
}

void WatchlistView::showEvent(QShowEvent *event)
{
    followMotion();
    if (m_context.logos)
        m_context.logos->forgetFailures();
    QWidget::showEvent(event);
}

/// The panel covers the whole window, so it goes with the tab. It stays while the window is minimized. A drag gets no
/// release here any more.
void WatchlistView::hideEvent(QHideEvent *event)
{
    m_session.abandon();
    if (m_panel && !event->spontaneous())
        m_panel->hide();
    QWidget::hideEvent(event);
}

void WatchlistView::followMotion()
{
    const bool styleMoves = style()->styleHint(QStyle::SH_Widget_Animate, nullptr, this) != 0;
    m_session.setReduceMotion(!styleMoves || (m_context.motion && m_context.motion->isReduced()));
}

void WatchlistView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        writeTexts();
    QWidget::changeEvent(event);
}

void WatchlistView::writeTexts()
{
    m_add->setText(localized(QStringLiteral("watchlist.addCoin")));
    m_recommendedTitle->setText(localized(QStringLiteral("watchlist.recommended")));
    m_recommended->setAccessibleName(m_recommendedTitle->text());
    m_empty->setText(localized(QStringLiteral("popover.empty")));
    m_rows->setAccessibleName(localized(QStringLiteral("popover.watchlist")));
}

} // namespace tickwise
