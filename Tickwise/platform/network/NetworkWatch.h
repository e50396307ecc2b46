#pragma once

#include <QByteArrayList>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <functional>

namespace tickwise {

/// The default routes in the kernel's tables (the contents of /proc/net/route and /proc/net/ipv6_route), as
/// "interface gateway", sorted. Routes that are down, that reject packets or that use the loopback interface are left
/// out.
QByteArrayList defaultRoutes(const QByteArray &ipv4Table, const QByteArray &ipv6Table);

/// The default routes that the machine has now.
QByteArrayList currentDefaultRoutes();

/// Whether the machine has a default route.
bool machineHasNetwork();

/// A socket on which the kernel reports changed routes, or -1. The caller closes it.
int openRouteSocket();

/// How long routes may change before they are compared: a new network adds several, and its name servers last.
constexpr std::chrono::milliseconds settlingTime{1000};

/// Notices when the network comes back or the machine moves to another one. Does nothing while no route changes.
class NetworkWatch : public QObject
{
    Q_OBJECT

public:
    /// Any message on `socket` means that routes changed; the watch closes the socket. With -1 it never signals. The
    /// routes are compared `settling` after a message.
    explicit NetworkWatch(int socket = openRouteSocket(), std::function<QByteArrayList()> routes = currentDefaultRoutes,
                          std::chrono::milliseconds settling = settlingTime);
    ~NetworkWatch() override;

Q_SIGNALS:
    /// There are default routes, and other ones than before. Whether servers can be reached over them is not known.
    void networkReturned();

private:
    void drain();
    void compare();

    int m_socket;
    std::function<QByteArrayList()> m_currentRoutes;
    QByteArrayList m_routes;
    QSocketNotifier m_notifier;
    QTimer m_settling;
};

} // namespace tickwise
