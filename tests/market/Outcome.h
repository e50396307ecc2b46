#pragma once

#include "support/Subscription.h"

#include <QCoreApplication>

#include <vector>

namespace tickwise::test {

/// Collects what completions get, in order.
template<class T>
struct Outcome
{
    std::vector<Result<T>> results;

    Completion<T> completion()
    {
        return [this](Result<T> result) { results.push_back(std::move(result)); };
    }
    bool isOver() const { return !results.empty(); }
    const T &value() const { return results.at(0).value(); }
    const UrlLoadingError &error() const { return std::get<UrlLoadingError>(results.at(0).error()); }
};

/// The URL-loading code of a failure; none for a value or another kind of failure.
template<class T>
std::optional<UrlErrorCode> codeOf(const Result<T> &result)
{
    const auto *const error = result ? nullptr : std::get_if<UrlLoadingError>(&result.error());
    return error ? std::optional(error->code) : std::nullopt;
}

/// What an exchange said; none for a value or another kind of failure.
template<class T>
std::optional<TickerProviderError> refusalOf(const Result<T> &result)
{
    const auto *const error = result ? nullptr : std::get_if<TickerProviderError>(&result.error());
    return error ? std::optional(*error) : std::nullopt;
}

template<class T>
bool isDecodingError(const Result<T> &result)
{
    return !result && std::holds_alternative<DecodingError>(result.error());
}

/// The URL-loading error of a failure that is one.
template<class T>
const UrlLoadingError &loadingError(const Result<T> &result)
{
    return std::get<UrlLoadingError>(result.error());
}

/// Everything that waits in the event loop, and what it brings, without waiting for timers.
inline void letEverythingHappen()
{
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents();
}

} // namespace tickwise::test
