#include "demo/MarketWorld.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <cmath>

namespace tickwise {

namespace {

struct KnownPrice
{
    const char *symbol;
    double usd;
};

constexpr std::array knownPrices{
    KnownPrice{"BTC", 67432.1},    KnownPrice{"ETH", 3521.44},   KnownPrice{"BNB", 588.2},
    KnownPrice{"XRP", 0.5312},     KnownPrice{"SOL", 171.36},    KnownPrice{"TRX", 0.1187},
    KnownPrice{"HYPE", 24.61},     KnownPrice{"DOGE", 0.16042},  KnownPrice{"ZEC", 41.73},
    KnownPrice{"LINK", 17.284},    KnownPrice{"LEO", 5.861},     KnownPrice{"ADA", 0.4571},
    KnownPrice{"XLM", 0.10883},    KnownPrice{"BCH", 471.5},     KnownPrice{"LTC", 83.62},
    KnownPrice{"GRAM", 6.37},      KnownPrice{"SHIB", 2.484e-5}, KnownPrice{"HBAR", 0.10234},
    KnownPrice{"SUI", 1.0472},     KnownPrice{"AVAX", 36.71},    KnownPrice{"CRO", 0.11925},
    KnownPrice{"UNI", 9.413},      KnownPrice{"NEAR", 7.126},    KnownPrice{"OKB", 49.88},
    KnownPrice{"TAO", 402.3},      KnownPrice{"PAXG", 2342.7},   KnownPrice{"XAUT", 2339.1},
    KnownPrice{"AAVE", 98.24},     KnownPrice{"PEPE", 1.438e-5}, KnownPrice{"DOT", 7.082},
    KnownPrice{"WLD", 4.791},      KnownPrice{"ICP", 12.31},     KnownPrice{"ETC", 29.46},
    KnownPrice{"ALGO", 0.1874},    KnownPrice{"ATOM", 8.527},    KnownPrice{"FIL", 5.94},
    KnownPrice{"ARB", 1.1326},     KnownPrice{"APT", 9.137},     KnownPrice{"INJ", 26.38},
    KnownPrice{"VET", 0.03521},    KnownPrice{"BONK", 3.117e-5}, KnownPrice{"BTT", 1.194e-6},
    KnownPrice{"FLOKI", 2.206e-4}, KnownPrice{"LUNC", 1.083e-4},
};

constexpr std::array pegged{"USDC",  "USDS", "DAI",   "USDE", "USD1", "USDG",  "PYUSD", "USDY",
                            "RLUSD", "USDD", "BFUSD", "U",    "TUSD", "FDUSD", "USDTB"};

constexpr std::array<std::pair<const char *, double>, 31> usualRates{{
    {"USD", 1},        {"AED", 3.6725},   {"ARS", 813.85},    {"AUD", 1.490106}, {"BRL", 4.876135},  {"CAD", 1.336326},
    {"CHF", 0.848628}, {"CNY", 7.162024}, {"CZK", 22.478231}, {"DKK", 6.810931}, {"EUR", 0.912931},  {"GBP", 0.785172},
    {"HKD", 7.811284}, {"HUF", 345.32},   {"IDR", 15510.85},  {"ILS", 3.712456}, {"INR", 83.089181}, {"JPY", 144.139},
    {"KRW", 1316.32},  {"MXN", 16.834},   {"MYR", 4.651},     {"NOK", 10.3478},  {"NZD", 1.600824},  {"PLN", 3.968917},
    {"RUB", 90.46},    {"SEK", 10.2241},  {"SGD", 1.329058},  {"THB", 34.873},   {"TRY", 29.874},    {"TWD", 31.052},
    {"ZAR", 18.648},
}};

// The same symbol has the same price in every run.
double inventedPrice(const QString &symbol)
{
    quint32 hash = 2166136261U;
    for (const QChar letter : symbol)
        hash = (hash ^ letter.unicode()) * 16777619U;
    return std::pow(10.0, static_cast<double>(hash % 5000) / 1000.0 - 3.0);
}

double plausiblePrice(const QString &symbol)
{
    for (const KnownPrice &known : knownPrices) {
        if (symbol == QLatin1String(known.symbol))
            return known.usd;
    }
    const bool isPegged = std::any_of(pegged.begin(), pegged.end(),
                                      [&symbol](const char *name) { return symbol == QLatin1String(name); });
    return isPegged ? 1.0 : inventedPrice(symbol);
}

QStringList listedSymbols()
{
    QFile file(QStringLiteral(":/coins.json"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The coin catalog is not built in");
    QStringList symbols;
    const QJsonArray coins = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("coins")).toArray();
    for (const auto &coin : coins) {
        if (coin[QStringLiteral("listed")].toBool())
            symbols.append(coin[QStringLiteral("symbol")].toString());
    }
    return symbols;
}

} // namespace

MarketWorld::MarketWorld(quint64 seed)
    : m_random(seed)
{
    for (const auto &[code, value] : usualRates)
        m_rates.emplace_back(QString::fromLatin1(code), value);
}

void MarketWorld::setPrice(const QString &symbol, double usd, double change24hPercent)
{
    m_prices[symbol] = {usd, usd / (1 + change24hPercent / 100)};
}

void MarketWorld::setRate(const QString &code, double value)
{
    const auto at =
        std::find_if(m_rates.begin(), m_rates.end(), [&code](const auto &rate) { return rate.first == code; });
    if (at == m_rates.end())
        m_rates.emplace_back(code, value);
    else
        at->second = value;
}

// Nobody trades the dollar token against itself.
void MarketWorld::addCatalogCoins()
{
    std::normal_distribution<double> change(0.4, 2.8);
    for (const QString &symbol : listedSymbols()) {
        if (symbol == QStringLiteral("USDT") || m_prices.contains(symbol))
            continue;
        const double usd = plausiblePrice(symbol);
        setPrice(symbol, usd, usd == 1.0 ? 0.01 : std::clamp(change(m_random), -20.0, 40.0));
    }
}

void MarketWorld::move()
{
    std::normal_distribution<double> percent(0.0, 0.08);
    for (auto &[symbol, price] : m_prices)
        price.usd *= 1 + percent(m_random) / 100 * (std::abs(price.usd - 1.0) < 0.01 ? 0.02 : 1.0);
}

} // namespace tickwise
