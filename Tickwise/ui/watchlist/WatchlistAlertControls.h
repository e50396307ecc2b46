#pragma once

#include "settings/AppSettings.h"

#include <QWidget>

#include <array>

class QComboBox;
class QLabel;

namespace tickwise {

class WatchlistAlertNumberField;

/// What a coin's alert watches, and its number with its unit; no number for a coin without an alert.
class WatchlistAlertControls : public QWidget
{
    Q_OBJECT

public:
    explicit WatchlistAlertControls(QWidget *parent = nullptr);

    /// Shows the alert of a coin that has that name.
    void setAlert(const QString &coinName, CoinAlertKind kind, double threshold);

    /// The controls that take the keyboard, in their order.
    std::array<QWidget *, 2> controls() const;

Q_SIGNALS:
    void kindChosen(tickwise::CoinAlertKind kind);
    void thresholdEdited(double threshold);

protected:
    void changeEvent(QEvent *event) override;

private:
    void writeTexts();

    QString m_coinName;
    QComboBox *m_kind;
    WatchlistAlertNumberField *m_number;
    QLabel *m_unit;
};

} // namespace tickwise
