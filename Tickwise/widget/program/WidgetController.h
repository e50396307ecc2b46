#pragma once

#include "widget/program/WidgetModel.h"
#include "widget/program/WidgetPreferences.h"
#include "widget/program/WidgetWindow.h"
#include "widget/views/DesktopSurface.h"

#include <QMenu>
#include <QPointer>
#include <QTimer>

namespace tickwise {

/// What the widget's window needs of the rest of the program.
struct WidgetEnvironment
{
    WidgetModel &model;
    SettingsDataStorage &storage; ///< for the widget's own preferences
    std::unique_ptr<DesktopSurface> surface;
    WidgetListView::LogoSource logos;
    std::function<void()> openApplication;
    std::function<void()> close;
    bool hasChildWindows = true; ///< false: a menu has to be drawn inside the window
    Clock clock = systemClock;
};

/// Shows the widget at its size and place, and remembers both.
class WidgetController : public QObject
{
    Q_OBJECT

public:
    explicit WidgetController(WidgetEnvironment environment);
    ~WidgetController() override;

    void show();
    WidgetWindow &window() { return m_window; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QRect frame() const;
    void adapt();
    void follow(const WidgetEntryContent &content);
    void drag(QPoint way);
    void rememberPlace();
    void setSize(WidgetSize size);
    void openMenu(QPoint position);
    void showInside(QMenu &menu, QPoint position);

    WidgetEnvironment m_environment;
    WidgetPreferences m_preferences;
    WidgetWindow m_window;
    QPointer<QMenu> m_menu;
    QTimer m_pointerIsAway;
    std::optional<QPoint> m_dragStart; ///< the window's corner when a drag began
    QPropertyNotifier m_contentNotifier;
};

} // namespace tickwise
