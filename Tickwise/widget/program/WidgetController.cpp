#include "widget/program/WidgetController.h"

#include "overlay/DesktopOverlayPlacement.h"
#include "widget/program/WidgetMenu.h"

#include <QMouseEvent>

#include <algorithm>

namespace tickwise {

namespace {

/// How long a menu inside the window stays after the pointer has left: a click elsewhere is not the window's to see.
constexpr std::chrono::milliseconds menuStays{1500};

} // namespace

WidgetController::WidgetController(WidgetEnvironment environment)
    : m_environment(std::move(environment))
    , m_preferences(loadWidgetPreferences(m_environment.storage))
    , m_window(
          m_environment.logos,
          [this](const QMouseEvent &event) { return m_environment.surface->pointerPosition(event); },
          m_environment.clock)
{
    m_pointerIsAway.setSingleShot(true);
    m_pointerIsAway.setInterval(menuStays);
    connect(&m_window, &WidgetWindow::opened, this, [this] { m_environment.openApplication(); });
    connect(&m_window, &WidgetWindow::dragged, this, &WidgetController::drag);
    connect(&m_window, &WidgetWindow::dropped, this, &WidgetController::rememberPlace);
    connect(&m_window, &WidgetWindow::dragCancelled, this, [this] { m_dragStart.reset(); });
    connect(&m_window, &WidgetWindow::menuRequested, this, &WidgetController::openMenu);
    m_window.installEventFilter(this);
    m_environment.surface->onScreensChanged = [this] { adapt(); };
    m_environment.surface->onTranslucencyChanged = [this] { adapt(); };
    const auto followModel = [this] { follow(m_environment.model.content()); };
    m_contentNotifier = m_environment.model.bindableContent().addNotifier(followModel);
    followModel();
}

WidgetController::~WidgetController()
{
    m_window.removeEventFilter(this);
    m_environment.surface->onScreensChanged = nullptr;
    m_environment.surface->onTranslucencyChanged = nullptr;
    m_environment.surface->hide();
}

void WidgetController::follow(const WidgetEntryContent &content)
{
    m_window.list().setContent(content);
}

QRect WidgetController::frame() const
{
    return desktopOverlayFrame(WidgetWindow::scaledSize(m_preferences.size), m_preferences.topLeft,
                               m_environment.surface->screens());
}

void WidgetController::show()
{
    m_window.setTranslucent(m_environment.surface->isTranslucent());
    m_environment.surface->show(m_window, frame());
}

/// Keeps the window on the screens that there are, at its size. A drag is left alone.
void WidgetController::adapt()
{
    m_window.setTranslucent(m_environment.surface->isTranslucent());
    if (!m_dragStart)
        m_environment.surface->place(frame());
}

void WidgetController::drag(QPoint way)
{
    const QRect current = m_environment.surface->frame();
    if (!m_dragStart)
        m_dragStart = current.topLeft();
    m_environment.surface->place(QRect(*m_dragStart + way, current.size()));
}

void WidgetController::rememberPlace()
{
    m_dragStart.reset();
    const DesktopScreens screens = m_environment.surface->screens();
    m_preferences.topLeft = desktopOverlayOrigin(m_environment.surface->frame().topLeft(), screens);
    m_preferences.topLeft = desktopOverlayOrigin(frame().topLeft(), screens); // moved back onto a screen
    saveWidgetPreferences(m_environment.storage, m_preferences);
    adapt();
}

void WidgetController::setSize(WidgetSize size)
{
    m_preferences.size = size;
    saveWidgetPreferences(m_environment.storage, m_preferences);
    adapt();
}

void WidgetController::openMenu(QPoint position)
{
    delete m_menu;
    m_menu = new QMenu(&m_window);
    fillWidgetMenu(*m_menu, m_preferences.size, widgetTexts(m_environment.model.content().language),
                   {.openApplication = m_environment.openApplication,
                    .setSize = [this](WidgetSize size) { setSize(size); },
                    .close = m_environment.close});
    connect(m_menu, &QMenu::aboutToHide, m_menu, &QObject::deleteLater);
    if (m_environment.hasChildWindows)
        m_menu->popup(m_window.mapToGlobal(position));
    else
        showInside(*m_menu, position);
}

void WidgetController::showInside(QMenu &menu, QPoint position)
{
    menu.setWindowFlags(Qt::Widget);
    menu.setAutoFillBackground(true);
    menu.adjustSize();
    const QSize room = m_window.size() - menu.sizeHint();
    menu.move(std::clamp(position.x(), 0, std::max(room.width(), 0)),
              std::clamp(position.y(), 0, std::max(room.height(), 0)));
    connect(&m_pointerIsAway, &QTimer::timeout, &menu, &QWidget::hide);
    connect(&menu, &QMenu::triggered, &menu, &QWidget::hide);
    menu.show();
}

/// Closes a menu inside the window by a click beside it, and when the pointer has gone.
bool WidgetController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != &m_window || !m_menu || m_environment.hasChildWindows)
        return QObject::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonPress) {
        m_menu->hide();
        return true;
    }
    if (event->type() == QEvent::Leave)
        m_pointerIsAway.start();
    else if (event->type() == QEvent::Enter)
        m_pointerIsAway.stop();
    return QObject::eventFilter(watched, event);
}

} // namespace tickwise
