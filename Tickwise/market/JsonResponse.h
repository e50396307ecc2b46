#pragma once

#include "support/Result.h"

#include <QByteArray>

#include <simdjson.h>

#include <array>
#include <functional>
#include <optional>
#include <string_view>

namespace tickwise {

// What the readers of exchanges' and rate services' answers share. Included by their implementations only.

/// Parses the whole body and hands the document to `read`. A body that is not valid JSON is a `DecodingError`.
template<class T>
Result<T> readJsonResponse(const QByteArray &body, const std::function<Result<T>(simdjson::dom::element)> &read);

/// The values of the keys, in their order; none when the element is no object or lacks one of them. Fastest when the
/// keys are named in the order in which the object has them.
template<std::size_t N>
std::optional<std::array<simdjson::dom::element, N>> members(simdjson::dom::element element,
                                                             const std::array<std::string_view, N> &keys)
{
    simdjson::dom::object object;
    if (element.get(object) != simdjson::SUCCESS)
        return std::nullopt;
    std::array<simdjson::dom::element, N> values;
    std::size_t found = 0;
    const auto end = object.end();
    for (auto member = object.begin(); member != end; ++member) {
        const std::string_view key = keys[found];
        // Most other keys differ in their length or last letter.
        if (member.key_length() != key.size() || member.key_c_str()[key.size() - 1] != key.back() ||
            !member.key_equals(key))
            continue;
        values[found] = member.value();
        if (++found == N)
            return values;
    }
    for (; found < N; ++found) {
        if (object.at_key(keys[found]).get(values[found]) != simdjson::SUCCESS)
            return std::nullopt;
    }
    return values;
}

inline std::optional<std::string_view> text(simdjson::dom::element element)
{
    std::string_view value;
    return element.get(value) == simdjson::SUCCESS ? std::optional(value) : std::nullopt;
}

inline tl::unexpected<Error> unexpectedForm(const QString &what)
{
    return failure(DecodingError{QStringLiteral("unexpected form: ") + what});
}

/// A copy of the JSON text in which the numbers that the parser refuses are written in another way: integers beyond 64
/// bits as floating-point numbers, numbers beyond all doubles as 0.0. Everything else stays, errors included.
QByteArray withBoundedNumbers(const QByteArray &json);

/// Parses bodies with a parser that the thread keeps; frees the parser's memory after an unusually large body. A
/// document is valid until its `JsonResponseParser` is destroyed.
class JsonResponseParser
{
public:
    Result<simdjson::dom::element> parse(const QByteArray &body);
    ~JsonResponseParser();

private:
    bool m_isLarge = false;
};

template<class T>
Result<T> readJsonResponse(const QByteArray &body, const std::function<Result<T>(simdjson::dom::element)> &read)
{
    JsonResponseParser parser;
    return parser.parse(body).and_then(read);
}

} // namespace tickwise
