#pragma once

#include "ui/settings/SettingsForm.h"

namespace tickwise {

class UpdateController;

/// What the about tab tells of this build; an empty address is left out.
struct AboutInformation
{
    QString name;
    QString version;
    QString contact;     ///< mail address
    QString projectLink; ///< address of a page
};

/// The about tab of the settings window: version, sources of the data, updates, links.
class AboutView : public SettingsForm
{
    Q_OBJECT

public:
    AboutView(SettingsViewModel &settings, UpdateController &updates, const AboutInformation &information,
              QWidget *parent = nullptr);

private:
    void buildVersion(const AboutInformation &information);
    void buildSources();
    void buildUpdates(UpdateController &updates);
    void buildLink(const QString &sectionKey, const QString &textKey, const QString &address);

    std::vector<QPropertyNotifier> m_updateStates;
};

} // namespace tickwise
