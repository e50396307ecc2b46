#pragma once

#include "catalog/Coin.h"
#include "settings/AppSettings.h"
#include "support/Result.h"

#include <QObject>
#include <QProperty>

#include <functional>
#include <optional>
#include <vector>

namespace tickwise {

/// The decoded form of coins.json.
struct CoinCatalogDocument
{
    std::int64_t schemaVersion = 0;
    std::vector<CoinMetadata> coins;
    bool operator==(const CoinCatalogDocument &) const = default;
};

/// Strict decoding: a missing required key or a wrongly typed value anywhere fails the whole document.
Result<CoinCatalogDocument> decodeCatalog(const QByteArray &bytes);

/// The problems of a catalog, in the order of the rules; empty when it is usable.
QStringList validateCatalog(std::int64_t schemaVersion, const std::vector<CoinMetadata> &coins);

/// Tells whether the application ships an image of that name.
using ImageExists = std::function<bool(const QString &name)>;

/// The shipped, validated list of coins: complete, or empty after any fault. Main thread only.
class CoinCatalog : public QObject
{
    Q_OBJECT
    Q_PROPERTY(std::vector<tickwise::CoinMetadata> coins READ coins NOTIFY coinsChanged BINDABLE bindableCoins)

public:
    /// Loads the file. A fault is one log line at fault level and leaves the catalog empty.
    explicit CoinCatalog(const QString &path, const ImageExists &imageExists, QObject *parent = nullptr);

    const std::vector<CoinMetadata> &coins() const { return m_coins.value(); }
    QBindable<std::vector<CoinMetadata>> bindableCoins() { return &m_coins; }
    const CoinIndex &byID() const { return m_byID; }

    /// The settings with migrated coins replaced by their successors; none when nothing changes.
    std::optional<AppSettings> reconcile(const AppSettings &settings) const;

    /// Replaces the list, filling in `logoAssetName`.
    void publish(std::vector<CoinMetadata> coins, const ImageExists &imageExists);

    /// Moves the texts of the records to the small free blocks that the rest of the start has left on the heap, so that
    /// the memory in which they were decoded can return to the kernel. Tells nobody: no value changes.
    void repack();

Q_SIGNALS:
    void coinsChanged();

private:
    CoinIndex m_byID;
    Q_OBJECT_BINDABLE_PROPERTY(CoinCatalog, std::vector<CoinMetadata>, m_coins, &CoinCatalog::coinsChanged)
};

} // namespace tickwise
