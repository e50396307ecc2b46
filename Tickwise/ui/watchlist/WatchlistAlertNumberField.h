#pragma once

#include <QLineEdit>

namespace tickwise {

/// The field of an alert's number. It keeps digits and one point of whatever is typed, pasted, dropped or composed, and
/// tells each number at once; a text that means no number is put back when its editing ends.
class WatchlistAlertNumberField : public QLineEdit
{
    Q_OBJECT

public:
    explicit WatchlistAlertNumberField(QWidget *parent = nullptr);

    /// The stored value; it shows unless the field is being edited.
    void setThreshold(double threshold);

Q_SIGNALS:
    void thresholdEdited(double threshold);

private:
    void takeText(const QString &text);
    void endEditing();

    double m_threshold = 0;
};

} // namespace tickwise
