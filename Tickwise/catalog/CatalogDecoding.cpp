#include "catalog/CoinCatalog.h"
#include "support/json/JsonElement.h"

namespace tickwise {

namespace {

template<class Value>
Result<CoinMetadata> decodeRecord(const Value &record, const QString &place)
{
    StrictJsonReader<Value> reader(record, place);
    CoinMetadata coin;
    coin.id = reader.template required<QString>("id");
    coin.symbol = reader.template required<QString>("symbol");
    coin.name = reader.template required<QString>("name");
    coin.rank = reader.template optional<std::int64_t>("rank");
    coin.logoURL = reader.template optional<QString>("logoURL");
    coin.status = reader.template required<CoinStatus>("status");
    coin.listed = reader.template required<bool>("listed");
    coin.migratedTo = reader.template optional<QString>("migratedTo");
    return reader.result(std::move(coin));
}

/// The error of a record that does not decode, with its place, which is too costly to be made for each record.
template<class Value>
Error recordError(const Value &record, std::size_t index)
{
    return decodeRecord(record, QStringLiteral("coins[%1]").arg(index)).error();
}

template<class Value>
Result<CoinCatalogDocument> decodeDocument(const Value &json)
{
    StrictJsonReader<Value> reader(json);
    CoinCatalogDocument document;
    document.schemaVersion = reader.template required<std::int64_t>("schemaVersion");
    std::optional<Error> error;
    reader.forEach("coins", [&](const Value &record) {
        if (Result<CoinMetadata> coin = decodeRecord(record, QString()))
            document.coins.push_back(std::move(*coin));
        else
            error = recordError(record, document.coins.size());
        return !error;
    });
    document.coins.shrink_to_fit();
    if (error)
        return tl::unexpected(std::move(*error));
    return reader.result(std::move(document));
}

} // namespace

Result<CoinCatalogDocument> decodeCatalog(const QByteArray &bytes)
{
    if (bytes.size() <= largestJsonDocument) {
        simdjson::dom::parser parser;
        JsonElement root;
        if (parser.parse(bytes.constData(), static_cast<std::size_t>(bytes.size())).get(root) == simdjson::SUCCESS)
            return decodeDocument(root);
    }
    // Deeper nesting than the fast parser takes, an integer beyond 64 bits, or a fault whose place only this one tells.
    return parseJson(bytes).and_then(decodeDocument<JsonValue>);
}

} // namespace tickwise
