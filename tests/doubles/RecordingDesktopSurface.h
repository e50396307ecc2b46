#pragma once

#include "widget/views/DesktopSurface.h"

#include <QMouseEvent>
#include <QStringList>
#include <QWidget>

namespace tickwise::test {

/// A surface that shows the window as it is, and remembers what was asked of it in an order that outlives it.
class RecordingDesktopSurface : public DesktopSurface
{
public:
    explicit RecordingDesktopSurface(QStringList &calls)
        : m_calls(calls)
    {
    }

    void show(QWidget &window, const QRect &frame) override
    {
        m_window = &window;
        note(QStringLiteral("show"), frame);
        window.setGeometry(frame);
        window.show();
    }
    void hide() override
    {
        m_calls.append(QStringLiteral("hide"));
        if (m_window)
            m_window->hide();
        m_window = nullptr;
    }
    bool isShown() const override { return m_window; }
    void place(const QRect &frame) override
    {
        note(QStringLiteral("place"), frame);
        m_window->setGeometry(frame);
    }
    QRect frame() const override { return m_frame; }
    QPoint pointerPosition(const QMouseEvent &event) const override { return event.globalPosition().toPoint(); }
    void setInteractive(bool interactive) override
    {
        m_calls.append(interactive ? QStringLiteral("interactive") : QStringLiteral("passive"));
    }
    DesktopScreens screens() const override { return now; }
    bool isTranslucent() const override { return translucent; }

    DesktopScreens now{{QRect(0, 30, 1280, 770)}, {0, 800}};
    bool translucent = true;

private:
    void note(const QString &call, const QRect &frame)
    {
        m_frame = frame;
        m_calls.append(QStringLiteral("%1 %2,%3 %4x%5")
                           .arg(call)
                           .arg(frame.x())
                           .arg(frame.y())
                           .arg(frame.width())
                           .arg(frame.height()));
    }

    QStringList &m_calls;
    QWidget *m_window = nullptr;
    QRect m_frame;
};

} // namespace tickwise::test
