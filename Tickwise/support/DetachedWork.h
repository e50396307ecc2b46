#pragma once

#include <QFuture>
#include <QPromise>

#include <thread>

namespace tickwise {

/// Runs `work` in a new detached thread, which is not joined, not even at exit; the future gets its result. `work` must
/// own everything that it uses.
template<class Work>
auto runDetached(Work work) -> QFuture<decltype(work())>
{
    QPromise<decltype(work())> promise;
    promise.start();
    auto future = promise.future();
    std::thread([work = std::move(work), promise = std::move(promise)]() mutable {
        promise.addResult(work());
        promise.finish();
    }).detach();
    return future;
}

} // namespace tickwise
