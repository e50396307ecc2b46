#pragma once

#include "catalog/Coin.h"
#include "pipeline/StatusItem.h"
#include "settings/AppSettings.h"
#include "support/Error.h"

#include <vector>

namespace tickwise {

/// Everything that the status item's content follows from.
struct StatusItemInputs
{
    const std::vector<Coin> &coins;
    const AppSettings &settings;
    PanelAppearance appearance = PanelAppearance::unknown;
    TimePoint now;
    std::optional<ProviderFailure> failure;                   ///< why the last fetch failed
    std::optional<BaseCurrency> priceCurrency = std::nullopt; ///< of the coins' prices; none: the settings' currency
};

/// The coin that the status item shows: the displayed one, else the first; none in icon mode and for an empty list.
const Coin *statusItemCoin(const std::vector<Coin> &coins, const AppSettings &settings);

/// What the status item shows. Texts are in the current language.
StatusItemContent statusItemContent(const StatusItemInputs &inputs);

/// How long ago that was, for a text that is renewed while it is shown; a time in the future counts as now.
QString ageText(TimePoint then, TimePoint now);

/// Why a fetch failed, as a tooltip says it.
QString failureText(const ProviderFailure &failure, TimePoint now);

} // namespace tickwise
