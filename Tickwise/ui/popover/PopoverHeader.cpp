#include "ui/popover/PopoverHeader.h"

#include "support/Localization.h"
#include "ui/controls/IconButton.h"
#include "ui/controls/Look.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace tickwise {

namespace {

constexpr int leftMargin = 16;
constexpr int rightMargin = 10;
constexpr int headerSpacing = 2;

} // namespace

PopoverHeader::PopoverHeader(QWidget *parent)
    : QWidget(parent)
    , m_title(new QLabel(this))
{
    auto *const line = new QHBoxLayout(this);
    m_title->setTextFormat(Qt::PlainText);
    line->addWidget(m_title, 1);
    m_update = addButton(QStringLiteral("update"), QStringLiteral("arrow.down.circle.fill"));
    m_watchlist = addButton(QStringLiteral("watchlist"), QStringLiteral("list.bullet"));
    m_settings = addButton(QStringLiteral("settings"), QStringLiteral("gearshape"));
    m_quit = addButton(QStringLiteral("quit"), QStringLiteral("power"));
    connect(m_update, &IconButton::clicked, this, &PopoverHeader::updateRequested);
    connect(m_watchlist, &IconButton::clicked, this, &PopoverHeader::watchlistRequested);
    connect(m_settings, &IconButton::clicked, this, &PopoverHeader::settingsRequested);
    connect(m_quit, &IconButton::clicked, this, &PopoverHeader::quitRequested);
    m_update->hide();
}

IconButton *PopoverHeader::addButton(const QString &name, const QString &symbol)
{
    auto *const button = new IconButton(symbol, this);
    button->setObjectName(name);
    layout()->addWidget(button);
    return button;
}

void PopoverHeader::setUpdateAvailable(bool available)
{
    m_update->setVisible(available);
}

void PopoverHeader::refresh()
{
    setFixedHeight(look::scaled(headerHeight));
    layout()->setContentsMargins(look::scaled(leftMargin), 0, look::scaled(rightMargin), 0);
    layout()->setSpacing(look::scaled(headerSpacing));
    m_title->setFont(look::font(look::titleSize, QFont::DemiBold));
    m_title->setText(localized(QStringLiteral("popover.watchlist")));
    m_update->setText(localized(QStringLiteral("popover.updateAvailable")));
    m_update->setHelp(localized(QStringLiteral("popover.updateAvailable.help")));
    m_watchlist->setHelp(localized(QStringLiteral("popover.watchlist.help")));
    m_settings->setHelp(localized(QStringLiteral("popover.settings.help")));
    m_quit->setHelp(localized(QStringLiteral("popover.quit.help")));
    for (IconButton *const button : {m_update, m_watchlist, m_settings, m_quit})
        button->updateGeometry();
}

void PopoverHeader::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(QRect(0, height() - 1, width(), 1), look::separator(palette()));
}

} // namespace tickwise
