#include "catalog/Coin.h"

#include <QHash>

namespace tickwise {

template<>
std::vector<CoinStatus> allCases<CoinStatus>()
{
    return {CoinStatus::active, CoinStatus::delisted, CoinStatus::migrated};
}

QString rawValue(CoinStatus status)
{
    switch (status) {
    case CoinStatus::active:
        return QStringLiteral("active");
    case CoinStatus::delisted:
        return QStringLiteral("delisted");
    case CoinStatus::migrated:
        return QStringLiteral("migrated");
    }
    return {};
}

namespace {

template<class T>
std::size_t hashOf(const std::optional<T> &value, std::size_t seed)
{
    return value ? ::qHash(*value, seed + 1) : seed;
}

} // namespace

std::size_t qHash(const CoinMetadata &coin, std::size_t seed)
{
    seed = qHashMulti(seed, coin.id, coin.symbol, coin.name, int(coin.status), coin.listed);
    seed = hashOf(coin.rank, seed);
    seed = hashOf(coin.logoURL, seed);
    seed = hashOf(coin.migratedTo, seed);
    return hashOf(coin.logoAssetName, seed);
}

CoinIndex indexById(const std::vector<CoinMetadata> &coins)
{
    CoinIndex index;
    index.reserve(static_cast<qsizetype>(coins.size()));
    for (auto coin = coins.rbegin(); coin != coins.rend(); ++coin)
        index.insert(coin->id, &*coin);
    return index;
}

std::size_t qHash(const Coin &coin, std::size_t seed)
{
    seed = qHash(static_cast<const CoinMetadata &>(coin), seed);
    seed = hashOf(coin.currentPrice, seed);
    seed = hashOf(coin.priceChange24hPercent, seed);
    seed = hashOf(coin.referencePrice, seed);
    return coin.lastUpdated ? ::qHash(qint64(coin.lastUpdated->time_since_epoch().count()), seed + 1) : seed;
}

} // namespace tickwise
