#include "ui/controls/RowNameEvents.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QEvent>

#include <utility>

namespace tickwise {

RowNameEvents::RowNameEvents(QAbstractItemView &list)
    : QObject(&list)
    , m_list(list)
{
    list.installEventFilter(this);
    connect(list.model(), &QAbstractItemModel::dataChanged, this, &RowNameEvents::tellChanges);
    connect(list.model(), &QAbstractItemModel::modelReset, this, &RowNameEvents::takeNames);
}

bool RowNameEvents::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
        takeNames();
    return QObject::eventFilter(watched, event);
}

QStringList RowNameEvents::currentNames() const
{
    QStringList names;
    if (!QAccessible::isActive() || !m_list.isVisible())
        return names;
    const QAbstractItemModel &model = *m_list.model();
    for (int row = 0; row < model.rowCount(); ++row)
        names.append(model.index(row, 0).data(Qt::AccessibleTextRole).toString());
    return names;
}

void RowNameEvents::tellChanges()
{
    const QStringList before = std::exchange(m_names, currentNames());
    if (before.size() != m_names.size())
        return; // nobody has read a name yet
    for (int row = 0; row < m_names.size(); ++row) {
        if (before.at(row) == m_names.at(row))
            continue;
        QAccessibleEvent event(&m_list, QAccessible::NameChanged);
        event.setChild(row);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace tickwise
