#include "ui/watchlist/WatchlistAddCoinPanel.h"

#include "catalog/logos/CoinLogoStore.h"
#include "support/Localization.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/Look.h"
#include "ui/controls/SymbolImage.h"
#include "ui/watchlist/CoinToggleList.h"
#include "ui/watchlist/WatchlistReorderSession.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace tickwise {

namespace {

constexpr int boxWidth = 420;
constexpr int boxMargin = 24;
constexpr int panelPadding = 12;
constexpr int fieldRadius = 6;
constexpr int panelRadius = 10;
constexpr int fieldSymbolSide = 14;
constexpr float fieldOpacity = 0.1F;
constexpr float placeholderOpacity = 0.75F; ///< more than secondary text has: the field's ground is darker
constexpr float scrimOpacity = 0.35F;

/// The ground of the search field: rounded, the text color at a tenth.
class FieldGround : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor ground = look::text(palette());
        ground.setAlphaF(fieldOpacity);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ground);
        const double radius = look::scaled(fieldRadius);
        painter.drawRoundedRect(rect(), radius, radius);
        const int side = look::scaled(fieldSymbolSide);
        painter.drawPixmap(
            look::scaled(8), (height() - side) / 2,
            symbolPixmap(QStringLiteral("magnifyingglass"), look::secondaryText(palette()), side, devicePixelRatioF()));
    }
};

} // namespace

WatchlistAddCoinPanel::WatchlistAddCoinPanel(WatchlistViewModel &viewModel, SettingsViewModel &settings,
                                             WatchlistReorderSession &session, CoinLogoStore *logos, QWidget *parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_session(session)
    , m_model([&viewModel](const QString &id) { return viewModel.isAdded(id); })
    , m_box(new QWidget(this))
    , m_field(new QLineEdit)
    , m_composition(*m_field)
    , m_clear(new IconButton(QStringLiteral("xmark.circle.fill")))
    , m_list(new CoinToggleList(m_model, logos))
    , m_noResults(new QLabel)
{
    hide();
    auto *const column = new QVBoxLayout(m_box);
    const int space = look::scaled(panelPadding);
    column->setContentsMargins(space, space, space, space);
    buildField();
    buildList(logos);
    writeTexts();
    parent->installEventFilter(this);
    connect(&viewModel, &WatchlistViewModel::coinsChanged, this, &WatchlistAddCoinPanel::showCoins);
    m_searchNotifier = viewModel.bindableSearchText().addNotifier([this] { showCoins(); });
    m_settingsNotifier = settings.bindableSettings().addNotifier([this] { m_model.refresh(); });
}

void WatchlistAddCoinPanel::buildField()
{
    auto *const ground = new FieldGround(m_box);
    auto *const row = new QHBoxLayout(ground);
    row->setContentsMargins(look::scaled(8 + fieldSymbolSide + 4), 2, 4, 2);
    m_field->setObjectName(QStringLiteral("searchField"));
    m_field->setFrame(false);
    takeColors();
    m_clear->setObjectName(QStringLiteral("watchlist.search.clear"));
    row->addWidget(m_field);
    row->addWidget(m_clear);
    m_box->layout()->addWidget(ground);
    connect(m_field, &QLineEdit::textEdited, this, [this](const QString &text) { m_viewModel.setSearchText(text); });
    connect(m_clear, &QAbstractButton::clicked, this, [this] {
        m_viewModel.setSearchText({});
        m_field->setFocus();
    });
}

/// The field shows the ground below it; its placeholder can be read on that.
void WatchlistAddCoinPanel::takeColors()
{
    QColor placeholder = look::text(palette());
    placeholder.setAlphaF(placeholderOpacity);
    if (m_field->palette().color(QPalette::PlaceholderText) == placeholder)
        return;
    QPalette colors;
    colors.setColor(QPalette::Base, Qt::transparent);
    colors.setColor(QPalette::PlaceholderText, placeholder);
    m_field->setPalette(colors);
}

void WatchlistAddCoinPanel::buildList(CoinLogoStore *logos)
{
    m_list->setObjectName(QStringLiteral("searchResults"));
    m_noResults->setObjectName(QStringLiteral("watchlist.search.noResults"));
    m_noResults->setAlignment(Qt::AlignCenter);
    m_list->viewport()->setAutoFillBackground(false);
    static_cast<QVBoxLayout *>(m_box->layout())->addWidget(m_list, 1);
    static_cast<QVBoxLayout *>(m_box->layout())->addWidget(m_noResults, 1);
    connect(m_list, &CoinToggleList::toggled, this, [this](const QString &id) { m_viewModel.toggle(id, &m_session); });
    auto *const delegate = static_cast<CoinToggleDelegate *>(m_list->itemDelegate());
    delegate->setAlwaysMarksCurrent(true);
    connect(delegate, &CoinToggleDelegate::coinSeen, this, &WatchlistAddCoinPanel::coinSeen, Qt::QueuedConnection);
    if (logos)
        connect(logos, &CoinLogoStore::cachedIDsChanged, this, [this] { m_model.refresh(); });
}

void WatchlistAddCoinPanel::open()
{
    place();
    showCoins();
    show();
    raise();
    m_field->setFocus(Qt::OtherFocusReason);
    m_field->selectAll();
}

void WatchlistAddCoinPanel::place()
{
    setGeometry(parentWidget()->rect());
    const int margin = look::scaled(boxMargin);
    const int width = std::min(look::scaled(boxWidth), this->width() - 2 * margin);
    m_box->setGeometry((this->width() - width) / 2, margin, width, height() - 2 * margin);
}

void WatchlistAddCoinPanel::showCoins()
{
    const QString text = m_viewModel.searchText();
    if (m_field->text() != text)
        m_field->setText(text);
    m_clear->setVisible(!text.isEmpty());
    m_model.setCoins(m_viewModel.visibleCoins());
    const bool isEmpty = m_model.rowCount() == 0;
    m_list->setVisible(!isEmpty);
    m_noResults->setVisible(isEmpty);
    m_noResults->setText(text.isEmpty() ? QString() : localized(QStringLiteral("watchlist.search.noResults")));
}

void WatchlistAddCoinPanel::writeTexts()
{
    const QString search = localized(QStringLiteral("watchlist.search.placeholder"));
    m_field->setPlaceholderText(search);
    m_field->setAccessibleName(search);
    m_clear->setHelp(localized(QStringLiteral("watchlist.search.clear")));
    m_list->setAccessibleName(localized(QStringLiteral("watchlist.addCoin")));
    setAccessibleName(localized(QStringLiteral("watchlist.addCoin")));
}

void WatchlistAddCoinPanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        writeTexts();
        showCoins();
    } else if (event->type() == QEvent::PaletteChange) {
        takeColors();
    }
    QWidget::changeEvent(event);
}

void WatchlistAddCoinPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    QCoreApplication::instance()->installEventFilter(this);
}

void WatchlistAddCoinPanel::hideEvent(QHideEvent *event)
{
    QCoreApplication::instance()->removeEventFilter(this);
    QWidget::hideEvent(event);
    if (!event->spontaneous()) // a minimized window's panel stays open
        Q_EMIT closed();
}

bool WatchlistAddCoinPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        place();
    const bool isInside = watched->isWidgetType() && window() == static_cast<QWidget *>(watched)->window();
    if (isInside && isVisible() && event->type() == QEvent::KeyPress)
        return handleKey(*static_cast<QKeyEvent *>(event));
    return QWidget::eventFilter(watched, event);
}

/// Escape closes, unless an input method is composing: then it ends the composition.
bool WatchlistAddCoinPanel::handleKey(QKeyEvent &event)
{
    if (m_composition.isComposing())
        return false;
    if (event.key() == Qt::Key_Escape) {
        hide();
        return true;
    }
    return window()->focusWidget() == m_field ? handleFieldKey(event) : typeInField(event);
}

/// In the field, the arrows move through the results and Enter toggles.
bool WatchlistAddCoinPanel::handleFieldKey(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Down:
        m_list->moveCurrent(1);
        return true;
    case Qt::Key_Up:
        m_list->moveCurrent(-1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!event.isAutoRepeat())
            m_list->toggleCurrent();
        return true;
    default:
        return false;
    }
}

/// Typing anywhere in the panel goes on in the field; the space bar presses the control that has the keyboard.
bool WatchlistAddCoinPanel::typeInField(QKeyEvent &event)
{
    const bool isCommand = event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const bool isText = !event.text().isEmpty() && event.text().front().isPrint() && event.key() != Qt::Key_Space;
    if (isCommand || !isText)
        return false;
    m_field->setFocus();
    QCoreApplication::sendEvent(m_field, &event);
    return true;
}

/// Keys that the controls leave stay here: the panel covers what else would take them.
void WatchlistAddCoinPanel::keyPressEvent(QKeyEvent *event)
{
    event->accept();
}

/// The controls that the panel covers are out of the keyboard's reach.
bool WatchlistAddCoinPanel::focusNextPrevChild(bool next)
{
    if (!isVisible()) // Qt moves the focus away from what was hidden
        return QWidget::focusNextPrevChild(next);
    std::vector<QWidget *> order{m_field, m_clear, m_list};
    std::erase_if(order, [](const QWidget *control) { return !control->isVisible(); });
    if (!next)
        std::ranges::reverse(order);
    const auto current = std::ranges::find_if(order, &QWidget::hasFocus);
    const bool isLast = current == order.end() || std::next(current) == order.end();
    QWidget *const target = isLast ? order.front() : *std::next(current);
    target->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

void WatchlistAddCoinPanel::mousePressEvent(QMouseEvent *event)
{
    if (!m_box->geometry().contains(event->position().toPoint()))
        hide();
}

void WatchlistAddCoinPanel::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const int corner = look::scaled(panelRadius);
    if (m_box->geometry().adjusted(corner, corner, -corner, -corner).contains(event->rect()))
        return painter.fillRect(event->rect(), palette().color(QPalette::Window)); // as when the results change
    painter.setRenderHint(QPainter::Antialiasing);
    QColor scrim(Qt::black);
    scrim.setAlphaF(scrimOpacity);
    painter.fillRect(rect(), scrim);
    const double radius = look::scaled(panelRadius);
    painter.setPen(look::separator(palette()));
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawRoundedRect(QRectF(m_box->geometry()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

} // namespace tickwise
