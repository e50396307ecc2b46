#pragma once

#include "ui/updates/UpdateState.h"

#include <QObject>

namespace tickwise {

/// Shows an update session to its user and tells what the user answers.
class UpdateUserDriver : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Shows the state, in a window that opens if there is none.
    virtual void show(const UpdateState &state) = 0;
    /// Brings what is shown to the front.
    virtual void bringToFront() = 0;
    /// The session is over.
    virtual void dismiss() = 0;

Q_SIGNALS:
    void chosen(tickwise::UpdateAction action);
};

} // namespace tickwise
