#pragma once

#include <QFuture>
#include <QPromise>

#include <thread>

namespace tickwise {

/// Runs `work` in a thread of its own that nobody waits for, not even at exit; its result comes in the future. Whatever
/// the work needs it must own.
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
