#pragma once

#include "demo/MarketWorld.h"
#include "support/Clock.h"

#include <QByteArray>
#include <QSet>
#include <QStringList>

namespace tickwise {

/// Bodies in the form of the market services, with all the fields that they send, in their order.
namespace answers {

/// Tickers of the pairs asked for, or nothing when one of them is not known. `hidden` are symbols that the exchange
/// lacks.
std::optional<QByteArray> binanceTickers(const MarketWorld &world, const QStringList &pairs,
                                         const QSet<QString> &hidden, TimePoint now);
QByteArray binanceAllTickers(const MarketWorld &world, const QSet<QString> &hidden, TimePoint now);
QByteArray okxTickers(const MarketWorld &world, const QSet<QString> &hidden, TimePoint now);
QByteArray bybitTickers(const MarketWorld &world, const QSet<QString> &hidden, TimePoint now);
QByteArray exchangeRateApiTable(const MarketWorld &world, TimePoint now);
QByteArray currencyApiTable(const MarketWorld &world, TimePoint now);

} // namespace answers

} // namespace tickwise
