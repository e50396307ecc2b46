#pragma once

#include "settings/SettingsDataStorage.h"
#include "settings/SettingsViewModel.h"
#include "ui/controls/CompositionWatch.h"
#include "widget/views/AccessibleWindow.h"

class QTabWidget;

namespace tickwise {

/// The window that edits the settings, with a tab each for the general settings, the watchlist and what the
/// application is. It follows and sets `SettingsViewModel::settingsWindowTab`, and keeps its frame under the key
/// "SettingsWindow".
class SettingsWindow : public AccessibleWindow
{
    Q_OBJECT

public:
    /// The contents of the tabs; the window owns them.
    struct Pages
    {
        QWidget *general;
        QWidget *watchlist;
        QWidget *about;
    };

    SettingsWindow(SettingsViewModel &settings, SettingsDataStorage &storage, const Pages &pages);

Q_SIGNALS:
    void closed();

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void setSizeLimits(QSize minimum, QSize maximum);
    void showTab();
    void writeTexts();
    void restoreFrame();
    void saveFrame();

    SettingsViewModel &m_settings;
    SettingsDataStorage &m_storage;
    QTabWidget *m_tabs;
    CompositionWatch m_composition;
    QPropertyNotifier m_tabNotifier;
};

} // namespace tickwise
