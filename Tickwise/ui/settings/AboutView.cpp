#include "ui/settings/AboutView.h"

#include "ui/controls/AppLogo.h"
#include "ui/controls/LinkButton.h"
#include "ui/updates/UpdateController.h"

#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

namespace tickwise {

namespace {

constexpr int aboutLogoSide = 48;

} // namespace

AboutView::AboutView(SettingsViewModel &settings, UpdateController &updates, const AboutInformation &information,
                     QWidget *parent)
    : SettingsForm(settings, parent)
{
    buildVersion(information);
    buildSources();
    buildUpdates(updates);
    buildLink(QStringLiteral("about.section.opensource"), QStringLiteral("about.opensource.view"),
              information.projectLink);
    buildLink(QStringLiteral("about.section.contact"), QStringLiteral("about.contact.email"),
              information.contact.isEmpty() ? QString() : QStringLiteral("mailto:") + information.contact);
    static_cast<QVBoxLayout *>(layout())->addStretch();
}

void AboutView::buildVersion(const AboutInformation &information)
{
    auto *const row = new QHBoxLayout;
    auto *const logo = new QLabel(this);
    logo->setPixmap(appLogo(aboutLogoSide, qGuiApp->devicePixelRatio()));
    auto *const text = new QLabel(this);
    text->setObjectName(QStringLiteral("about.version"));
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setFocusPolicy(Qt::StrongFocus); // these flags alone give no tab stop
    translate([text, information] {
        const QString version = localized(QStringLiteral("about.version")).arg(information.version);
        text->setText(QStringLiteral("<b>%1</b><br>%2").arg(information.name.toHtmlEscaped(), version.toHtmlEscaped()));
    });
    row->addWidget(logo);
    row->addWidget(text, 1);
    static_cast<QVBoxLayout *>(layout())->addLayout(row);
}

void AboutView::buildSources()
{
    QFormLayout *const section = addSection(QStringLiteral("about.section.dataSources"));
    for (const char *const key :
         {"about.dataSource.price", "about.dataSource.exchangeRate", "about.dataSource.coinInfo"}) {
        auto *const source = new QLabel(this);
        source->setObjectName(QLatin1StringView(key));
        source->setWordWrap(true);
        translate([source, key] { source->setText(localized(QLatin1StringView(key))); });
        section->addRow(source);
    }
}

void AboutView::buildUpdates(UpdateController &updates)
{
    QFormLayout *const section = addSection(QStringLiteral("about.section.updates"));
    auto *const automatic = new QCheckBox(this);
    automatic->setObjectName(QStringLiteral("about.updates.automatic"));
    auto *const check = new QPushButton(this);
    check->setObjectName(QStringLiteral("about.updates.check"));
    check->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    translate([automatic, check] {
        automatic->setText(localized(automatic->objectName()));
        check->setText(localized(check->objectName()));
    });
    section->addRow(automatic);
    section->addRow(check);
    connect(automatic, &QCheckBox::toggled, this,
            [&updates](bool on) { updates.setAutomaticallyChecksForUpdates(on); });
    connect(check, &QPushButton::clicked, this, [&updates] { updates.checkForUpdates(); });
    const auto show = [automatic, check, &updates] {
        const QSignalBlocker blocker(automatic);
        automatic->setEnabled(updates.isAvailable());
        automatic->setChecked(updates.automaticallyChecksForUpdates());
        check->setEnabled(updates.canCheckForUpdates());
    };
    show();
    for (QBindable<bool> state : {updates.bindableIsAvailable(), updates.bindableAutomaticallyChecksForUpdates(),
                                  updates.bindableCanCheckForUpdates()})
        m_updateStates.push_back(state.addNotifier(show));
}

void AboutView::buildLink(const QString &sectionKey, const QString &textKey, const QString &address)
{
    if (address.isEmpty())
        return;
    auto *const link = new LinkButton(QUrl(address), this);
    link->setObjectName(textKey);
    translate([link, textKey] {
        link->setText(localized(textKey));
        link->updateGeometry();
    });
    addSection(sectionKey)->addRow(link);
}

} // namespace tickwise
