#pragma once

#include "settings/AppSettings.h"
#include "support/Result.h"

#include <nlohmann/json.hpp>

#include <type_traits>

namespace tickwise {

// The strict decoding of one JSON value into a type: the value, or why it is none. Nothing is converted between types.

template<class T>
Result<T> decodeJson(const nlohmann::json &json);

template<>
Result<bool> decodeJson<bool>(const nlohmann::json &json);
template<>
Result<double> decodeJson<double>(const nlohmann::json &json);
template<>
Result<QString> decodeJson<QString>(const nlohmann::json &json);
template<>
Result<DesktopOverlayOrigin> decodeJson<DesktopOverlayOrigin>(const nlohmann::json &json);
/// Strict in "coinId" only: the other fields fall back one by one.
template<>
Result<WatchlistCoin> decodeJson<WatchlistCoin>(const nlohmann::json &json);

/// An enum is a text: one of its raw values.
template<class T>
requires std::is_enum_v<T> Result<T> decodeJson(const nlohmann::json &json)
{
    return decodeJson<QString>(json).and_then([](const QString &raw) -> Result<T> {
        if (const std::optional<T> value = fromRawValue<T>(raw))
            return *value;
        return failure(DecodingError{QStringLiteral("unknown value"), std::nullopt});
    });
}

/// Decodes a T and never fails: an error leaves `value` empty.
template<class T>
struct LossyDecodable
{
    std::optional<T> value;

    static LossyDecodable decode(const nlohmann::json &json)
    {
        Result<T> decoded = decodeJson<T>(json);
        return {decoded ? std::optional<T>(std::move(*decoded)) : std::nullopt};
    }
};

/// The value under a key of an object; none when it is missing, null or does not decode.
template<class T>
std::optional<T> decodeIfPresent(const nlohmann::json &object, const char *key)
{
    const auto entry = object.find(key);
    return entry == object.end() ? std::nullopt : LossyDecodable<T>::decode(*entry).value;
}

/// The same, with a value to use instead of none.
template<class T>
T decodeOr(const nlohmann::json &object, const char *key, T fallback)
{
    return decodeIfPresent<T>(object, key).value_or(std::move(fallback));
}

} // namespace tickwise
