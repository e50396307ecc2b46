#pragma once

#include "market/HttpClient.h"
#include "ui/updates/UpdateState.h"
#include "ui/updates/appcast/AppcastItem.h"

#include <vector>

namespace tickwise {

/// The items of a feed, or why there are none.
using UpdateFeedResult = tl::expected<std::vector<AppcastItem>, UpdateFailure>;

/// Fetches and reads an update feed. `done` gets one result, later; dropping the handle cancels.
[[nodiscard]] Subscription fetchUpdateFeed(HttpClient &http, const QUrl &feed,
                                           std::function<void(UpdateFeedResult)> done);

} // namespace tickwise
