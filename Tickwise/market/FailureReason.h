#pragma once

#include "support/Error.h"

#include <vector>

namespace tickwise {

/// What an error means to the user. For an operation over several providers this is the reason of its `summary`.
FailureReason failureReason(const Error &error);

/// The most useful one of several failures. Reasons that the user can act on come first (a wrong clock, no network, a
/// blocked region), then the rate limit that ends first, then the other reasons, the most certain first. Skipped
/// providers count like asked ones. Without causes: `unreachable`.
ProviderFailure summary(const std::vector<ProviderFailure> &causes);

} // namespace tickwise
