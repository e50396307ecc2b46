#pragma once

#include "support/Error.h"

#include <tl/expected.hpp>

namespace tickwise {

/// A value, or the typed reason why there is none.
template<class T>
using Result = tl::expected<T, Error>;

/// The failure branch of a `Result`.
inline tl::unexpected<Error> failure(Error error)
{
    return tl::unexpected<Error>(std::move(error));
}

} // namespace tickwise
