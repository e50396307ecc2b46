#include "ui/settings/SettingsWindow.h"

#include "support/Localization.h"
#include "support/LogCategories.h"
#include "ui/controls/AppLogo.h"
#include "ui/settings/SettingsWindowFrame.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QTabWidget>
#include <QVBoxLayout>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcSettings, "com.pelmo.tickwise.Settings", QtInfoMsg)

constexpr int windowIconSide = 48;
constexpr int topMargin = 6;

QString frameKey()
{
    return QStringLiteral("SettingsWindow");
}

std::vector<QRect> availableScreens()
{
    std::vector<QRect> screens;
    for (const QScreen *const screen : QGuiApplication::screens())
        screens.push_back(screen->availableGeometry());
    return screens;
}

/// A page may be higher than the window. Only its controls take the focus; the keys that they leave scroll the page.
QWidget *scrolling(QWidget *page)
{
    if (qobject_cast<QAbstractScrollArea *>(page))
        return page;
    auto *const area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(page);
    return area;
}

/// KWin does not tile. On Wayland it takes the close button from a window whose size may change later than its title
/// bar is drawn.
bool mayBeTiled()
{
    return !qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QStringLiteral("KDE"));
}

} // namespace

SettingsWindow::SettingsWindow(SettingsViewModel &settings, SettingsDataStorage &storage, const Pages &pages)
    : AccessibleWindow(nullptr, Qt::Window)
    , m_settings(settings)
    , m_storage(storage)
    , m_tabs(new QTabWidget(this))
    , m_composition(*this)
{
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, topMargin, 0, 0);
    column->addWidget(m_tabs);
    m_tabs->setDocumentMode(true);
    for (QWidget *const page : {pages.general, pages.watchlist, pages.about})
        m_tabs->addTab(scrolling(page), QString());
    setWindowIcon(appLogo(windowIconSide, qGuiApp->devicePixelRatio()));
    writeTexts();
    setSizeLimits(settingsWindowMinimum, settingsWindowMaximum);
    restoreFrame();
    connect(m_tabs, &QTabWidget::currentChanged, this,
            [this](int index) { m_settings.setSettingsWindowTab(allCases<SettingsTab>().at(size_t(index))); });
    showTab();
    m_tabNotifier = settings.bindableSettingsWindowTab().addNotifier([this] { showTab(); });
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
}

void SettingsWindow::showTab()
{
    m_tabs->setCurrentIndex(static_cast<int>(m_settings.settingsWindowTab()));
}

void SettingsWindow::writeTexts()
{
    setWindowTitle(localized(QStringLiteral("window.settings.title")));
    int index = 0;
    for (const SettingsTab tab : allCases<SettingsTab>())
        m_tabs->setTabText(index++, localized(QStringLiteral("settings.tab.") + rawValue(tab)));
}

void SettingsWindow::setSizeLimits(QSize minimum, QSize maximum)
{
    setMinimumSize(minimum);
    setMaximumSize(maximum);
}

/// A window manager that tiles would stretch the window over its limits. It lets a window float that has one size when
/// it appears.
void SettingsWindow::showEvent(QShowEvent *event)
{
    if (!isActiveWindow() && mayBeTiled())
        setSizeLimits(size(), size());
    AccessibleWindow::showEvent(event);
}

void SettingsWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        writeTexts();
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        setSizeLimits(settingsWindowMinimum, settingsWindowMaximum);
    AccessibleWindow::changeEvent(event);
}

void SettingsWindow::closeEvent(QCloseEvent *event)
{
    AccessibleWindow::closeEvent(event);
    if (event->isAccepted())
        Q_EMIT closed();
}

void SettingsWindow::hideEvent(QHideEvent *event)
{
    saveFrame();
    AccessibleWindow::hideEvent(event);
}

/// A key that is still held closed what was in front of the window.
void SettingsWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel) && !event->isAutoRepeat() && !m_composition.isComposing())
        close();
    else
        AccessibleWindow::keyPressEvent(event);
}

void SettingsWindow::restoreFrame()
{
    const std::optional<QByteArray> stored = m_storage.data(frameKey());
    const QRect frame =
        restoredSettingsWindowFrame(stored ? decodeWindowFrame(*stored) : std::nullopt, availableScreens());
    resize(frame.size());
    move(frame.topLeft());
}

void SettingsWindow::saveFrame()
{
    const Result<void> saved = m_storage.setData(frameKey(), encodeWindowFrame(QRect(pos(), size())));
    if (!saved)
        qCWarning(lcSettings, "Window frame not saved: %s", qUtf8Printable(description(saved.error())));
}

} // namespace tickwise
