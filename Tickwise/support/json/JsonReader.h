#pragma once

#include "support/RawValue.h"
#include "support/json/Json.h"

#include <cstdint>
#include <type_traits>

namespace tickwise {

// The strict decoding of one JSON value into a type: the value, or why it is none. Nothing is converted between types.
// A record that is decoded so specializes the template.

template<class T>
Result<T> decodeJson(const JsonValue &json);

template<>
Result<bool> decodeJson<bool>(const JsonValue &json);
/// A finite number.
template<>
Result<double> decodeJson<double>(const JsonValue &json);
/// A number without a fraction: of 64 bits, or one written as a float of at most 2^53.
template<>
Result<std::int64_t> decodeJson<std::int64_t>(const JsonValue &json);
template<>
Result<QString> decodeJson<QString>(const JsonValue &json);

/// An enum is a text: one of its raw values.
template<class T>
requires std::is_enum_v<T> Result<T> decodeJson(const JsonValue &json)
{
    return decodeJson<QString>(json).and_then([](const QString &raw) -> Result<T> {
        if (const std::optional<T> value = fromRawValue<T>(raw))
            return *value;
        return failure(DecodingError{QStringLiteral("not a known value")});
    });
}

/// Decodes a T and never fails: an error leaves `value` empty.
template<class T>
struct LossyDecodable
{
    std::optional<T> value;

    static LossyDecodable decode(const JsonValue &json)
    {
        Result<T> decoded = decodeJson<T>(json);
        return {decoded ? std::optional<T>(std::move(*decoded)) : std::nullopt};
    }
};

/// Reads the members of one object: strictly, with `required`, `optional`, `array` and `object`, whose first error
/// `result` gives; or tolerantly, with `ifDecodable` and `valueOr`, which never fail.
///
/// An error's text is "<place>: <problem>", such as "coins[3].rank: not an integer".
class JsonReader
{
public:
    /// `place` is where the value stands in its document, for error texts; empty for the document itself. A value that
    /// is not an object is an error and has no members. The value outlives the reader.
    explicit JsonReader(const JsonValue &value, QString place = {});

    /// The member, decoded; an error and a default T when it is missing or does not decode.
    template<class T>
    T required(const char *key)
    {
        const JsonValue *const value = member(key);
        if (!value) {
            fail(key, QStringLiteral("missing"));
            return T();
        }
        Result<T> decoded = decodeJson<T>(*value);
        if (decoded)
            return std::move(*decoded);
        fail(key, description(decoded.error()));
        return T();
    }

    /// The same, but none without an error when the member is missing or null.
    template<class T>
    std::optional<T> optional(const char *key)
    {
        const JsonValue *const value = member(key);
        return !value || value->is_null() ? std::nullopt : std::optional<T>(required<T>(key));
    }

    /// The member when it is an array, or an object; an error and an empty one when it is anything else.
    const JsonValue &array(const char *key);
    const JsonValue &object(const char *key);

    /// The member, decoded; none when it is missing, null or does not decode.
    template<class T>
    std::optional<T> ifDecodable(const char *key) const
    {
        const JsonValue *const value = member(key);
        return value ? LossyDecodable<T>::decode(*value).value : std::nullopt;
    }

    /// The same, with a value to use instead of none.
    template<class T>
    T valueOr(const char *key, T fallback) const
    {
        return ifDecodable<T>(key).value_or(std::move(fallback));
    }

    /// The member as it stands; a null pointer when it is missing.
    const JsonValue *member(const char *key) const;

    /// Records an error of a member; the first one is kept.
    void fail(const char *key, const QString &problem);

    const std::optional<Error> &error() const { return m_error; }

    /// The value, or the first error.
    template<class T>
    Result<T> result(T value) const
    {
        if (m_error)
            return tl::unexpected(*m_error);
        return value;
    }

private:
    const JsonValue &container(const char *key, JsonValue::value_t type, const QString &problem);

    const JsonValue &m_value;
    QString m_place;
    std::optional<Error> m_error;
};

} // namespace tickwise
