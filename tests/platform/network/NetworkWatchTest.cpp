#include "platform/network/NetworkWatch.h"

#include "doubles/TestProgram.h"

#include <QSignalSpy>

#include <array>

#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace tickwise;

namespace {

constexpr std::chrono::milliseconds settling{20};
constexpr const char *ipv4Header =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
constexpr const char *ipv4Default = "wlan0\t00000000\t0101A8C0\t0003\t0\t0\t600\t00000000\t0\t0\t0\n";
constexpr const char *ipv6Default = "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                                    "fe800000000000000000000000000001 00000400 00000001 00000000 00450003    wlan0\n";

/// A socket in the kernel's place and the routes that it tells of.
class FakeKernel
{
public:
    FakeKernel()
    {
        if (socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, m_sockets.data()) != 0)
            qFatal("no sockets");
    }
    ~FakeKernel() { close(m_sockets[1]); }
    Q_DISABLE_COPY_MOVE(FakeKernel)

    int socket() const { return m_sockets[0]; }
    std::function<QByteArrayList()> reader()
    {
        return [this] { return m_routes; };
    }

    void change(const QByteArrayList &routes)
    {
        m_routes = routes;
        if (write(m_sockets[1], "route", 5) != 5)
            qFatal("cannot tell");
    }
    void setRoutes(const QByteArrayList &routes) { m_routes = routes; }

private:
    std::array<int, 2> m_sockets{-1, -1};
    QByteArrayList m_routes;
};

} // namespace

class NetworkWatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultRoutes_data();
    void defaultRoutes();
    void tellsOfReturns_data();
    void tellsOfReturns();
    void tellsOnceForAFlurry();
    void quietWithoutASocket();
    void opensTheKernelsSocket();
};

void NetworkWatchTest::defaultRoutes_data()
{
    QTest::addColumn<QByteArray>("ipv4");
    QTest::addColumn<QByteArray>("ipv6");
    QTest::addColumn<QByteArrayList>("routes");
    const QByteArray wifi4 = "wlan0 0101A8C0";
    const QByteArray wifi6 = "wlan0 fe800000000000000000000000000001";
    QTest::newRow("nothing") << QByteArray() << QByteArray() << QByteArrayList();
    QTest::newRow("header only") << QByteArray(ipv4Header) << QByteArray() << QByteArrayList();
    QTest::newRow("IPv4") << QByteArray(ipv4Header) + ipv4Default << QByteArray() << QByteArrayList{wifi4};
    QTest::newRow("IPv6") << QByteArray(ipv4Header) << QByteArray(ipv6Default) << QByteArrayList{wifi6};
    QTest::newRow("both") << QByteArray(ipv4Header) + ipv4Default << QByteArray(ipv6Default)
                          << QByteArrayList{wifi4, wifi6};
    QTest::newRow("own net only") << QByteArray(ipv4Header) +
                                         "eth0\t000AA8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
                                  << QByteArray() << QByteArrayList();
    QTest::newRow("half of everything") << QByteArray(ipv4Header) +
                                               "tun0\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\t0\t0\n"
                                        << QByteArray() << QByteArrayList();
    QTest::newRow("down") << QByteArray(ipv4Header) + "eth0\t00000000\t0101A8C0\t0002\t0\t0\t0\t00000000\t0\t0\t0\n"
                          << QByteArray() << QByteArrayList();
    QTest::newRow("rejected") << QByteArray(ipv4Header) + "eth0\t00000000\t0101A8C0\t0201\t0\t0\t0\t00000000\t0\t0\t0\n"
                              << QByteArray() << QByteArrayList();
    QTest::newRow("tunnel without a gateway")
        << QByteArray(ipv4Header) + "tun0\t00000000\t00000000\t0001\t0\t0\t50\t00000000\t0\t0\t0\n"
        << QByteArray() << QByteArrayList{"tun0 00000000"};
    QTest::newRow("the kernel's own refusal")
        << QByteArray()
        << QByteArray("00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
                      "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200       lo\n")
        << QByteArrayList();
    QTest::newRow("cut line") << QByteArray("wlan0\t00000000\t0101A8C0") << QByteArray("0000 00") << QByteArrayList();
}

void NetworkWatchTest::defaultRoutes()
{
    QFETCH(QByteArray, ipv4);
    QFETCH(QByteArray, ipv6);
    QTEST(tickwise::defaultRoutes(ipv4, ipv6), "routes");
}

void NetworkWatchTest::tellsOfReturns_data()
{
    QTest::addColumn<QByteArrayList>("before");
    QTest::addColumn<QList<QByteArrayList>>("then");
    QTest::addColumn<int>("returns");
    const QByteArrayList none;
    const QByteArrayList home{"wlan0 0101A8C0"};
    const QByteArrayList office{"wlan0 0100000A"};
    QTest::newRow("comes") << none << QList<QByteArrayList>{home} << 1;
    QTest::newRow("goes") << home << QList<QByteArrayList>{none} << 0;
    QTest::newRow("goes and comes") << home << QList<QByteArrayList>{none, home} << 1;
    QTest::newRow("another one") << home << QList<QByteArrayList>{office} << 1;
    QTest::newRow("the same") << home << QList<QByteArrayList>{home} << 0;
    QTest::newRow("never any") << none << QList<QByteArrayList>{none} << 0;
}

void NetworkWatchTest::tellsOfReturns()
{
    QFETCH(QByteArrayList, before);
    QFETCH(QList<QByteArrayList>, then);
    FakeKernel kernel;
    kernel.setRoutes(before);
    int asked = 0;
    NetworkWatch watch(
        kernel.socket(), [&asked, read = kernel.reader()] { return ++asked, read(); }, settling);
    QSignalSpy returned(&watch, &NetworkWatch::networkReturned);
    for (const QByteArrayList &routes : then) {
        const int already = asked;
        kernel.change(routes);
        QTRY_COMPARE(asked, already + 1);
    }
    QTEST(static_cast<int>(returned.size()), "returns");
}

void NetworkWatchTest::tellsOnceForAFlurry()
{
    FakeKernel kernel;
    NetworkWatch watch(kernel.socket(), kernel.reader(), settling);
    QSignalSpy returned(&watch, &NetworkWatch::networkReturned);
    for (int metric = 0; metric < 20; ++metric)
        kernel.change({"wlan0 " + QByteArray::number(metric)});
    QVERIFY(returned.wait());
    QVERIFY(!returned.wait(static_cast<int>(settling.count()) * 10));
}

void NetworkWatchTest::quietWithoutASocket()
{
    FakeKernel kernel;
    NetworkWatch watch(-1, kernel.reader(), settling);
    QSignalSpy returned(&watch, &NetworkWatch::networkReturned);
    kernel.setRoutes({"wlan0 0101A8C0"});
    QVERIFY(!returned.wait(static_cast<int>(settling.count()) * 10));
    close(kernel.socket());
}

void NetworkWatchTest::opensTheKernelsSocket()
{
    const int socket = openRouteSocket();
    QVERIFY(socket >= 0);
    sockaddr_nl address{};
    socklen_t length = sizeof address;
    QCOMPARE(getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length), 0);
    QCOMPARE(address.nl_groups, uint(RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE));
    close(socket);
}

TICKWISE_TEST(NetworkWatchTest)
#include "NetworkWatchTest.moc"
