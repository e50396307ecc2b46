#include "support/json/JsonReader.h"

#include <cmath>
#include <limits>

namespace tickwise {

namespace {

constexpr double largestExactInteger = 9007199254740992.0; // 2^53: every integer up to it is itself as a double

tl::unexpected<Error> mismatch(const QString &text)
{
    return failure(DecodingError{text});
}

bool isExactInteger(double value)
{
    return std::abs(value) <= largestExactInteger && std::trunc(value) == value;
}

bool isTooLarge(const JsonValue &json)
{
    return json.is_number_unsigned() &&
           json.get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

} // namespace

template<>
Result<bool> decodeJson<bool>(const JsonValue &json)
{
    if (!json.is_boolean())
        return mismatch(QStringLiteral("not a truth value"));
    return json.get<bool>();
}

template<>
Result<double> decodeJson<double>(const JsonValue &json)
{
    if (!json.is_number())
        return mismatch(QStringLiteral("not a number"));
    return json.get<double>();
}

template<>
Result<std::int64_t> decodeJson<std::int64_t>(const JsonValue &json)
{
    if (json.is_number_integer() && !isTooLarge(json))
        return json.get<std::int64_t>();
    if (json.is_number_float())
        return integerOf(json.get<double>());
    return mismatch(QStringLiteral("not an integer"));
}

template<>
Result<QString> decodeJson<QString>(const JsonValue &json)
{
    if (!json.is_string())
        return mismatch(QStringLiteral("not a text"));
    return textFromUtf8(json.get_ref<const std::string &>());
}

Result<std::int64_t> integerOf(double number)
{
    if (isExactInteger(number))
        return static_cast<std::int64_t>(number);
    return mismatch(QStringLiteral("not an integer"));
}

DecodingError memberError(const QString &place, const char *key, const QString &problem)
{
    const QString name = place.isEmpty() ? QString::fromUtf8(key) : place + u'.' + QString::fromUtf8(key);
    return {name + QStringLiteral(": ") + problem};
}

DecodingError objectError(const QString &place)
{
    return {place.isEmpty() ? QStringLiteral("not an object") : place + QStringLiteral(": not an object")};
}

const JsonValue &JsonReader::array(const char *key)
{
    return container(key, JsonValue::value_t::array, QStringLiteral("not an array"));
}

const JsonValue &JsonReader::object(const char *key)
{
    return container(key, JsonValue::value_t::object, QStringLiteral("not an object"));
}

const JsonValue &JsonReader::container(const char *key, JsonValue::value_t type, const QString &problem)
{
    static const JsonValue empty;
    const JsonValue *const value = member(key);
    if (value && value->type() == type)
        return *value;
    fail(key, value ? problem : QStringLiteral("missing"));
    return empty;
}

} // namespace tickwise
