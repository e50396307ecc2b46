#include "support/json/JsonReader.h"
#include "widget/WidgetSnapshot.h"

#include <QDateTime>

#include <nlohmann/json.hpp>

#include <cmath>

namespace tickwise {

namespace {

constexpr qsizetype largestDocument = 4LL * 1024 * 1024; ///< bytes; a thousand coins take a tenth of a megabyte
constexpr qsizetype dateLength = 20;                     ///< "2026-01-31T08:15:00Z"

tl::unexpected<Error> invalid(const QString &text)
{
    return failure(DecodingError{text, std::nullopt});
}

QString dateText(TimePoint time)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(Qt::ISODate);
}

Result<TimePoint> decodeDate(const QString &text)
{
    const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    if (text.size() != dateLength || !text.endsWith(u'Z') || !date.isValid())
        return invalid(QStringLiteral("writtenAt is not an ISO 8601 date"));
    const std::chrono::seconds time(date.toSecsSinceEpoch());
    // Four digits of a year reach further than the clock's nanoseconds.
    constexpr auto first = std::chrono::ceil<std::chrono::seconds>(TimePoint::min().time_since_epoch());
    constexpr auto last = std::chrono::floor<std::chrono::seconds>(TimePoint::max().time_since_epoch());
    if (time < first || time > last)
        return invalid(QStringLiteral("writtenAt is out of range"));
    return TimePoint(time);
}

nlohmann::ordered_json encodeQuotes(const std::map<QString, WidgetSnapshot::Quote> &quotes)
{
    // Filled as a vector: `ordered_json` searches its whole object on every insertion.
    nlohmann::ordered_json::object_t object;
    object.reserve(quotes.size());
    for (const auto &[id, quote] : quotes) {
        nlohmann::ordered_json entry{{"price", quote.price}};
        if (quote.change24hPercent)
            entry["change24hPercent"] = *quote.change24hPercent;
        object.emplace_back(utf8(id), std::move(entry));
    }
    return object;
}

/// The id of a coin whose numbers JSON cannot carry, when there is one.
std::optional<QString> notFiniteQuote(const WidgetSnapshot &snapshot)
{
    for (const auto &[id, quote] : snapshot.quotes) {
        if (!std::isfinite(quote.price) || !std::isfinite(quote.change24hPercent.value_or(0)))
            return id;
    }
    return std::nullopt;
}

/// Takes values out of one object and remembers the first fault.
class Reader
{
public:
    explicit Reader(const nlohmann::json &object)
        : m_object(object)
    {
    }

    template<class T>
    T required(const char *key)
    {
        const auto entry = m_object.find(key);
        if (entry == m_object.end())
            return fault<T>(key, QStringLiteral("missing"));
        Result<T> value = decodeJson<T>(*entry);
        return value ? std::move(*value) : fault<T>(key, description(value.error()));
    }

    template<class T>
    std::optional<T> optional(const char *key)
    {
        const auto entry = m_object.find(key);
        if (entry == m_object.end() || entry->is_null())
            return std::nullopt;
        return required<T>(key);
    }

    const nlohmann::json &container(const char *key, nlohmann::json::value_t type)
    {
        static const nlohmann::json none;
        const auto entry = m_object.find(key);
        if (entry != m_object.end() && entry->type() == type)
            return *entry;
        fault<bool>(key, QStringLiteral("missing or of another type"));
        return none;
    }

    const std::optional<Error> &error() const { return m_error; }

private:
    template<class T>
    T fault(const char *key, const QString &why)
    {
        if (!m_error)
            m_error = DecodingError{QStringLiteral("%1: %2").arg(QLatin1String(key), why), std::nullopt};
        return T();
    }

    const nlohmann::json &m_object;
    std::optional<Error> m_error;
};

Result<WidgetSnapshot::Quote> decodeQuote(const nlohmann::json &json)
{
    if (!json.is_object())
        return invalid(QStringLiteral("a quote is not an object"));
    Reader reader(json);
    const WidgetSnapshot::Quote quote{reader.required<double>("price"), reader.optional<double>("change24hPercent")};
    if (reader.error())
        return tl::unexpected(*reader.error());
    return quote;
}

Result<void> decodeLists(Reader &reader, WidgetSnapshot &snapshot)
{
    for (const nlohmann::json &entry : reader.container("watchlist", nlohmann::json::value_t::array)) {
        const Result<QString> id = decodeJson<QString>(entry);
        if (!id)
            return tl::unexpected(id.error());
        snapshot.watchlist.push_back(*id);
    }
    for (const auto &[id, entry] : reader.container("quotes", nlohmann::json::value_t::object).items()) {
        const Result<WidgetSnapshot::Quote> quote = decodeQuote(entry);
        if (!quote)
            return tl::unexpected(quote.error());
        snapshot.quotes[QString::fromStdString(id)] = *quote;
    }
    return {};
}

} // namespace

Result<QByteArray> encodeWidgetSnapshot(const WidgetSnapshot &snapshot)
{
    if (const std::optional<QString> id = notFiniteQuote(snapshot))
        return invalid(QStringLiteral("the quote of %1 is not a finite number").arg(*id));
    nlohmann::ordered_json object;
    object["writtenAt"] = utf8(dateText(snapshot.writtenAt));
    object["language"] = utf8(rawValue(snapshot.language));
    object["currency"] = utf8(rawValue(snapshot.currency));
    object["colorByChange"] = snapshot.colorByChange;
    object["upColorHex"] = utf8(snapshot.upColorHex);
    object["downColorHex"] = utf8(snapshot.downColorHex);
    object["displayedCoinId"] = utf8(snapshot.displayedCoinId);
    nlohmann::ordered_json &watchlist = object["watchlist"] = nlohmann::ordered_json::array();
    for (const QString &id : snapshot.watchlist)
        watchlist.push_back(utf8(id));
    object["quotes"] = encodeQuotes(snapshot.quotes);
    return QByteArray::fromStdString(object.dump());
}

Result<WidgetSnapshot> decodeWidgetSnapshot(const QByteArray &document)
{
    if (document.size() > largestDocument)
        return invalid(QStringLiteral("%1 bytes are more than a widget snapshot may have").arg(document.size()));
    const nlohmann::json json = nlohmann::json::parse(document.begin(), document.end(), nullptr, false);
    if (!json.is_object())
        return invalid(QStringLiteral("not a JSON object"));
    Reader reader(json);
    const QString writtenAt = reader.required<QString>("writtenAt");
    WidgetSnapshot snapshot;
    snapshot.language = reader.required<AppLanguage>("language");
    snapshot.currency = reader.required<BaseCurrency>("currency");
    snapshot.colorByChange = reader.required<bool>("colorByChange");
    snapshot.upColorHex = reader.required<QString>("upColorHex");
    snapshot.downColorHex = reader.required<QString>("downColorHex");
    snapshot.displayedCoinId = reader.required<QString>("displayedCoinId");
    const Result<void> lists = decodeLists(reader, snapshot);
    if (reader.error())
        return tl::unexpected(*reader.error());
    if (!lists)
        return tl::unexpected(lists.error());
    return decodeDate(writtenAt).map([&](TimePoint time) {
        snapshot.writtenAt = time;
        return snapshot;
    });
}

} // namespace tickwise
