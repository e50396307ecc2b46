#pragma once

#include <QAccessibleWidget>

#include <vector>

namespace tickwise {

class WidgetListView;

/// The list as assistive technologies see it: a list with one item a coin that it shows.
class WidgetListAccessible : public QAccessibleWidget
{
public:
    /// Makes the toolkit find it for every list.
    static void install();

    /// Tells assistive technologies, which keep names, which items came, went or have another name.
    static void tellChanges(WidgetListView &view);

    explicit WidgetListAccessible(WidgetListView *view);
    ~WidgetListAccessible() override;

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;

private:
    WidgetListView &view() const;
    std::vector<QString> names() const;
    void follow();

    std::vector<QString> m_names;                 ///< as they were told
    mutable std::vector<QAccessible::Id> m_items; ///< made when they are asked for
};

} // namespace tickwise
