#include "settings/SettingsParsing.h"

#include "support/json/JsonRepair.h"

#include <simdjson.h>

namespace tickwise {

namespace {

using Element = simdjson::dom::element;

constexpr int levels = 3; // the document, its watchlist, a coin

JsonValue readable(Element element, int depth);

JsonValue readableMembers(simdjson::dom::object object, int depth)
{
    JsonValue members = JsonValue::object();
    for (const auto &[key, value] : object)
        members[std::string(key)] = readable(value, depth + 1);
    return members;
}

JsonValue readableObjects(simdjson::dom::array array, int depth)
{
    JsonValue objects = JsonValue::array();
    for (const Element element : array) {
        if (element.is_object())
            objects.push_back(readable(element, depth + 1));
    }
    return objects;
}

JsonValue readable(Element element, int depth)
{
    if (element.is_string())
        return std::string(std::string_view(element));
    if (element.is_bool())
        return bool(element);
    if (element.is_int64())
        return std::int64_t(element);
    if (element.is_uint64())
        return std::uint64_t(element);
    if (element.is_double())
        return double(element);
    if (depth == levels)
        return nullptr;
    if (element.is_object())
        return readableMembers(element, depth);
    return element.is_array() ? readableObjects(element, depth) : JsonValue();
}

} // namespace

Result<JsonValue> parseSettings(const QByteArray &document)
{
    if (document.size() <= largestJsonDocument) {
        const QByteArray repaired = repairedJson(document);
        simdjson::dom::parser parser;
        Element root;
        if (parser.parse(repaired.constData(), static_cast<std::size_t>(repaired.size())).get(root) ==
            simdjson::SUCCESS)
            return readable(root, 0);
    }
    // Deeper nesting than the fast parser takes, an integer beyond 64 bits, or a fault whose place only this one tells.
    return parseJson(document, JsonFaults::repair);
}

} // namespace tickwise
