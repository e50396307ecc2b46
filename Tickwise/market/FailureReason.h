#pragma once

#include "support/Error.h"

#include <vector>

namespace tickwise {

/// What an error means to the user. For an operation over several providers this is the reason of its `summary`.
FailureReason failureReason(const Error &error);

/// The one failure to tell of several. The reasons that the user can do something about come first: a wrong clock,
/// being offline, a blocked region; then rate limits, with the earliest end; then the rest, by how sure they are.
/// Skipped providers count like asked ones. No causes: `unreachable`.
ProviderFailure summary(const std::vector<ProviderFailure> &causes);

} // namespace tickwise
