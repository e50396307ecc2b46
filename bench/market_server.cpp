// The exchanges of the whole-process measurements, in a process of their own: OKX sends its full list over TLS, in two
// versions by turns so that every poll brings new prices; Binance has rate-limited us. Runs until its input closes.
//
// Usage: market_server OKX-LIST.json
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

Fault byTurns(const QByteArray &list)
{
    return [bodies = std::array{list, moved(list)}, turn = 0U](LoopbackAnswer &answer) mutable {
        answer.body = bodies.at(turn++ % bodies.size());
    };
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
    QFile list(QCoreApplication::arguments().value(1));
    if (!list.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "usage: market_server OKX-LIST.json\n");
        return 2;
    }
    LoopbackMarket market(LoopbackMarket::Options{.transport = LoopbackMarket::Transport::tls});
    const Fault rateLimited = faults::status(429, {}, {{"Retry-After", "86400"}});
    market.script(MarketEndpoint::binanceMain, rateLimited, LoopbackMarket::Repeat::always);
    market.script(MarketEndpoint::binanceData, rateLimited, LoopbackMarket::Repeat::always);
    market.script(MarketEndpoint::okx, byTurns(list.readAll()), LoopbackMarket::Repeat::always);

    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    std::printf("%s\n", QJsonDocument(toJson(market.endpoints())).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
    return QCoreApplication::exec();
}
