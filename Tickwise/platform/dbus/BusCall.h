#pragma once

#include "platform/dbus/DBusFailure.h"
#include "support/Subscription.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <chrono>

namespace tickwise {

/// QtDBus's own limit for an answer.
inline constexpr std::chrono::milliseconds usualCallTimeout{25000};

/// The answers to `RequestName` and its flag, as D-Bus defines them.
namespace busName {
inline constexpr uint doNotQueue = 4;
inline constexpr uint primaryOwner = 1;
inline constexpr uint alreadyOwner = 4;
} // namespace busName

/// A call of the message bus itself, `org.freedesktop.DBus`.
QDBusMessage busCall(const QString &method, const QVariantList &arguments);

/// The desktop portal's bus name.
QString portalService();

/// The portal's object.
QString portalPath();

/// A call of the portal's object.
QDBusMessage portalCall(const QString &interface, const QString &method, const QVariantList &arguments);

/// The question for one property of an object.
QDBusMessage propertyQuestion(const QString &service, const QString &path, const QString &interface,
                              const QString &property);

/// Calls `finished` later with the call's end, unless `context` has gone by then; at once from the event loop where the
/// connection is not open, on which QtDBus would never end a call.
void whenFinished(const QDBusConnection &bus, const QDBusMessage &call, QObject *context,
                  std::chrono::milliseconds timeout, std::function<void(const QDBusPendingCall &)> finished);

/// Sends a call and hands its one answer, or why there is none, to `done`: later, once, and never after `context` has
/// gone. Nothing waits for the bus.
template<class T>
void sendCall(const QDBusConnection &bus, const QDBusMessage &call, QObject *context, Completion<T> done,
              std::chrono::milliseconds timeout = usualCallTimeout)
{
    whenFinished(bus, call, context, timeout, [done = std::move(done)](const QDBusPendingCall &finished) {
        if constexpr (std::is_void_v<T>) {
            finished.isError() ? done(failure(errorFromDBus(finished.error()))) : done({});
        } else {
            const QDBusPendingReply<T> reply = finished;
            reply.isError() ? done(failure(errorFromDBus(reply.error()))) : done(reply.value());
        }
    });
}

} // namespace tickwise
