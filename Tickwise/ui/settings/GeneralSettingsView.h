#pragma once

#include "catalog/CoinCatalog.h"
#include "pipeline/StatusItem.h"
#include "ui/settings/SettingsForm.h"

namespace tickwise {

/// What this desktop can do, as far as the general tab tells its user.
struct DesktopAbilities
{
    bool hasOverlay = true;
    StatusItemAvailability statusItem = StatusItemAvailability::unknown;
};

/// The general tab of the settings window: everything but the watchlist.
class GeneralSettingsView : public SettingsForm
{
    Q_OBJECT

public:
    GeneralSettingsView(SettingsViewModel &settings, const CoinCatalog &catalog, QWidget *parent = nullptr);

    void setAbilities(const DesktopAbilities &abilities);

Q_SIGNALS:
    /// The user wants to move the overlay.
    void adjustOverlayRequested();

private:
    void showAbilities();
    void enableAdjusting();
    void buildLaunch();
    void buildPanel();
    void buildDisplayedCoin(QFormLayout *section);
    void buildColorRow(QFormLayout *section, const QString &key, QString AppSettings::*field);
    void buildDesktop();
    void buildOpacity(QFormLayout *section);
    void buildPrices();
    void buildNotifications();
    void buildLanguage();

    const CoinCatalog &m_catalog;
    DesktopAbilities m_abilities;
    QLabel *m_statusItemHint = nullptr;
    QWidget *m_adjust = nullptr;
    QLabel *m_overlayUnavailable = nullptr;
};

} // namespace tickwise
