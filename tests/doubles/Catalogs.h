#pragma once

#include "catalog/CoinCatalog.h"

namespace tickwise::test {

/// An active, listed record.
inline CoinMetadata coinRecord(const QString &id, const QString &symbol)
{
    CoinMetadata coin;
    coin.id = id;
    coin.symbol = symbol;
    coin.name = symbol;
    coin.listed = true;
    return coin;
}

/// A catalog without a fault: bitcoin, ethereum and numbered coins up to `listed` records.
inline std::vector<CoinMetadata> validCoins(int listed = 200)
{
    std::vector<CoinMetadata> coins{coinRecord(QStringLiteral("bitcoin"), QStringLiteral("BTC")),
                                    coinRecord(QStringLiteral("ethereum"), QStringLiteral("ETH"))};
    for (int i = static_cast<int>(coins.size()); i < listed; ++i)
        coins.push_back(coinRecord(QStringLiteral("coin-%1").arg(i), QStringLiteral("C%1").arg(i)));
    return coins;
}

/// 5000 coins, the first of which is called so.
inline std::vector<CoinMetadata> manyCoins(const QString &symbol, const QString &name)
{
    std::vector<CoinMetadata> coins = validCoins(5000);
    coins.front().symbol = symbol;
    coins.front().name = name;
    return coins;
}

inline bool noImages(const QString &)
{
    return false;
}

/// A catalog that holds just these coins.
class FixedCatalog : public CoinCatalog
{
public:
    explicit FixedCatalog(std::vector<CoinMetadata> coins)
        : CoinCatalog(QStringLiteral(":/coins.json"), noImages)
    {
        publish(std::move(coins), noImages);
    }
};

} // namespace tickwise::test
