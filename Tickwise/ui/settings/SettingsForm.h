#pragma once

#include "settings/SettingsViewModel.h"
#include "support/Localization.h"
#include "ui/controls/WheelGuard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSignalBlocker>
#include <QWidget>

#include <functional>
#include <vector>

class QFormLayout;
class QLabel;

namespace tickwise {

/// A page of controls that are bound to fields of the settings: each edit is published at once, each change of the
/// settings from elsewhere shows at once, and texts follow the language.
class SettingsForm : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsForm(SettingsViewModel &settings, QWidget *parent = nullptr);

protected:
    /// A choice of a picker: its stored value and how its text is made.
    template<class Value>
    struct Choice
    {
        Value value;
        std::function<QString()> text;
    };

    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

    SettingsViewModel &settingsViewModel() { return m_settings; }
    /// Publishes a copy of the settings after `edit` changed it.
    void edit(const std::function<void(AppSettings &)> &edit);

    QFormLayout *addSection(const QString &titleKey);
    QCheckBox *addToggle(QFormLayout *section, const QString &key, bool AppSettings::*field);
    QLabel *addHint(QFormLayout *section, const QString &key);
    /// Adds the control with its label in front, which is the control's name for screen readers.
    QLabel *addRow(QFormLayout *section, const QString &key, QWidget *control);

    /// A picker `width` logical pixels wide.
    template<class Value>
    QComboBox *addPicker(QFormLayout *section, const QString &key, int width, Value AppSettings::*field,
                         std::vector<Choice<Value>> choices);

    /// Calls `show` now, whenever the settings change and when the language does.
    void follow(std::function<void(const AppSettings &)> show);
    /// Calls `write` now and when the language changes.
    void translate(std::function<void()> write);
    /// Calls every `show`.
    void showSettings();

private:
    void alignLabels();

    SettingsViewModel &m_settings;
    std::vector<QLabel *> m_labels; ///< in front of controls
    std::vector<std::function<void(const AppSettings &)>> m_shows;
    std::vector<std::function<void()>> m_texts;
    QPropertyNotifier m_notifier;
};

template<class Value>
QComboBox *SettingsForm::addPicker(QFormLayout *section, const QString &key, int width, Value AppSettings::*field,
                                   std::vector<Choice<Value>> choices)
{
    auto *const picker = new QComboBox(this);
    picker->setObjectName(key);
    picker->setFixedWidth(width);
    WheelGuard::guard(*picker);
    for (size_t i = 0; i < choices.size(); ++i)
        picker->addItem(QString());
    translate([picker, choices] {
        for (size_t i = 0; i < choices.size(); ++i)
            picker->setItemText(int(i), choices[i].text());
    });
    follow([picker, choices, field](const AppSettings &settings) {
        const QSignalBlocker blocker(picker);
        for (size_t i = 0; i < choices.size(); ++i) {
            if (choices[i].value == settings.*field)
                picker->setCurrentIndex(int(i));
        }
    });
    connect(picker, &QComboBox::activated, this, [this, choices, field](int index) {
        edit([&](AppSettings &settings) { settings.*field = choices.at(size_t(index)).value; });
    });
    addRow(section, key, picker);
    return picker;
}

} // namespace tickwise
