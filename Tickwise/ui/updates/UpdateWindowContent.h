#pragma once

#include "ui/updates/UpdateState.h"

#include <vector>

namespace tickwise {

/// One button of the update window. The first of a window is the one that Return presses.
struct UpdateButton
{
    QString text;
    UpdateAction action = UpdateAction::close;
    bool operator==(const UpdateButton &) const = default;
};

/// Everything that the update window shows, localized.
struct UpdateWindowContent
{
    QString title;
    QString text;
    QString notesLabel;
    QString notes; ///< plain text; empty: no notes are shown
    bool showsProgress = false;
    std::optional<int> percent; ///< none: the progress is unknown
    std::vector<UpdateButton> buttons;
    UpdateAction escapeAction = UpdateAction::close; ///< what Escape and the window's close button mean
    bool operator==(const UpdateWindowContent &) const = default;
};

/// The window of a session's state, in the current language.
UpdateWindowContent updateWindowContent(const UpdateState &state);

} // namespace tickwise
