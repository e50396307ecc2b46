#include "demo/MarketAnswers.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

namespace tickwise::answers {

namespace {

constexpr double tradedDollars = 1.0e7; // of every coin in a day

qint64 milliseconds(TimePoint time)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

QByteArray fixed(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals);
}

// Up to twelve decimals, without zeros at the end: how OKX and Bybit write.
QByteArray trimmed(double value)
{
    QByteArray text = fixed(value, std::abs(value) < 0.01 ? 12 : 8);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text;
}

/// Writes JSON objects field by field.
class Fields
{
public:
    Fields &text(const char *name, const QByteArray &value) { return raw(name, '"' + value + '"'); }
    Fields &number(const char *name, qint64 value) { return raw(name, QByteArray::number(value)); }
    Fields &raw(const char *name, const QByteArray &value)
    {
        m_text += m_text.isEmpty() ? "{\"" : ",\"";
        m_text += name;
        m_text += "\":" + value;
        return *this;
    }
    QByteArray object() const { return m_text + '}'; }

private:
    QByteArray m_text;
};

QByteArray array(const QList<QByteArray> &elements)
{
    return '[' + elements.join(',') + ']';
}

QByteArray binanceTicker(const QString &pair, const WorldPrice &price, TimePoint now)
{
    const double high = std::max(price.usd, price.usd24hAgo) * 1.01;
    const double low = std::min(price.usd, price.usd24hAgo) * 0.99;
    const auto dollars = [](double value) { return fixed(value, 8); };
    return Fields()
        .text("symbol", pair.toUtf8())
        .text("priceChange", dollars(price.usd - price.usd24hAgo))
        .text("priceChangePercent", fixed(price.change24hPercent(), 3))
        .text("weightedAvgPrice", dollars((price.usd + price.usd24hAgo) / 2))
        .text("prevClosePrice", dollars(price.usd24hAgo))
        .text("lastPrice", dollars(price.usd))
        .text("lastQty", dollars(100 / price.usd))
        .text("bidPrice", dollars(price.usd * 0.9999))
        .text("bidQty", dollars(500 / price.usd))
        .text("askPrice", dollars(price.usd * 1.0001))
        .text("askQty", dollars(500 / price.usd))
        .text("openPrice", dollars(price.usd24hAgo))
        .text("highPrice", dollars(high))
        .text("lowPrice", dollars(low))
        .text("volume", dollars(tradedDollars / price.usd))
        .text("quoteVolume", dollars(tradedDollars))
        .number("openTime", milliseconds(now) - 86400000)
        .number("closeTime", milliseconds(now))
        .number("firstId", 2213328392)
        .number("lastId", 2213428391)
        .number("count", 100000)
        .object();
}

QByteArray okxTicker(const QString &instrument, const WorldPrice &price, TimePoint now)
{
    return Fields()
        .text("instType", "SPOT")
        .text("instId", instrument.toUtf8())
        .text("last", trimmed(price.usd))
        .text("lastSz", trimmed(100 / price.usd))
        .text("askPx", trimmed(price.usd * 1.0001))
        .text("askSz", trimmed(500 / price.usd))
        .text("bidPx", trimmed(price.usd * 0.9999))
        .text("bidSz", trimmed(500 / price.usd))
        .text("open24h", trimmed(price.usd24hAgo))
        .text("high24h", trimmed(std::max(price.usd, price.usd24hAgo) * 1.01))
        .text("low24h", trimmed(std::min(price.usd, price.usd24hAgo) * 0.99))
        .text("volCcy24h", trimmed(tradedDollars))
        .text("vol24h", trimmed(tradedDollars / price.usd))
        .text("ts", QByteArray::number(milliseconds(now)))
        .text("sodUtc0", trimmed(price.usd24hAgo * 1.001))
        .text("sodUtc8", trimmed(price.usd24hAgo * 0.999))
        .object();
}

QByteArray bybitTicker(const QString &pair, const WorldPrice &price)
{
    return Fields()
        .text("symbol", pair.toUtf8())
        .text("bid1Price", trimmed(price.usd * 0.9999))
        .text("bid1Size", trimmed(500 / price.usd))
        .text("ask1Price", trimmed(price.usd * 1.0001))
        .text("ask1Size", trimmed(500 / price.usd))
        .text("lastPrice", trimmed(price.usd))
        .text("prevPrice24h", trimmed(price.usd24hAgo))
        .text("price24hPcnt", fixed(price.change24hPercent() / 100, 4))
        .text("highPrice24h", trimmed(std::max(price.usd, price.usd24hAgo) * 1.01))
        .text("lowPrice24h", trimmed(std::min(price.usd, price.usd24hAgo) * 0.99))
        .text("turnover24h", trimmed(tradedDollars))
        .text("volume24h", trimmed(tradedDollars / price.usd))
        .text("usdIndexPrice", trimmed(price.usd))
        .object();
}

template<class Make>
QByteArray tickers(const MarketWorld &world, const QSet<QString> &hidden, Make make)
{
    QList<QByteArray> elements;
    for (const auto &[symbol, price] : world.prices()) {
        if (!hidden.contains(symbol))
            elements.append(make(symbol, price));
    }
    return array(elements);
}

QByteArray rateObject(const MarketWorld &world, bool upperCase)
{
    Fields fields;
    for (const auto &[code, value] : world.rates()) {
        const QString name = upperCase ? code.toUpper() : code.toLower();
        fields.raw(name.toUtf8().constData(), QByteArray::number(value, 'g', 15));
    }
    return world.rates().empty() ? QByteArray("{}") : fields.object();
}

QDateTime utc(TimePoint time)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds(time), Qt::UTC);
}

QByteArray mailDate(const QDateTime &time)
{
    return QLocale::c().toString(time, QStringLiteral("ddd, dd MMM yyyy HH:mm:ss")).toUtf8() + " +0000";
}

} // namespace

std::optional<QByteArray> binanceTickers(const MarketWorld &world, const QStringList &pairs,
                                         const QSet<QString> &hidden, TimePoint now)
{
    QList<QByteArray> elements;
    for (const QString &pair : pairs) {
        const QString symbol = pair.chopped(std::min<qsizetype>(4, pair.size()));
        const auto at = world.prices().find(symbol);
        if (!pair.endsWith(QStringLiteral("USDT")) || at == world.prices().end() || hidden.contains(symbol))
            return std::nullopt;
        elements.append(binanceTicker(pair, at->second, now));
    }
    return array(elements);
}

QByteArray binanceAllTickers(const MarketWorld &world, const QSet<QString> &hidden, TimePoint now)
{
    return tickers(world, hidden, [now](const QString &symbol, const WorldPrice &price) {
        return binanceTicker(symbol + QStringLiteral("USDT"), price, now);
    });
}

QByteArray okxTickers(const MarketWorld &world, const QSet<QString> &hidden, TimePoint now)
{
    const QByteArray data = tickers(world, hidden, [now](const QString &symbol, const WorldPrice &price) {
        return okxTicker(symbol + QStringLiteral("-USDT"), price, now);
    });
    return Fields().text("code", "0").text("msg", "").raw("data", data).object();
}

QByteArray bybitTickers(const MarketWorld &world, const QSet<QString> &hidden, TimePoint now)
{
    const QByteArray list = tickers(world, hidden, [](const QString &symbol, const WorldPrice &price) {
        return bybitTicker(symbol + QStringLiteral("USDT"), price);
    });
    return Fields()
        .number("retCode", 0)
        .text("retMsg", "OK")
        .raw("result", Fields().text("category", "spot").raw("list", list).object())
        .raw("retExtInfo", "{}")
        .number("time", milliseconds(now))
        .object();
}

QByteArray exchangeRateApiTable(const MarketWorld &world, TimePoint now)
{
    const QDateTime last(utc(now).date(), QTime(0, 2, 31), Qt::UTC);
    const QDateTime next = last.addDays(1);
    return Fields()
        .text("result", "success")
        .text("provider", "https://www.exchangerate-api.com")
        .text("documentation", "https://www.exchangerate-api.com/docs/free")
        .text("terms_of_use", "https://www.exchangerate-api.com/terms")
        .number("time_last_update_unix", last.toSecsSinceEpoch())
        .text("time_last_update_utc", mailDate(last))
        .number("time_next_update_unix", next.toSecsSinceEpoch())
        .text("time_next_update_utc", mailDate(next))
        .number("time_eol_unix", 0)
        .text("base_code", "USD")
        .raw("rates", rateObject(world, true))
        .object();
}

QByteArray currencyApiTable(const MarketWorld &world, TimePoint now)
{
    return Fields()
        .text("date", utc(now).date().toString(Qt::ISODate).toUtf8())
        .raw("usd", rateObject(world, false))
        .object();
}

} // namespace tickwise::answers
