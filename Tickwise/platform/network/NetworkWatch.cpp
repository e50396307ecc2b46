#include "platform/network/NetworkWatch.h"

#include <QFile>

#include <array>

#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tickwise {

namespace {

constexpr qint64 maximumTableBytes = 1024LL * 1024;

// linux/route.h, linux/ipv6_route.h
constexpr uint routeIsUp = 0x0001;
constexpr uint routeIsRejected = 0x0200;

bool isUsable(const QByteArray &flags, const QByteArray &interface)
{
    const uint bits = flags.toUInt(nullptr, 16);
    return (bits & routeIsUp) != 0 && (bits & routeIsRejected) == 0 && interface != "lo";
}

bool isZero(const QByteArray &hex)
{
    return !hex.isEmpty() && hex.count('0') == hex.size();
}

// Interface Destination Gateway Flags RefCnt Use Metric Mask ...
void appendIpv4(QByteArrayList &routes, const QByteArrayList &fields)
{
    if (fields.size() >= 8 && isZero(fields[1]) && isZero(fields[7]) && isUsable(fields[3], fields[0]))
        routes.append(fields[0] + ' ' + fields[2]);
}

// Destination Length Source Length Gateway Metric RefCnt Use Flags Interface
void appendIpv6(QByteArrayList &routes, const QByteArrayList &fields)
{
    if (fields.size() >= 10 && isZero(fields[0]) && isZero(fields[1]) && isUsable(fields[8], fields[9]))
        routes.append(fields[9] + ' ' + fields[4]);
}

QByteArray readTable(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(maximumTableBytes) : QByteArray();
}

} // namespace

QByteArrayList defaultRoutes(const QByteArray &ipv4Table, const QByteArray &ipv6Table)
{
    QByteArrayList routes;
    for (const QByteArray &line : ipv4Table.split('\n'))
        appendIpv4(routes, line.simplified().split(' '));
    for (const QByteArray &line : ipv6Table.split('\n'))
        appendIpv6(routes, line.simplified().split(' '));
    std::sort(routes.begin(), routes.end());
    return routes;
}

QByteArrayList currentDefaultRoutes()
{
    return defaultRoutes(readTable(QStringLiteral("/proc/net/route")),
                         readTable(QStringLiteral("/proc/net/ipv6_route")));
}

bool machineHasNetwork()
{
    return !currentDefaultRoutes().isEmpty();
}

int openRouteSocket()
{
    const int opened = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    if (opened < 0)
        return -1;
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
    if (bind(opened, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return opened;
    close(opened);
    return -1;
}

NetworkWatch::NetworkWatch(int socket, std::function<QByteArrayList()> routes, std::chrono::milliseconds settling)
    : m_socket(socket)
    , m_currentRoutes(std::move(routes))
    , m_routes(m_currentRoutes())
    , m_notifier(QSocketNotifier::Read)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(settling);
    connect(&m_settling, &QTimer::timeout, this, &NetworkWatch::compare);
    if (m_socket < 0)
        return;
    connect(&m_notifier, &QSocketNotifier::activated, this, &NetworkWatch::drain);
    m_notifier.setSocket(m_socket);
    m_notifier.setEnabled(true);
}

NetworkWatch::~NetworkWatch()
{
    m_notifier.setEnabled(false);
    if (m_socket >= 0)
        close(m_socket);
}

// Only that messages came matters: they may be cut, and lost ones (ENOBUFS) count too.
void NetworkWatch::drain()
{
    std::array<char, 8192> message; // NOLINT: filled by recv
    ssize_t received = 0;
    do
        received = recv(m_socket, message.data(), message.size(), MSG_DONTWAIT);
    while (received > 0 || (received < 0 && (errno == EINTR || errno == ENOBUFS)));
    if (received == 0)
        m_notifier.setEnabled(false);
    if (!m_settling.isActive()) // not restarted, as routes may change all the time
        m_settling.start();
}

void NetworkWatch::compare()
{
    const QByteArrayList routes = m_currentRoutes();
    const bool returned = !routes.isEmpty() && routes != m_routes;
    m_routes = routes;
    if (returned)
        Q_EMIT networkReturned();
}

} // namespace tickwise
