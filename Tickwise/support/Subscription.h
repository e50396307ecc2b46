#pragma once

#include "support/Result.h"

#include <QObject>

#include <functional>
#include <memory>

namespace tickwise {

/// Receives the one result of an asynchronous operation: later, on the main thread, never inside the call that started
/// it.
template<class T>
using Completion = std::function<void(Result<T>)>;

/// An asynchronous operation under way. Its destructor cancels it: nothing is delivered, nothing changes afterwards.
class Operation
{
public:
    Operation() = default;
    virtual ~Operation() = default;
    Operation(const Operation &) = delete;
    Operation &operator=(const Operation &) = delete;
};

/// The handle of an operation. Dropping it cancels; it may be dropped inside the completion too.
class [[nodiscard]] Subscription
{
public:
    Subscription() = default;
    explicit Subscription(std::unique_ptr<Operation> operation)
        : m_operation(std::move(operation))
    {
    }

    void cancel() { m_operation.reset(); }

private:
    std::unique_ptr<Operation> m_operation;
};

/// Delivers a result that is already known, from the event loop.
template<class T>
class Delivery : public Operation
{
public:
    Delivery(Result<T> result, Completion<T> done)
    {
        QMetaObject::invokeMethod(
            &m_context, [result = std::move(result), done = std::move(done)] { done(result); }, Qt::QueuedConnection);
    }

private:
    QObject m_context;
};

template<class T>
Subscription deliverLater(Result<T> result, Completion<T> done)
{
    return Subscription(std::make_unique<Delivery<T>>(std::move(result), std::move(done)));
}

} // namespace tickwise
