#pragma once

#include "support/Clock.h"
#include "support/RawValue.h"

#include <QHash>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace tickwise {

enum class CoinStatus
{
    active,   ///< tradable on the supported exchanges
    delisted, ///< no longer traded
    migrated, ///< replaced by the coin named in `migratedTo`
};

template<>
std::vector<CoinStatus> allCases<CoinStatus>();

/// The stored text of a case.
QString rawValue(CoinStatus status);

/// One record of the coin catalog.
struct CoinMetadata
{
    QString id;     ///< stable, lower case: [a-z0-9][a-z0-9-]{0,79}
    QString symbol; ///< ticker: [A-Z0-9]{1,15}
    QString name;   ///< 1 to 60 characters
    std::optional<std::int64_t> rank;
    std::optional<QString> logoURL;
    CoinStatus status = CoinStatus::active;
    bool listed = false; ///< offered in search and recommendations
    std::optional<QString> migratedTo;
    std::optional<QString> logoAssetName; ///< name of a shipped logo image; never stored
    bool operator==(const CoinMetadata &) const = default;
};

/// The hash over all fields.
std::size_t qHash(const CoinMetadata &coin, std::size_t seed = 0);

/// Records of a list by id. Valid while the list is there and unchanged.
using CoinIndex = QHash<QString, const CoinMetadata *>;

/// The index of a list; of several records with one id the first.
CoinIndex indexById(const std::vector<CoinMetadata> &coins);

/// A catalog coin with its live market fields.
struct Coin : CoinMetadata
{
    std::optional<double> currentPrice;          ///< display currency
    std::optional<double> priceChange24hPercent; ///< percent
    std::optional<double> referencePrice;        ///< display currency; the alert's baseline
    std::optional<TimePoint> lastUpdated;        ///< when the live fields were last set
    bool operator==(const Coin &) const = default;
};

/// The hash over all fields.
std::size_t qHash(const Coin &coin, std::size_t seed = 0);

} // namespace tickwise
