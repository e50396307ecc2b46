#include "widget/program/ShippedCoins.h"

#include "catalog/ShippedImages.h"
#include "support/json/JsonReader.h"

#include <QFile>
#include <QSet>

namespace tickwise {

namespace {

/// The document's list of coins; null where there is none.
JsonValue catalogRecords()
{
    QFile file(QStringLiteral(":/coins.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    Result<JsonValue> document = parseJson(file.readAll());
    return document && document->is_object() ? std::move((*document)["coins"]) : JsonValue();
}

CoinMetadata recordOf(const QString &id, const JsonReader &reader)
{
    CoinMetadata coin;
    coin.id = id;
    coin.symbol = reader.valueOr("symbol", QString());
    coin.name = reader.valueOr("name", QString());
    if (const QString asset = QStringLiteral("coin-") + id; shippedImageExists(asset))
        coin.logoAssetName = asset;
    return coin;
}

} // namespace

std::vector<CoinMetadata> shippedCoins(const std::vector<QString> &ids)
{
    const QSet<QString> wanted(ids.begin(), ids.end());
    std::vector<CoinMetadata> found;
    const JsonValue records = catalogRecords();
    for (const JsonValue &record : records) {
        const JsonReader reader(record);
        const QString id = reader.valueOr("id", QString());
        if (wanted.contains(id))
            found.push_back(recordOf(id, reader));
    }
    return found;
}

} // namespace tickwise
