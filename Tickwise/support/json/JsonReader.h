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

/// The integer that a number written as a float is, by the same rule.
Result<std::int64_t> integerOf(double number);

/// An enum is a text: one of its raw values.
template<class T>
Result<T> enumOf(const QString &raw)
{
    if (const std::optional<T> value = fromRawValue<T>(raw))
        return *value;
    return failure(DecodingError{QStringLiteral("not a known value")});
}

template<class T>
requires std::is_enum_v<T> Result<T> decodeJson(const JsonValue &json)
{
    return decodeJson<QString>(json).and_then(enumOf<T>);
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

/// What a reader asks of a value. A kind of value other than `JsonValue` specializes it.
template<class Value>
struct JsonAccess
{
    static bool isObject(const Value &json) { return json.is_object(); }
    static bool isNull(const Value &json) { return json.is_null(); }

    /// The member of an object, of several with one key the last; a null pointer when there is none.
    static const Value *member(const Value &json, const char *key)
    {
        const auto found = json.find(key);
        return found == json.end() ? nullptr : &*found;
    }

    /// The range of an array's elements; a null pointer for any other value.
    static const Value *array(const Value &json) { return json.is_array() ? &json : nullptr; }

    template<class T>
    static Result<T> decode(const Value &json)
    {
        return decodeJson<T>(json);
    }
};

/// "<place>.<key>: <problem>", the place and its dot only where there is a place.
DecodingError memberError(const QString &place, const char *key, const QString &problem);
/// "<place>: not an object"
DecodingError objectError(const QString &place);

/// Reads the members of one object strictly; `result` gives the first error.
///
/// An error's text is "<place>: <problem>", such as "coins[3].rank: not an integer".
template<class Value>
class StrictJsonReader
{
public:
    using Access = JsonAccess<Value>;

    /// `place` is where the value stands in its document, for error texts; empty for the document itself. A value that
    /// is not an object is an error and has no members. The value outlives the reader.
    explicit StrictJsonReader(const Value &value, QString place = {})
        : m_value(value)
        , m_place(std::move(place))
    {
        if (!Access::isObject(m_value))
            m_error = objectError(m_place);
    }

    /// The member, decoded; an error and a default T when it is missing or does not decode.
    template<class T>
    T required(const char *key)
    {
        const auto value = member(key);
        if (!value) {
            fail(key, QStringLiteral("missing"));
            return T();
        }
        Result<T> decoded = Access::template decode<T>(*value);
        if (decoded)
            return std::move(*decoded);
        fail(key, description(decoded.error()));
        return T();
    }

    /// The same, but none without an error when the member is missing or null.
    template<class T>
    std::optional<T> optional(const char *key)
    {
        const auto value = member(key);
        return !value || Access::isNull(*value) ? std::nullopt : std::optional<T>(required<T>(key));
    }

    /// Calls `read` for each element of the member, an array, for as long as it returns true. Anything else is an
    /// error.
    template<class Function>
    void forEach(const char *key, const Function &read)
    {
        const auto value = member(key);
        if (!value)
            return fail(key, QStringLiteral("missing"));
        const auto elements = Access::array(*value);
        if (!elements)
            return fail(key, QStringLiteral("not an array"));
        for (const auto &element : *elements) {
            if (!read(element))
                return;
        }
    }

    /// The member as it stands, as a pointer or a `std::optional`; none when it is missing.
    auto member(const char *key) const { return Access::member(m_value, key); }

    /// Records an error of a member; the first one is kept.
    void fail(const char *key, const QString &problem)
    {
        if (!m_error)
            m_error = memberError(m_place, key, problem);
    }

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
    const Value &m_value;
    QString m_place;
    std::optional<Error> m_error;
};

/// Reads the members of an object of a document of our own: strictly, or tolerantly, with `ifDecodable` and `valueOr`,
/// which never fail.
class JsonReader : public StrictJsonReader<JsonValue>
{
public:
    using StrictJsonReader::StrictJsonReader;

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

private:
    const JsonValue &container(const char *key, JsonValue::value_t type, const QString &problem);
};

} // namespace tickwise
