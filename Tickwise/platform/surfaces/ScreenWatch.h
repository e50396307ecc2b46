#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

class QScreen;

namespace tickwise {

/// Calls back after screens came, went, moved or changed their size, free part or text scale; once for changes that
/// come together.
class ScreenWatch : public QObject
{
public:
    explicit ScreenWatch(std::function<void()> changed);

    /// Calls back as for a change of a screen.
    void touch() { m_pending.start(); }

private:
    void follow(QScreen *screen);

    QTimer m_pending;
};

} // namespace tickwise
