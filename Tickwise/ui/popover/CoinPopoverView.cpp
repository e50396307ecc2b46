#include "ui/popover/CoinPopoverView.h"

#include "catalog/logos/CoinLogoStore.h"
#include "pipeline/CoinListViewModel.h"
#include "support/Localization.h"
#include "ui/controls/Look.h"
#include "ui/controls/RowNameEvents.h"
#include "ui/popover/CoinRowDelegate.h"
#include "ui/popover/EmptyWatchlistView.h"
#include "ui/popover/PopoverHeader.h"
#include "ui/popover/PopoverStatus.h"
#include "ui/updates/UpdateController.h"

#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace tickwise {

namespace {

constexpr int popoverWidth = 320;
constexpr int heightWithoutRows = 90;
constexpr std::size_t fewestRows = 4;
constexpr std::size_t mostRows = 8;
constexpr int listTop = 4;
constexpr int statusHeight = heightWithoutRows - PopoverHeader::headerHeight - listTop;
constexpr int statusMargin = 16;
constexpr std::chrono::seconds agingInterval{1};

} // namespace

CoinPopoverView::CoinPopoverView(CoinPopoverContext context, QWidget *parent)
    : QWidget(parent)
    , m_context(std::move(context))
    , m_header(new PopoverHeader(this))
    , m_model(new CoinRowModel(m_context.coinList, m_context.settings, m_context.clock, this))
    , m_delegate(new CoinRowDelegate(*m_model, m_context.logos, this))
    , m_list(new QListView(this))
    , m_status(new QLabel(this))
{
    setObjectName(QStringLiteral("coinPopover"));
    setFocusPolicy(Qt::NoFocus);
    buildList();
    m_status->setObjectName(QStringLiteral("status"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addSpacing(listTop);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_status);
    m_aging.setInterval(agingInterval);
    connectSources();
    refresh();
}

CoinPopoverView::~CoinPopoverView() = default;

QSize CoinPopoverView::sizeFor(std::size_t coins)
{
    const int rows = int(std::clamp(coins, fewestRows, mostRows));
    return {look::scaled(popoverWidth),
            look::scaled(heightWithoutRows) + rows * look::scaled(CoinRowDelegate::rowHeight)};
}

void CoinPopoverView::buildList()
{
    m_list->setObjectName(QStringLiteral("coins"));
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setUniformItemSizes(true);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setFocusPolicy(Qt::TabFocus);
    m_list->viewport()->setAutoFillBackground(false);
    m_list->viewport()->setAttribute(Qt::WA_Hover);
    m_list->setItemDelegate(m_delegate);
    m_list->setModel(m_model);
    new RowNameEvents(*m_list);
}

void CoinPopoverView::buildEmpty()
{
    m_empty = new EmptyWatchlistView(this);
    connect(m_empty, &EmptyWatchlistView::addCoinsRequested, this,
            [this] { m_context.navigate(SettingsTab::watchlist); });
    m_empty->refresh();
    static_cast<QVBoxLayout *>(layout())->insertWidget(1, m_empty, 1);
}

void CoinPopoverView::connectSources()
{
    connect(m_header, &PopoverHeader::updateRequested, this, [this] { m_context.updates.checkForUpdates(); });
    connect(m_header, &PopoverHeader::watchlistRequested, this, [this] { m_context.navigate(SettingsTab::watchlist); });
    connect(m_header, &PopoverHeader::settingsRequested, this, [this] { m_context.navigate(SettingsTab::general); });
    connect(m_header, &PopoverHeader::quitRequested, this, [this] { m_context.quit(); });
    connect(&m_context.updates, &UpdateController::updateAvailableChanged, m_header,
            [this] { m_header->setUpdateAvailable(m_context.updates.updateAvailable()); });
    m_header->setUpdateAvailable(m_context.updates.updateAvailable());
    connect(&m_context.coinList, &CoinListViewModel::coinsChanged, this, &CoinPopoverView::showCoins);
    connect(&m_context.coinList, &CoinListViewModel::lastFetchFailureChanged, this, &CoinPopoverView::showStatus);
    connect(&m_aging, &QTimer::timeout, this, &CoinPopoverView::showStatus);
    if (m_context.logos) {
        connect(m_context.logos, &CoinLogoStore::cachedIDsChanged, m_list->viewport(), qOverload<>(&QWidget::update));
    }
}

void CoinPopoverView::refresh()
{
    m_header->refresh();
    if (m_empty)
        m_empty->refresh();
    m_delegate->applyMetrics();
    m_model->refresh();
    setAccessibleName(localized(QStringLiteral("popover.watchlist")));
    m_list->setAccessibleName(localized(QStringLiteral("popover.watchlist")));
    m_list->verticalScrollBar()->setSingleStep(look::scaled(CoinRowDelegate::rowHeight));
    m_status->setFont(look::font(look::captionSize));
    m_status->setFixedHeight(look::scaled(statusHeight));
    const int margin = look::scaled(statusMargin);
    m_status->setContentsMargins(margin, 0, margin, 0);
    showCoins();
}

void CoinPopoverView::rewind()
{
    m_list->setCurrentIndex(m_model->index(0));
    m_list->scrollToTop();
    // Otherwise the first button would have it, and show it, when the window becomes active.
    setFocus(Qt::OtherFocusReason);
}

void CoinPopoverView::showCoins()
{
    const bool isEmpty = m_context.coinList.coins().empty();
    if (isEmpty && !m_empty)
        buildEmpty();
    if (m_empty)
        m_empty->setVisible(isEmpty);
    m_list->setVisible(!isEmpty);
    m_status->setVisible(!isEmpty);
    showStatus();
}

void CoinPopoverView::showStatus()
{
    if (!isVisible())
        return;
    const QString text =
        popoverStatus(m_context.coinList.coins(), m_context.coinList.lastFetchFailure(), m_context.clock());
    if (m_status->text() != text)
        m_status->setText(text);
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, look::secondaryText(palette()));
    if (m_status->palette() != colors)
        m_status->setPalette(colors);
}

void CoinPopoverView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    showStatus();
    m_aging.start();
}

void CoinPopoverView::hideEvent(QHideEvent *event)
{
    m_aging.stop();
    QWidget::hideEvent(event);
}

void CoinPopoverView::keyPressEvent(QKeyEvent *event)
{
    const bool isArrow = event->key() == Qt::Key_Down || event->key() == Qt::Key_Up;
    if (isArrow && m_list->isVisible() && !m_list->hasFocus())
        m_list->setFocus(Qt::TabFocusReason);
    else
        QWidget::keyPressEvent(event);
}

} // namespace tickwise
