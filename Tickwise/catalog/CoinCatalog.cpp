#include "catalog/CoinCatalog.h"

#include "support/LogCategories.h"
#include "support/MainThread.h"

#include <QFile>

#include <algorithm>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcCatalog, "com.pelmo.tickwise.CoinCatalog")

constexpr double defaultChangeThreshold = 2.0; // percent

Result<QByteArray> readResource(const QString &path)
{
    if (!QFile::exists(path))
        return failure(CatalogError{QStringLiteral("coins.json missing from bundle")});
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(FileError{path, file.errorString()});
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError)
        return failure(FileError{path, file.errorString()});
    return bytes;
}

Result<std::vector<CoinMetadata>> validated(CoinCatalogDocument document)
{
    const QStringList problems = validateCatalog(document.schemaVersion, document.coins);
    if (!problems.isEmpty())
        return failure(CatalogError{{}, {problems.begin(), problems.end()}});
    return std::move(document.coins);
}

/// Copies the characters to a new place.
void moveText(QString &text)
{
    text = QString(text.constData(), text.size());
}

/// The entry as the successor's: a US-dollar level of the old coin means nothing for it.
WatchlistCoin migratedEntry(const WatchlistCoin &entry, const QString &target)
{
    const bool wasLevel = entry.alertKind == CoinAlertKind::above || entry.alertKind == CoinAlertKind::below;
    return {target, entry.alertKind == CoinAlertKind::notSet ? CoinAlertKind::notSet : CoinAlertKind::change,
            wasLevel ? defaultChangeThreshold : entry.notificationThreshold};
}

} // namespace

CoinCatalog::CoinCatalog(const QString &path, const ImageExists &imageExists, QObject *parent)
    : QObject(parent)
{
    Result<std::vector<CoinMetadata>> loaded = readResource(path).and_then(decodeCatalog).and_then(validated);
    if (!loaded)
        qCCritical(lcCatalog).noquote() << "Bundled coin catalog unusable:" << description(loaded.error());
    publish(std::move(loaded).value_or(std::vector<CoinMetadata>()), imageExists);
}

void CoinCatalog::publish(std::vector<CoinMetadata> coins, const ImageExists &imageExists)
{
    requireMainThread();
    for (CoinMetadata &coin : coins) {
        const QString asset = QStringLiteral("coin-") + coin.id;
        coin.logoAssetName = imageExists(asset) ? std::optional(asset) : std::nullopt;
    }
    if (coins == m_coins.value())
        return;
    m_byID = indexById(coins); // moving the list leaves its records where they are
    m_coins = std::move(coins);
}

void CoinCatalog::repack()
{
    std::vector<CoinMetadata> coins = m_coins.value();
    for (CoinMetadata &coin : coins) {
        for (QString *const text : {&coin.id, &coin.symbol, &coin.name})
            moveText(*text);
        for (std::optional<QString> *const text : {&coin.logoURL, &coin.migratedTo, &coin.logoAssetName}) {
            if (*text)
                moveText(**text);
        }
    }
    m_byID = indexById(coins);
    m_coins.setValueBypassingBindings(std::move(coins));
}

std::optional<AppSettings> CoinCatalog::reconcile(const AppSettings &settings) const
{
    AppSettings reconciled = settings;
    bool changed = false;
    auto &entries = reconciled.watchlistCoins;
    for (std::size_t i = 0; i < entries.size();) {
        const CoinMetadata *const coin = m_byID.value(entries[i].coinId);
        if (!coin || coin->status != CoinStatus::migrated || !coin->migratedTo || !m_byID.contains(*coin->migratedTo)) {
            ++i;
            continue;
        }
        const QString &target = *coin->migratedTo;
        changed = true;
        if (reconciled.displayedCoinId == coin->id)
            reconciled.displayedCoinId = target;
        const auto holdsTarget = [&](const WatchlistCoin &entry) { return entry.coinId == target; };
        if (std::any_of(entries.begin(), entries.end(), holdsTarget)) {
            entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            entries[i] = migratedEntry(entries[i], target);
            ++i;
        }
    }
    return changed ? std::optional(reconciled) : std::nullopt;
}

} // namespace tickwise
