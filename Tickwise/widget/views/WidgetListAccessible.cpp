#include "widget/views/WidgetListAccessible.h"

#include "widget/views/WidgetListView.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace tickwise {

namespace {

/// The line of one coin: of the list's row of that index.
class Item : public QAccessibleInterface
{
public:
    Item(WidgetListView *view, int index)
        : m_view(view)
        , m_index(index)
    {
    }

    bool isValid() const override { return m_view; }
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
        if (kind != QAccessible::Name || !isShown())
            return {};
        return m_view->text().rows[static_cast<std::size_t>(m_index)].accessibleText;
    }

    QRect rect() const override
    {
        return isShown() ? m_view->rowRect(m_index).toRect().translated(m_view->mapToGlobal(QPoint())) : QRect();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.readOnly = true;
        state.invisible = !isShown() || !m_view->isVisible();
        return state;
    }

private:
    bool isShown() const { return m_view && m_index < m_view->shownRows(); }

    QPointer<WidgetListView> m_view;
    int m_index;
};

void tell(QAccessibleInterface *item, QAccessible::Event change)
{
    QAccessibleEvent event(item, change);
    QAccessible::updateAccessibility(&event);
}

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
    , m_names(names())
{
}

WidgetListAccessible::~WidgetListAccessible()
{
    for (const QAccessible::Id item : m_items)
        QAccessible::deleteAccessibleInterface(item);
}

WidgetListView &WidgetListAccessible::view() const
{
    return static_cast<WidgetListView &>(*widget());
}

std::vector<QString> WidgetListAccessible::names() const
{
    const std::vector<WidgetRowText> &rows = view().text().rows;
    std::vector<QString> names(static_cast<std::size_t>(view().shownRows()));
    std::transform(rows.begin(), rows.begin() + std::ptrdiff_t(names.size()), names.begin(),
                   [](const WidgetRowText &row) { return row.accessibleText; });
    return names;
}

void WidgetListAccessible::tellChanges(WidgetListView &view)
{
    if (QAccessible::isActive())
        static_cast<WidgetListAccessible *>(QAccessible::queryAccessibleInterface(&view))->follow();
}

void WidgetListAccessible::follow()
{
    const std::vector<QString> before = std::exchange(m_names, names());
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        if (i >= before.size())
            tell(child(int(i)), QAccessible::ObjectCreated);
        else if (before[i] != m_names[i])
            tell(child(int(i)), QAccessible::NameChanged);
    }
    for (; m_items.size() > m_names.size(); m_items.pop_back()) {
        tell(QAccessible::accessibleInterface(m_items.back()), QAccessible::ObjectDestroyed);
        QAccessible::deleteAccessibleInterface(m_items.back());
    }
}

int WidgetListAccessible::childCount() const
{
    return view().shownRows();
}

QAccessibleInterface *WidgetListAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    while (int(m_items.size()) <= index)
        m_items.push_back(QAccessible::registerAccessibleInterface(new Item(&view(), int(m_items.size()))));
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
