#include "widget/views/WidgetListAccessible.h"

#include "widget/views/WidgetListView.h"

#include <QPointer>

#include <algorithm>

namespace tickwise {

namespace {

/// The line of one coin. It is valid for as long as the list has so many.
class Item : public QAccessibleInterface
{
public:
    Item(WidgetListView *view, int index)
        : m_view(view)
        , m_index(index)
    {
    }

    bool isValid() const override { return m_view && m_index < m_view->shownRows(); }
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_view); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString &) override {}

    QString text(QAccessible::Text kind) const override
    {
        if (kind != QAccessible::Name || !isValid())
            return {};
        return m_view->text().rows[static_cast<std::size_t>(m_index)].accessibleText;
    }

    QRect rect() const override
    {
        const QRect row = isValid() ? m_view->rowRect(m_index).toRect() : QRect();
        return isValid() ? row.translated(m_view->mapToGlobal(QPoint())) : row;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.readOnly = true;
        state.invisible = !isValid() || !m_view->isVisible();
        return state;
    }

private:
    QPointer<WidgetListView> m_view;
    int m_index;
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *const view = qobject_cast<WidgetListView *>(object);
    return view ? new WidgetListAccessible(view) : nullptr;
}

} // namespace

void WidgetListAccessible::install()
{
    QAccessible::installFactory(makeInterface); // a second time changes nothing
}

WidgetListAccessible::WidgetListAccessible(WidgetListView *view)
    : QAccessibleWidget(view, QAccessible::List)
{
}

WidgetListAccessible::~WidgetListAccessible()
{
    for (const QAccessible::Id item : m_items)
        QAccessible::deleteAccessibleInterface(item);
}

const WidgetListView &WidgetListAccessible::view() const
{
    return static_cast<const WidgetListView &>(*widget());
}

int WidgetListAccessible::childCount() const
{
    return view().shownRows();
}

QAccessibleInterface *WidgetListAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    while (int(m_items.size()) <= index) {
        auto *const view = static_cast<WidgetListView *>(widget());
        m_items.push_back(QAccessible::registerAccessibleInterface(new Item(view, int(m_items.size()))));
    }
    return QAccessible::accessibleInterface(m_items[static_cast<std::size_t>(index)]);
}

int WidgetListAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const auto found = std::ranges::find_if(
        m_items, [&](QAccessible::Id item) { return QAccessible::accessibleInterface(item) == child; });
    return found == m_items.end() ? -1 : int(found - m_items.begin());
}

QAccessibleInterface *WidgetListAccessible::childAt(int x, int y) const
{
    for (int index = 0; index < childCount(); ++index) {
        if (child(index)->rect().contains(x, y))
            return child(index);
    }
    return nullptr;
}

} // namespace tickwise
