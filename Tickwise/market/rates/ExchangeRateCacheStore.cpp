#include "market/rates/ExchangeRateCacheStore.h"

#include "support/IsoDate.h"
#include "support/files/WholeFile.h"
#include "support/json/JsonReader.h"

#include <QDir>

namespace tickwise {

namespace {

constexpr qint64 largestFile = 256LL * 1024; // a table has a few kilobytes

QString fileIn(const QString &directory)
{
    return QDir(directory).filePath(QStringLiteral("exchange-rates.json"));
}

RateTable readRates(JsonReader &reader)
{
    RateTable rates;
    for (const auto &[code, value] : reader.object("rates").items()) {
        const Result<double> rate = decodeJson<double>(value);
        if (!rate || *rate <= 0)
            reader.fail("rates", QStringLiteral("a rate is no number above zero"));
        rates.insert(textFromUtf8(code), rate.value_or(0));
    }
    return rates;
}

TimePoint readDate(JsonReader &reader)
{
    const std::optional<TimePoint> date = parseIsoDate(reader.required<QString>("fetchedAt"));
    if (!date)
        reader.fail("fetchedAt", QStringLiteral("no ISO 8601 date"));
    return date.value_or(TimePoint());
}

Result<ExchangeRateEntry> readEntry(const JsonValue &root)
{
    JsonReader reader(root);
    ExchangeRateEntry entry{readRates(reader), readDate(reader)};
    return reader.result(std::move(entry));
}

} // namespace

Result<QByteArray> encodeRateEntry(const ExchangeRateEntry &entry)
{
    QStringList codes = entry.rates.keys();
    codes.sort();
    JsonDocument rates = JsonDocument::object();
    for (const QString &code : codes)
        rates[utf8(code)] = entry.rates.value(code);
    return encodeJson({{"rates", std::move(rates)}, {"fetchedAt", utf8(isoDateText(entry.fetchedAt))}});
}

Result<ExchangeRateEntry> decodeRateEntry(const QByteArray &bytes)
{
    return parseJson(bytes).and_then(readEntry);
}

std::optional<ExchangeRateEntry> ExchangeRateCacheStore::load() const
{
    if (!m_directory)
        return std::nullopt;
    Result<ExchangeRateEntry> entry = readWholeFile(fileIn(*m_directory), largestFile).and_then(decodeRateEntry);
    return entry ? std::optional(*std::move(entry)) : std::nullopt;
}

Result<void> ExchangeRateCacheStore::save(const ExchangeRateEntry &entry) const
{
    if (!m_directory)
        return {};
    return encodeRateEntry(entry).and_then(
        [this](const QByteArray &bytes) { return writeWholeFile(fileIn(*m_directory), bytes, Durability::unsynced); });
}

} // namespace tickwise
