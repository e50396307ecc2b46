#include "support/json/Json.h"

#include "support/json/JsonRepair.h"

#include <QStringDecoder>

#include <cmath>

namespace tickwise {

namespace {

tl::unexpected<Error> invalid(const QString &text, std::optional<qint64> offset = std::nullopt)
{
    return failure(DecodingError{text, offset});
}

Result<void> checkSize(qsizetype size, qsizetype largest)
{
    if (size <= largest)
        return {};
    return invalid(QStringLiteral("%1 bytes are more than the %2 of the largest document").arg(size).arg(largest));
}

Result<JsonValue> parse(const QByteArray &document)
{
    // The parser takes a NUL for the end of the document.
    if (const qsizetype nul = document.indexOf('\0'); nul >= 0)
        return invalid(QStringLiteral("not valid JSON"), nul + 1);
    // The parser's own texts quote the document, which may be long and private.
    try {
        return JsonValue::parse(document.cbegin(), document.cend());
    } catch (const JsonValue::parse_error &error) {
        return invalid(QStringLiteral("not valid JSON"), static_cast<qint64>(error.byte));
    } catch (const JsonValue::out_of_range &) {
        return invalid(QStringLiteral("a number is out of range"));
    }
}

/// The place of a number that JSON cannot carry, such as "list[2].price"; none when all are finite.
std::optional<QString> notFinitePlace(const JsonDocument &value, const QString &place)
{
    if (value.is_number_float() && !std::isfinite(value.get<double>()))
        return place;
    if (!value.is_structured())
        return std::nullopt;
    qsizetype index = 0;
    for (const auto &[key, member] : value.items()) {
        const QString name = textFromUtf8(key);
        const QString inside = value.is_array()  ? QStringLiteral("%1[%2]").arg(place).arg(index++)
                               : place.isEmpty() ? name
                                                 : place + u'.' + name;
        if (std::optional<QString> found = notFinitePlace(member, inside))
            return found;
    }
    return std::nullopt;
}

} // namespace

Result<JsonValue> parseJson(const QByteArray &document, JsonFaults faults, qsizetype largest)
{
    if (const Result<void> size = checkSize(document.size(), largest); !size)
        return tl::unexpected(size.error());
    return parse(faults == JsonFaults::repair ? repairedJson(document) : document);
}

Result<QByteArray> encodeJson(const JsonDocument &document, qsizetype largest)
{
    if (const std::optional<QString> place = notFinitePlace(document, {}))
        return invalid(*place + QStringLiteral(": not a finite number"));
    QByteArray bytes = QByteArray::fromStdString(document.dump());
    if (const Result<void> size = checkSize(bytes.size(), largest); !size)
        return tl::unexpected(size.error());
    return bytes;
}

QString textFromUtf8(std::string_view utf8)
{
    const QByteArrayView bytes(utf8.data(), static_cast<qsizetype>(utf8.size()));
    if (!bytes.startsWith("\xEF\xBB\xBF"))
        return QString::fromUtf8(bytes);
    return QStringDecoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom).decode(bytes);
}

} // namespace tickwise
