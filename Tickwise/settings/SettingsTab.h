#pragma once

#include "support/RawValue.h"

namespace tickwise {

/// The tabs of the settings window; stored and sent by raw value.
enum class SettingsTab
{
    general,
    watchlist,
    about
};

QString rawValue(SettingsTab tab);

template<>
std::vector<SettingsTab> allCases<SettingsTab>();

} // namespace tickwise
