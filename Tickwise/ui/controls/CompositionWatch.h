#pragma once

#include <QPointer>
#include <QWidget>

namespace tickwise {

/// Knows whether an input method composes a text in a control or in one of its children: a key then belongs to the
/// composition.
class CompositionWatch : public QObject
{
    Q_OBJECT

public:
    /// The control outlives the watch.
    explicit CompositionWatch(const QWidget &control);

    bool isComposing() const { return !m_composer.isNull(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isInside(const QObject *watched) const;

    const QWidget &m_control;
    QPointer<QObject> m_composer; ///< what has a text that is not yet committed
};

} // namespace tickwise
