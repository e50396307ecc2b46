#include "ui/popover/EmptyWatchlistView.h"

#include "support/Localization.h"
#include "ui/controls/Look.h"
#include "ui/controls/ProminentButton.h"
#include "ui/controls/SymbolImage.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace tickwise {

namespace {

constexpr int emptySymbolSide = 40;
constexpr int emptySpacing = 12;

} // namespace

EmptyWatchlistView::EmptyWatchlistView(QWidget *parent)
    : QWidget(parent)
    , m_symbol(new QLabel(this))
    , m_text(new QLabel(this))
    , m_button(new ProminentButton(this))
{
    m_text->setTextFormat(Qt::PlainText);
    m_text->setAlignment(Qt::AlignCenter);
    m_text->setWordWrap(true);
    m_button->setObjectName(QStringLiteral("addCoins"));
    connect(m_button, &ProminentButton::clicked, this, &EmptyWatchlistView::addCoinsRequested);
    auto *const layout = new QVBoxLayout(this);
    layout->addStretch();
    layout->addWidget(m_symbol, 0, Qt::AlignHCenter);
    layout->addWidget(m_text);
    layout->addWidget(m_button, 0, Qt::AlignHCenter);
    layout->addStretch();
}

void EmptyWatchlistView::refresh()
{
    layout()->setSpacing(look::scaled(emptySpacing));
    m_text->setFont(look::font(look::bodySize));
    m_text->setText(localized(QStringLiteral("popover.empty")));
    m_button->setText(localized(QStringLiteral("popover.addCoins")));
    m_button->updateGeometry();
    drawSymbol();
}

void EmptyWatchlistView::drawSymbol()
{
    m_symbol->setPixmap(symbolPixmap(QStringLiteral("bitcoinsign.circle"), look::secondaryText(palette()),
                                     look::scaled(emptySymbolSide), devicePixelRatioF()));
}

void EmptyWatchlistView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        drawSymbol();
    QWidget::changeEvent(event);
}

} // namespace tickwise
