// The exchanges of the whole-process measurements, over TLS and in a process of their own. Runs until its input closes.
//
// Usage: market_server [OKX-LIST.json [gzip]]
//
// Without a list all are well. With one, Binance has rate-limited us and OKX sends the list, in two versions by turns
// so that every poll brings new prices; compressed, as exchanges do for whoever accepts it, or as it is.
#include "demo/LoopbackMarket.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSocketNotifier>

#include <cstdio>

#include <unistd.h>

using namespace tickwise;

namespace {

/// The list with the first digit of every price turned: the same length, other prices.
QByteArray moved(const QByteArray &list)
{
    static const QRegularExpression price(QStringLiteral(R"("last":"0*\.?0*([1-9]))"));
    QByteArray other = list;
    auto at = price.globalMatch(QString::fromLatin1(list));
    while (at.hasNext()) {
        char &digit = other[at.next().capturedStart(1)];
        digit = digit == '9' ? '8' : static_cast<char>(digit + 1);
    }
    return other;
}

Fault byTurns(const std::array<QByteArray, 2> &bodies)
{
    return [bodies, turn = 0U](LoopbackAnswer &answer) mutable { answer.body = bodies.at(turn++ % bodies.size()); };
}

Fault fullList(const QByteArray &list, bool compressed)
{
    if (!compressed)
        return byTurns({list, moved(list)});
    return faults::together(
        {byTurns({gzipped(list), gzipped(moved(list))}), faults::headers({{"Content-Encoding", "gzip"}})});
}

/// False when the list cannot be read.
bool servePollsByOkx(LoopbackMarket &market, const QStringList &arguments)
{
    QFile list(arguments.value(1));
    if (!list.open(QIODevice::ReadOnly))
        return false;
    const Fault rateLimited = faults::status(429, {}, {{"Retry-After", "86400"}});
    market.script(MarketEndpoint::binanceMain, rateLimited, LoopbackMarket::Repeat::always);
    market.script(MarketEndpoint::binanceData, rateLimited, LoopbackMarket::Repeat::always);
    const bool compressed = arguments.value(2) == QStringLiteral("gzip");
    market.script(MarketEndpoint::okx, fullList(list.readAll(), compressed), LoopbackMarket::Repeat::always);
    return true;
}

QJsonObject toJson(const Endpoints &endpoints)
{
    return {{QStringLiteral("binanceMain"), endpoints.binanceMain},
            {QStringLiteral("binanceData"), endpoints.binanceData},
            {QStringLiteral("okx"), endpoints.okx},
            {QStringLiteral("bybit"), endpoints.bybit},
            {QStringLiteral("exchangeRateApi"), endpoints.exchangeRateApi},
            {QStringLiteral("currencyApiPrimary"), endpoints.currencyApiPrimary},
            {QStringLiteral("currencyApiFallback"), endpoints.currencyApiFallback}};
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    LoopbackMarket market(LoopbackMarket::Options{.transport = LoopbackMarket::Transport::tls});
    market.addCatalogCoins();
    if (argc > 1 && !servePollsByOkx(market, QCoreApplication::arguments())) {
        std::fprintf(stderr, "usage: market_server [OKX-LIST.json [gzip]]\n");
        return 2;
    }

    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    std::printf("%s\n", QJsonDocument(toJson(market.endpoints())).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
    return QCoreApplication::exec();
}
