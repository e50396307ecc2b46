#include "ui/watchlist/WatchlistAlertControls.h"

#include "support/Localization.h"
#include "ui/controls/Look.h"
#include "ui/controls/WheelGuard.h"
#include "ui/watchlist/WatchlistAlertNumberField.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

namespace tickwise {

namespace {

constexpr int numberWidth = 96;
constexpr int unitWidth = 32;

QString unitOf(CoinAlertKind kind)
{
    switch (kind) {
    case CoinAlertKind::change:
        return QStringLiteral("%");
    case CoinAlertKind::above:
    case CoinAlertKind::below:
        return rawValue(BaseCurrency::usd);
    case CoinAlertKind::notSet:
        break;
    }
    return {};
}

} // namespace

WatchlistAlertControls::WatchlistAlertControls(QWidget *parent)
    : QWidget(parent)
    , m_kind(new QComboBox(this))
    , m_number(new WatchlistAlertNumberField(this))
    , m_unit(new QLabel(this))
{
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_kind);
    row->addWidget(m_number);
    row->addWidget(m_unit);
    WheelGuard::guard(*m_kind);
    m_number->setFixedWidth(look::scaled(numberWidth));
    m_unit->setFixedWidth(look::scaled(unitWidth));
    for (const CoinAlertKind kind : allCases<CoinAlertKind>())
        m_kind->addItem(title(kind));
    connect(m_kind, &QComboBox::activated, this,
            [this](int index) { Q_EMIT kindChosen(allCases<CoinAlertKind>().at(static_cast<size_t>(index))); });
    connect(m_number, &WatchlistAlertNumberField::thresholdEdited, this, &WatchlistAlertControls::thresholdEdited);
}

void WatchlistAlertControls::setAlert(const QString &coinName, CoinAlertKind kind, double threshold)
{
    m_coinName = coinName;
    const QSignalBlocker blocker(m_kind);
    m_kind->setCurrentIndex(static_cast<int>(kind));
    m_number->setThreshold(threshold);
    m_unit->setText(unitOf(kind));
    // Without an alert the number's place stays, so that the rows keep their columns.
    QSizePolicy policy = m_number->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_number->setSizePolicy(policy);
    m_number->setVisible(kind != CoinAlertKind::notSet);
    writeTexts();
}

std::array<QWidget *, 2> WatchlistAlertControls::controls() const
{
    return {m_kind, m_number};
}

void WatchlistAlertControls::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        writeTexts();
    QWidget::changeEvent(event);
}

void WatchlistAlertControls::writeTexts()
{
    int index = 0;
    for (const CoinAlertKind kind : allCases<CoinAlertKind>())
        m_kind->setItemText(index++, title(kind));
    // The name of a picker is what it shows where the desktop is Linux's; the description says what it is for.
    m_kind->setAccessibleName(localized(QStringLiteral("a11y.alertKind")).arg(m_coinName));
    m_kind->setAccessibleDescription(m_kind->accessibleName());
    m_number->setAccessibleName(localized(QStringLiteral("a11y.alertThreshold")).arg(m_coinName));
}

} // namespace tickwise
