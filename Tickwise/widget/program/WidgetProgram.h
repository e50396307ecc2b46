#pragma once

#include "app/AppInfo.h"
#include "platform/dbus/SessionBus.h"
#include "platform/session/ApplicationOpener.h"
#include "platform/session/SingleInstance.h"
#include "platform/session/TerminationSignals.h"
#include "platform/session/WidgetCenter.h"
#include "platform/session/WindowPalette.h"
#include "platform/storage/UserDefaults.h"
#include "widget/program/FileWatcher.h"
#include "widget/program/WidgetController.h"
#include "widget/program/WidgetLogos.h"

namespace tickwise {

/// Prepares the process before its QApplication: log lines, display, identity. False, with a line on stderr, where
/// there is no display.
bool prepareWidgetProcess();

/// The composition root of `tickwise-widget`. It knows the application by its snapshot file and its bus name alone.
/// Needs a QApplication.
class WidgetProgram
{
public:
    WidgetProgram();

    /// Shows the widget until somebody closes it; at once when another copy runs. Returns the process's exit code.
    int run();

private:
    WidgetEnvironment makeEnvironment();
    void reload();
    void connectServices();

    std::optional<QString> m_container;
    TerminationSignals m_signals;
    SessionBus m_bus;
    WindowPalette m_windowPalette{m_bus};
    SingleInstance m_singleInstance;
    UserDefaults m_storage;
    WidgetLogos m_logos;
    WidgetModel m_model;
    std::optional<FileWatcher> m_file; ///< none without a container
    WidgetReloads m_reloads;
    ApplicationOpener m_opener;
    WidgetController m_controller;
};

} // namespace tickwise
