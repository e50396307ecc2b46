#pragma once

#include <QByteArrayList>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <functional>

namespace tickwise {

/// The default routes in the kernel's tables (the texts of /proc/net/route and /proc/net/ipv6_route), as
/// "interface gateway", sorted: those that are up and lead anywhere but to the machine itself.
QByteArrayList defaultRoutes(const QByteArray &ipv4Table, const QByteArray &ipv6Table);

/// The default routes that the machine has now.
QByteArrayList currentDefaultRoutes();

/// Whether the machine seems to have a network: a default route.
bool machineHasNetwork();

/// A socket on which the kernel tells of changed routes, or -1. The caller closes it.
int openRouteSocket();

/// A network that comes brings several routes, and its name servers a moment later.
constexpr std::chrono::milliseconds routesSettle{1000};

/// Tells when the network comes back or the machine moves to another one. Costs nothing while no route changes.
class NetworkWatch : public QObject
{
    Q_OBJECT

public:
    /// Whatever `socket` says means that routes have changed; the watch closes it. With -1 the watch stays quiet. It
    /// looks at the routes `settling` after a word.
    explicit NetworkWatch(int socket = openRouteSocket(), std::function<QByteArrayList()> routes = currentDefaultRoutes,
                          std::chrono::milliseconds settling = routesSettle);
    ~NetworkWatch() override;

Q_SIGNALS:
    /// There are default routes, other ones than before. A hint only: the world behind them may not answer yet.
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
