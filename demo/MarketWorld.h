#pragma once

#include <QString>

#include <map>
#include <random>
#include <utility>
#include <vector>

namespace tickwise {

/// A coin's market in US dollars.
struct WorldPrice
{
    double usd = 0;
    double usd24hAgo = 0;

    double change24hPercent() const { return usd24hAgo > 0 ? (usd - usd24hAgo) / usd24hAgo * 100 : 0; }
    bool operator==(const WorldPrice &) const = default;
};

/// The prices and rates that the loopback services tell: nothing but the rates of common currencies until it is filled.
class MarketWorld
{
public:
    explicit MarketWorld(quint64 seed = 1);

    void setPrice(const QString &symbol, double usd, double change24hPercent);
    void setRate(const QString &code, double value);
    /// Plausible prices for the listed coins of the shipped catalog; known coins keep the prices they have.
    void addCatalogCoins();
    /// One step of a random walk: every price moves by some hundredths to tenths of a percent.
    void move();

    const std::map<QString, WorldPrice> &prices() const { return m_prices; }
    /// Units for one US dollar, in the order in which services list them.
    const std::vector<std::pair<QString, double>> &rates() const { return m_rates; }

private:
    std::map<QString, WorldPrice> m_prices;
    std::vector<std::pair<QString, double>> m_rates;
    std::mt19937_64 m_random;
};

} // namespace tickwise
