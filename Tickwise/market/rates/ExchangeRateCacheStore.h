#pragma once

#include "market/rates/ExchangeRateProvider.h"
#include "support/Clock.h"

#include <optional>

namespace tickwise {

/// A rate table and when it was fetched, to the second.
struct ExchangeRateEntry
{
    RateTable rates;
    TimePoint fetchedAt;
    bool operator==(const ExchangeRateEntry &) const = default;
};

/// `{"rates": {"EUR": 0.9}, "fetchedAt": "2026-01-31T08:15:00Z"}`
Result<QByteArray> encodeRateEntry(const ExchangeRateEntry &entry);
Result<ExchangeRateEntry> decodeRateEntry(const QByteArray &bytes);

/// Keeps the last table in "exchange-rates.json".
class ExchangeRateCacheStore
{
public:
    /// Without a directory nothing is kept.
    explicit ExchangeRateCacheStore(std::optional<QString> directory)
        : m_directory(std::move(directory))
    {
    }

    /// The stored entry; none when there is none or it does not decode.
    std::optional<ExchangeRateEntry> load() const;

    /// Creates the directory if needed and writes atomically.
    Result<void> save(const ExchangeRateEntry &entry) const;

private:
    std::optional<QString> m_directory;
};

} // namespace tickwise
