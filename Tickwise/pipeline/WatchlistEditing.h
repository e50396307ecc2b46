#pragma once

#include "settings/AppSettings.h"

namespace tickwise {

// Edits of the watchlist: each takes the settings and returns the changed ones, to be published by the caller.

/// Whether the coin is in the watchlist.
bool isInWatchlist(const AppSettings &settings, const QString &id);

/// With the coin at the end of the watchlist and an alert at a change of 2 %; unchanged when it is there already.
AppSettings withCoinAdded(AppSettings settings, const QString &id);

/// Without the coin. When it was the one in the panel, the first remaining coin is, or Bitcoin when none remains.
AppSettings withCoinRemoved(AppSettings settings, const QString &id);

/// With the entries in the order of the ids, each with its alert; entries that the ids do not name follow in their
/// order.
AppSettings withWatchlistOrder(AppSettings settings, const QStringList &ids);

/// Without the coin when it is in the watchlist, else with it.
AppSettings withCoinToggled(AppSettings settings, const QString &id);

} // namespace tickwise
