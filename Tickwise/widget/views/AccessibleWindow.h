#pragma once

#include <QWidget>

namespace tickwise {

/// A top-level window that assistive technologies know as a window: a bare `QWidget` has no role.
class AccessibleWindow : public QWidget
{
    Q_OBJECT

public:
    explicit AccessibleWindow(QWidget *parent = nullptr, Qt::WindowFlags flags = {});
};

} // namespace tickwise
