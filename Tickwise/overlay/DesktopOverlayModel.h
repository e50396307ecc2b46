#pragma once

#include "settings/AppSettings.h"
#include "widget/WidgetEntryContent.h"

#include <QObject>
#include <QProperty>

#include <functional>

namespace tickwise {

/// What the desktop overlay shows. Main thread only.
class DesktopOverlayModel : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    const WidgetEntryContent &content() const { return m_content.value(); }
    void setContent(const WidgetEntryContent &content) { m_content = content; }
    bool isAdjusting() const { return m_isAdjusting; }
    void setAdjusting(bool adjusting) { m_isAdjusting = adjusting; }
    double backgroundOpacity() const { return m_backgroundOpacity; }
    void setBackgroundOpacity(double opacity) { m_backgroundOpacity = opacity; }
    DesktopOverlayTextSize textSize() const { return m_textSize; }
    void setTextSize(DesktopOverlayTextSize size) { m_textSize = size; }

    /// What the button that ends adjusting calls.
    std::function<void()> onDoneAdjusting;

Q_SIGNALS:
    /// Any of the values is another.
    void changed();

private:
    Q_OBJECT_BINDABLE_PROPERTY(DesktopOverlayModel, WidgetEntryContent, m_content, &DesktopOverlayModel::changed)
    Q_OBJECT_BINDABLE_PROPERTY(DesktopOverlayModel, bool, m_isAdjusting, &DesktopOverlayModel::changed)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(DesktopOverlayModel, double, m_backgroundOpacity, 1.0,
                                         &DesktopOverlayModel::changed)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(DesktopOverlayModel, DesktopOverlayTextSize, m_textSize,
                                         DesktopOverlayTextSize::normal, &DesktopOverlayModel::changed)
};

} // namespace tickwise
