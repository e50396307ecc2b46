#include "catalog/CoinCatalog.h"
#include "support/json/JsonReader.h"

namespace tickwise {

namespace {

Result<CoinMetadata> decodeRecord(const JsonValue &record, std::size_t index)
{
    JsonReader reader(record, QStringLiteral("coins[%1]").arg(index));
    CoinMetadata coin;
    coin.id = reader.required<QString>("id");
    coin.symbol = reader.required<QString>("symbol");
    coin.name = reader.required<QString>("name");
    coin.rank = reader.optional<std::int64_t>("rank");
    coin.logoURL = reader.optional<QString>("logoURL");
    coin.status = reader.required<CoinStatus>("status");
    coin.listed = reader.required<bool>("listed");
    coin.migratedTo = reader.optional<QString>("migratedTo");
    return reader.result(std::move(coin));
}

Result<CoinCatalogDocument> decodeDocument(const JsonValue &json)
{
    JsonReader reader(json);
    CoinCatalogDocument document;
    document.schemaVersion = reader.required<std::int64_t>("schemaVersion");
    const JsonValue &records = reader.array("coins");
    document.coins.reserve(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        Result<CoinMetadata> coin = decodeRecord(records[i], i);
        if (!coin)
            return tl::unexpected(coin.error());
        document.coins.push_back(std::move(*coin));
    }
    return reader.result(std::move(document));
}

} // namespace

Result<CoinCatalogDocument> decodeCatalog(const QByteArray &bytes)
{
    return parseJson(bytes).and_then(decodeDocument);
}

} // namespace tickwise
