#pragma once
#include "support/Error.h"
namespace tickwise {
FailureReason failureReason(const Error &error);
ProviderFailure summary(const std::vector<ProviderFailure> &causes);
}
