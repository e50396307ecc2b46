#include "ui/watchlist/WatchlistAlertNumberField.h"

#include "pipeline/AlertNumberText.h"

#include <QValidator>

namespace tickwise {

namespace {

/// Takes out what does not belong into a number, wherever the text comes from.
class AlertNumberFilter : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &input, int &position) const override
    {
        const QString kept = filteredAlertNumber(input);
        if (kept == input)
            return Acceptable;
        position =
            static_cast<int>(filteredAlertNumber(input.first(std::min<qsizetype>(position, input.size()))).size());
        input = kept;
        return Acceptable;
    }
};

} // namespace

WatchlistAlertNumberField::WatchlistAlertNumberField(QWidget *parent)
    : QLineEdit(parent)
{
    setValidator(new AlertNumberFilter(this));
    setAlignment(Qt::AlignRight);
    connect(this, &QLineEdit::textEdited, this, &WatchlistAlertNumberField::takeText);
    connect(this, &QLineEdit::editingFinished, this, &WatchlistAlertNumberField::endEditing);
}

void WatchlistAlertNumberField::setThreshold(double threshold)
{
    m_threshold = threshold;
    // The same text is set, too: the edits that could be undone may be another coin's.
    if (!hasFocus() || alertNumber(text()) != threshold)
        setText(alertNumberText(threshold));
}

void WatchlistAlertNumberField::takeText(const QString &text)
{
    const std::optional<double> number = alertNumber(text);
    if (!number || *number == m_threshold)
        return;
    m_threshold = *number;
    Q_EMIT thresholdEdited(*number);
}

void WatchlistAlertNumberField::endEditing()
{
    const QString shown = alertNumberText(m_threshold);
    if (shown != text())
        setText(shown);
}

} // namespace tickwise
