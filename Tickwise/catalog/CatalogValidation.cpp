#include "catalog/CoinCatalog.h"
#include "catalog/CoinId.h"
#include "catalog/logos/LogoAddress.h"
#include "support/Graphemes.h"

#include <QSet>

#include <algorithm>

namespace tickwise {

namespace {

constexpr std::int64_t supportedSchema = 1;
constexpr qsizetype fewestListed = 200;
constexpr qsizetype mostListed = 1000;
constexpr qsizetype longestSymbol = 15;
constexpr qsizetype longestName = 60;

bool isUpperAlphanumeric(QChar c)
{
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
}

bool isSymbol(const QString &text)
{
    return !text.isEmpty() && text.size() <= longestSymbol &&
           std::all_of(text.begin(), text.end(), isUpperAlphanumeric);
}

bool isName(const QString &text)
{
    return !text.isEmpty() && characterCount(text) <= longestName;
}

QString migrationProblem(const CoinMetadata &coin, const CoinIndex &byId)
{
    const CoinMetadata *const target = coin.migratedTo ? byId.value(*coin.migratedTo) : nullptr;
    if (!target)
        return QStringLiteral(": migratedTo missing");
    return target->status == CoinStatus::active ? QString() : QStringLiteral(": migration target not active");
}

void checkRecord(const CoinMetadata &coin, const CoinIndex &byId, QStringList &problems)
{
    const auto check = [&](bool holds, const QString &suffix) {
        if (!holds)
            problems.append(coin.id + suffix);
    };
    check(isCoinId(coin.id), QStringLiteral(": id"));
    check(isSymbol(coin.symbol), QStringLiteral(": symbol"));
    check(isName(coin.name), QStringLiteral(": name"));
    check(!coin.rank || *coin.rank >= 1, QStringLiteral(": rank"));
    check(!coin.logoURL || isLogoAddress(*coin.logoURL), QStringLiteral(": logo host"));
    check(!coin.listed || coin.status == CoinStatus::active, QStringLiteral(": listed but not active"));
    if (coin.status == CoinStatus::migrated) {
        const QString problem = migrationProblem(coin, byId);
        check(problem.isEmpty(), problem);
    }
}

void checkUniqueIds(const std::vector<CoinMetadata> &coins, const CoinIndex &byId, QStringList &problems)
{
    const std::size_t duplicates = coins.size() - static_cast<std::size_t>(byId.size());
    problems.append(QStringList(static_cast<qsizetype>(duplicates), QStringLiteral("duplicate id")));
}

void checkListedCount(const std::vector<CoinMetadata> &coins, QStringList &problems)
{
    const auto listed = std::count_if(coins.begin(), coins.end(), [](const CoinMetadata &coin) { return coin.listed; });
    if (listed < fewestListed || listed > mostListed)
        problems.append(QStringLiteral("listed count %1").arg(listed));
}

void checkTradable(const QString &id, const CoinIndex &byId, QStringList &problems)
{
    const CoinMetadata *const coin = byId.value(id);
    if (!coin || !coin->listed || coin->status != CoinStatus::active)
        problems.append(QStringLiteral("missing tradable ") + id);
}

void checkActiveSymbols(const std::vector<CoinMetadata> &coins, QStringList &problems)
{
    QSet<QString> seen;
    for (const CoinMetadata &coin : coins) {
        if (coin.status != CoinStatus::active)
            continue;
        if (seen.contains(coin.symbol)) {
            problems.append(QStringLiteral("duplicate active symbol"));
            return;
        }
        seen.insert(coin.symbol);
    }
}

} // namespace

QStringList validateCatalog(std::int64_t schemaVersion, const std::vector<CoinMetadata> &coins)
{
    if (schemaVersion != supportedSchema)
        return {QStringLiteral("schemaVersion %1").arg(schemaVersion)};
    QStringList problems;
    const CoinIndex byId = indexById(coins);
    checkUniqueIds(coins, byId, problems);
    checkListedCount(coins, problems);
    checkTradable(QStringLiteral("bitcoin"), byId, problems);
    checkTradable(QStringLiteral("ethereum"), byId, problems);
    checkActiveSymbols(coins, problems);
    for (const CoinMetadata &coin : coins)
        checkRecord(coin, byId, problems);
    return problems;
}

} // namespace tickwise
