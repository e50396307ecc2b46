#include "catalog/CoinCatalog.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace tickwise {

namespace {

using nlohmann::json;

/// What decoding throws inside this file; it leaves as a `DecodingError`.
struct Fault
{
    QString text;
};

QString pathTo(const char *key, std::size_t index)
{
    return QStringLiteral("coins[%1].%2").arg(index).arg(QLatin1String(key));
}

const json *member(const json &object, const char *key)
{
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

std::optional<std::int64_t> integer(const json &value)
{
    if (value.is_number_unsigned() && value.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max())
        return std::nullopt;
    if (value.is_number_integer())
        return value.get<std::int64_t>();
    constexpr double exact = 9007199254740992.0; // 2^53: every integer up to here is itself as a double
    if (!value.is_number_float() || std::abs(value.get<double>()) > exact ||
        std::trunc(value.get<double>()) != value.get<double>())
        return std::nullopt;
    return static_cast<std::int64_t>(value.get<double>());
}

/// Reads the members of one record; every fault names the record and the key.
class RecordReader
{
public:
    RecordReader(const json &record, std::size_t index)
        : m_record(record)
        , m_index(index)
    {
        if (!record.is_object())
            throw Fault{QStringLiteral("coins[%1] is not an object").arg(index)};
    }

    std::optional<QString> optionalText(const char *key) const
    {
        const json *const value = member(m_record, key);
        if (!value)
            return std::nullopt;
        if (!value->is_string())
            throw Fault{pathTo(key, m_index) + QStringLiteral(" is not a text")};
        return QString::fromStdString(value->get_ref<const std::string &>());
    }
    QString text(const char *key) const { return required(optionalText(key), key); }
    std::optional<std::int64_t> optionalInteger(const char *key) const
    {
        const json *const value = member(m_record, key);
        if (!value)
            return std::nullopt;
        const std::optional<std::int64_t> number = integer(*value);
        if (!number)
            throw Fault{pathTo(key, m_index) + QStringLiteral(" is not an integer")};
        return number;
    }
    bool boolean(const char *key) const
    {
        const json *const value = member(m_record, key);
        if (!value || !value->is_boolean())
            throw Fault{pathTo(key, m_index) + QStringLiteral(" is not a boolean")};
        return value->get<bool>();
    }
    CoinStatus status(const char *key) const
    {
        const QString raw = text(key);
        if (raw == QStringLiteral("active"))
            return CoinStatus::active;
        if (raw == QStringLiteral("delisted"))
            return CoinStatus::delisted;
        if (raw == QStringLiteral("migrated"))
            return CoinStatus::migrated;
        throw Fault{pathTo(key, m_index) + QStringLiteral(" is no known status")};
    }

private:
    template<class T>
    T required(std::optional<T> value, const char *key) const
    {
        if (!value)
            throw Fault{pathTo(key, m_index) + QStringLiteral(" is missing")};
        return *std::move(value);
    }

    const json &m_record;
    std::size_t m_index;
};

CoinMetadata decodeRecord(const json &record, std::size_t index)
{
    const RecordReader reader(record, index);
    CoinMetadata coin;
    coin.id = reader.text("id");
    coin.symbol = reader.text("symbol");
    coin.name = reader.text("name");
    coin.rank = reader.optionalInteger("rank");
    coin.logoURL = reader.optionalText("logoURL");
    coin.status = reader.status("status");
    coin.listed = reader.boolean("listed");
    coin.migratedTo = reader.optionalText("migratedTo");
    return coin;
}

CoinCatalogDocument decodeDocument(const json &root)
{
    if (!root.is_object())
        throw Fault{QStringLiteral("the document is not an object")};
    const json *const version = member(root, "schemaVersion");
    const json *const coins = member(root, "coins");
    const std::optional<std::int64_t> number = version ? integer(*version) : std::nullopt;
    if (!number)
        throw Fault{QStringLiteral("schemaVersion is not an integer")};
    if (!coins || !coins->is_array())
        throw Fault{QStringLiteral("coins is not an array")};
    CoinCatalogDocument document{*number, {}};
    document.coins.reserve(coins->size());
    for (std::size_t i = 0; i < coins->size(); ++i)
        document.coins.push_back(decodeRecord((*coins)[i], i));
    return document;
}

} // namespace

Result<CoinCatalogDocument> decodeCatalog(const QByteArray &bytes)
{
    try {
        return decodeDocument(json::parse(bytes.cbegin(), bytes.cend()));
    } catch (const json::parse_error &error) {
        return failure(DecodingError{QString::fromUtf8(error.what()), static_cast<qint64>(error.byte)});
    } catch (const json::exception &error) {
        return failure(DecodingError{QString::fromUtf8(error.what())});
    } catch (const Fault &fault) {
        return failure(DecodingError{fault.text});
    }
}

} // namespace tickwise
