#pragma once

#include "settings/SettingsViewModel.h"

#include <utility>

namespace tickwise {

/// Calls `apply` with each new value of `map(settings)`; repeats are dropped and so is the current value. The
/// subscription ends with the returned notifier.
template<class Map, class Apply>
[[nodiscard]] QPropertyNotifier followSettings(SettingsViewModel &settings, Map map, Apply apply)
{
    auto first = map(settings.settings());
    return settings.bindableSettings().addNotifier(
        [&settings, map = std::move(map), apply = std::move(apply), last = std::move(first)]() mutable {
            auto current = map(settings.settings());
            if (current == last)
                return;
            last = current;
            apply(current);
        });
}

} // namespace tickwise
