#pragma once

#include <QObject>
#include <QStringList>

class QAbstractItemView;

namespace tickwise {

/// Tells assistive programs, which remember the names that they have read, which rows of a list have a new one. Only
/// while the list is visible and such a program listens.
class RowNameEvents : public QObject
{
    Q_OBJECT

public:
    /// Belongs to the list, which has its model.
    explicit RowNameEvents(QAbstractItemView &list);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QStringList currentNames() const;
    void takeNames() { m_names = currentNames(); }
    void tellChanges();

    QAbstractItemView &m_list;
    QStringList m_names; ///< by row; empty while nobody listens
};

} // namespace tickwise
