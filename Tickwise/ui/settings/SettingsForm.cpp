#include "ui/settings/SettingsForm.h"

#include "ui/controls/SecondaryLabel.h"

#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

namespace tickwise {

SettingsForm::SettingsForm(SettingsViewModel &settings, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
{
    new QVBoxLayout(this);
    m_notifier = settings.bindableSettings().addNotifier([this] { showSettings(); });
}

void SettingsForm::edit(const std::function<void(AppSettings &)> &edit)
{
    AppSettings settings = m_settings.settings();
    edit(settings);
    m_settings.update(settings);
}

void SettingsForm::follow(std::function<void(const AppSettings &)> show)
{
    show(m_settings.settings());
    m_shows.push_back(std::move(show));
}

void SettingsForm::translate(std::function<void()> write)
{
    write();
    m_texts.push_back(std::move(write));
}

void SettingsForm::showSettings()
{
    for (const auto &show : m_shows)
        show(m_settings.settings());
}

void SettingsForm::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        for (const auto &write : m_texts)
            write();
        showSettings();
        alignLabels();
    }
    QWidget::changeEvent(event);
}

void SettingsForm::showEvent(QShowEvent *event)
{
    alignLabels();
    QWidget::showEvent(event);
}

/// The controls of all sections begin in one column, and a label is as high as its control.
void SettingsForm::alignLabels()
{
    int width = 0;
    for (const QLabel *const label : m_labels)
        width = std::max(width, label->sizeHint().width());
    for (QLabel *const label : m_labels)
        label->setMinimumSize(width, label->buddy()->sizeHint().height());
}

QFormLayout *SettingsForm::addSection(const QString &titleKey)
{
    auto *const group = new QGroupBox(this);
    group->setObjectName(titleKey);
    translate([group, titleKey] { group->setTitle(localized(titleKey)); });
    auto *const form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    layout()->addWidget(group);
    return form;
}

QCheckBox *SettingsForm::addToggle(QFormLayout *section, const QString &key, bool AppSettings::*field)
{
    auto *const toggle = new QCheckBox(this);
    toggle->setObjectName(key);
    translate([toggle, key] { toggle->setText(localized(key)); });
    follow([toggle, field](const AppSettings &settings) {
        const QSignalBlocker blocker(toggle);
        toggle->setChecked(settings.*field);
    });
    connect(toggle, &QCheckBox::toggled, this,
            [this, field](bool on) { edit([&](AppSettings &settings) { settings.*field = on; }); });
    section->addRow(toggle);
    return toggle;
}

QLabel *SettingsForm::addRow(QFormLayout *section, const QString &key, QWidget *control)
{
    auto *const label = new QLabel(this);
    label->setBuddy(control);
    translate([label, control, key] {
        label->setText(localized(key));
        control->setAccessibleName(localized(key));
    });
    section->addRow(label, control);
    m_labels.push_back(label);
    return label;
}

QLabel *SettingsForm::addHint(QFormLayout *section, const QString &key)
{
    auto *const hint = new SecondaryLabel(this);
    hint->setObjectName(key);
    hint->setWordWrap(true);
    translate([hint, key] { hint->setText(localized(key)); });
    section->addRow(hint);
    return hint;
}

} // namespace tickwise
