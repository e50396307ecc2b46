#include "support/json/JsonElement.h"

namespace tickwise {

using Access = JsonAccess<JsonElement>;

std::optional<JsonElement> Access::member(const JsonElement &json, std::string_view key)
{
    simdjson::dom::object object;
    std::optional<JsonElement> found;
    if (json.get(object) != simdjson::SUCCESS)
        return found;
    const auto end = object.end();
    for (auto member = object.begin(); member != end; ++member) {
        if (member.key_equals(key))
            found = member.value();
    }
    return found;
}

std::optional<simdjson::dom::array> Access::array(const JsonElement &json)
{
    simdjson::dom::array array;
    return json.get(array) == simdjson::SUCCESS ? std::optional(array) : std::nullopt;
}

Result<bool> Access::truthValue(const JsonElement &json)
{
    bool value = false;
    if (json.get(value) != simdjson::SUCCESS)
        return failure(DecodingError{QStringLiteral("not a truth value")});
    return value;
}

Result<std::int64_t> Access::integer(const JsonElement &json)
{
    if (json.type() == simdjson::dom::element_type::DOUBLE)
        return integerOf(double(json));
    std::int64_t value = 0;
    if (json.get(value) != simdjson::SUCCESS)
        return failure(DecodingError{QStringLiteral("not an integer")});
    return value;
}

Result<QString> Access::text(const JsonElement &json)
{
    std::string_view value;
    if (json.get(value) != simdjson::SUCCESS)
        return failure(DecodingError{QStringLiteral("not a text")});
    return textFromUtf8(value);
}

} // namespace tickwise
