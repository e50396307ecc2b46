#include "support/IsoDate.h"
#include "support/json/JsonReader.h"
#include "widget/WidgetSnapshot.h"

namespace tickwise {

namespace {

JsonDocument encodeQuotes(const std::map<QString, WidgetSnapshot::Quote> &quotes)
{
    // Filled as a vector: a `JsonDocument` searches its whole object on every insertion.
    JsonDocument::object_t object;
    object.reserve(quotes.size());
    for (const auto &[id, quote] : quotes) {
        JsonDocument entry{{"price", quote.price}};
        if (quote.change24hPercent)
            entry["change24hPercent"] = *quote.change24hPercent;
        object.emplace_back(utf8(id), std::move(entry));
    }
    return object;
}

Result<std::vector<QString>> decodeWatchlist(const JsonValue &array)
{
    std::vector<QString> ids;
    for (const JsonValue &entry : array) {
        Result<QString> id = decodeJson<QString>(entry);
        if (!id)
            return tl::unexpected(id.error());
        ids.push_back(std::move(*id));
    }
    return ids;
}

Result<std::map<QString, WidgetSnapshot::Quote>> decodeQuotes(const JsonValue &object)
{
    std::map<QString, WidgetSnapshot::Quote> quotes;
    for (const auto &[key, entry] : object.items()) {
        const QString id = textFromUtf8(key);
        JsonReader reader(entry, QStringLiteral("quotes.") + id);
        quotes[id] = {reader.required<double>("price"), reader.optional<double>("change24hPercent")};
        if (reader.error())
            return tl::unexpected(*reader.error());
    }
    return quotes;
}

/// The decoded list; its error becomes the reader's.
template<class T>
T listOf(Result<T> decoded, const char *key, JsonReader &reader)
{
    if (decoded)
        return std::move(*decoded);
    reader.fail(key, description(decoded.error()));
    return {};
}

Result<WidgetSnapshot> decodeRecord(const JsonValue &json)
{
    JsonReader reader(json);
    const std::optional<TimePoint> writtenAt = parseIsoDate(reader.required<QString>("writtenAt"));
    if (!writtenAt)
        reader.fail("writtenAt", QStringLiteral("not an ISO 8601 date"));
    WidgetSnapshot snapshot{.writtenAt = writtenAt.value_or(TimePoint())};
    snapshot.language = reader.required<AppLanguage>("language");
    snapshot.currency = reader.required<BaseCurrency>("currency");
    snapshot.colorByChange = reader.required<bool>("colorByChange");
    snapshot.upColorHex = reader.required<QString>("upColorHex");
    snapshot.downColorHex = reader.required<QString>("downColorHex");
    snapshot.displayedCoinId = reader.required<QString>("displayedCoinId");
    snapshot.watchlist = listOf(decodeWatchlist(reader.array("watchlist")), "watchlist", reader);
    snapshot.quotes = listOf(decodeQuotes(reader.object("quotes")), "quotes", reader);
    return reader.result(std::move(snapshot));
}

} // namespace

Result<QByteArray> encodeWidgetSnapshot(const WidgetSnapshot &snapshot)
{
    JsonDocument object;
    object["writtenAt"] = utf8(isoDateText(snapshot.writtenAt));
    object["language"] = utf8Raw(snapshot.language);
    object["currency"] = utf8Raw(snapshot.currency);
    object["colorByChange"] = snapshot.colorByChange;
    object["upColorHex"] = utf8(snapshot.upColorHex);
    object["downColorHex"] = utf8(snapshot.downColorHex);
    object["displayedCoinId"] = utf8(snapshot.displayedCoinId);
    JsonDocument &watchlist = object["watchlist"] = JsonDocument::array();
    for (const QString &id : snapshot.watchlist)
        watchlist.push_back(utf8(id));
    object["quotes"] = encodeQuotes(snapshot.quotes);
    return encodeJson(object);
}

Result<WidgetSnapshot> decodeWidgetSnapshot(const QByteArray &document)
{
    return parseJson(document).and_then(decodeRecord);
}

} // namespace tickwise
