#include "market/rates/ExchangeRateCacheStore.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <nlohmann/json.hpp>

#include <cmath>

namespace tickwise {

namespace {

const auto dateForm = "yyyy-MM-dd'T'HH:mm:ss'Z'";
constexpr qint64 largestFile = 256LL * 1024; // a table has a few kilobytes

QString fileIn(const QString &directory)
{
    return QDir(directory).filePath(QStringLiteral("exchange-rates.json"));
}

QString dateText(TimePoint time)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(QLatin1String(dateForm));
}

/// The date that the text spells in exactly the form that `dateText` writes.
std::optional<TimePoint> dateOf(const QString &text)
{
    using std::chrono::duration_cast, std::chrono::seconds;
    const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    const seconds time(date.isValid() ? date.toSecsSinceEpoch() : 0);
    // The clock can tell the time between any two moments from its epoch on, but not between all that it can name.
    if (!date.isValid() || time.count() < 0 || time > duration_cast<seconds>(TimePoint::max().time_since_epoch()) ||
        dateText(TimePoint(time)) != text)
        return std::nullopt;
    return TimePoint(time);
}

tl::unexpected<Error> undecodable(const QString &text)
{
    return failure(DecodingError{text});
}

Result<ExchangeRateEntry> entryOf(const nlohmann::json &root)
{
    if (!root.is_object() || !root.contains("rates") || !root["rates"].is_object() || !root.contains("fetchedAt") ||
        !root["fetchedAt"].is_string())
        return undecodable(QStringLiteral("rates or fetchedAt is missing"));
    const std::optional<TimePoint> fetchedAt = dateOf(QString::fromStdString(root["fetchedAt"]));
    if (!fetchedAt)
        return undecodable(QStringLiteral("fetchedAt is no ISO 8601 date"));
    ExchangeRateEntry entry{{}, *fetchedAt};
    for (const auto &[code, rate] : root["rates"].items()) {
        if (!rate.is_number() || !std::isfinite(rate.get<double>()) || rate.get<double>() <= 0)
            return undecodable(QStringLiteral("a rate is no number above zero"));
        entry.rates.insert(QString::fromStdString(code), rate.get<double>());
    }
    return entry;
}

} // namespace

QByteArray encodeRateEntry(const ExchangeRateEntry &entry)
{
    nlohmann::ordered_json rates = nlohmann::ordered_json::object();
    QStringList codes = entry.rates.keys();
    codes.sort();
    for (const QString &code : codes)
        rates[code.toStdString()] = entry.rates.value(code);
    const nlohmann::ordered_json root{{"rates", std::move(rates)},
                                      {"fetchedAt", dateText(entry.fetchedAt).toStdString()}};
    return QByteArray::fromStdString(root.dump());
}

Result<ExchangeRateEntry> decodeRateEntry(const QByteArray &bytes)
{
    try {
        return entryOf(nlohmann::json::parse(bytes.cbegin(), bytes.cend()));
    } catch (const nlohmann::json::exception &error) {
        return undecodable(QString::fromUtf8(error.what()));
    }
}

std::optional<ExchangeRateEntry> ExchangeRateCacheStore::load() const
{
    if (!m_directory)
        return std::nullopt;
    QFile file(fileIn(*m_directory));
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile)
        return std::nullopt;
    Result<ExchangeRateEntry> entry = decodeRateEntry(file.readAll());
    return entry ? std::optional(*std::move(entry)) : std::nullopt;
}

Result<void> ExchangeRateCacheStore::save(const ExchangeRateEntry &entry) const
{
    if (!m_directory)
        return {};
    if (!QDir().mkpath(*m_directory))
        return failure(FileError{*m_directory, QStringLiteral("cannot be created")});
    QSaveFile file(fileIn(*m_directory));
    const QByteArray bytes = encodeRateEntry(entry);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() || !file.commit())
        return failure(FileError{file.fileName(), file.errorString()});
    return {};
}

} // namespace tickwise
