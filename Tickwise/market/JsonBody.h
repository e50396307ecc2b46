#pragma once

#include "support/Result.h"

#include <QByteArray>
#include <QHash>
#include <QStringList>

#include <simdjson.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tickwise {

// What the parsers of exchange and rate bodies share. Included by their implementations only.

/// Parses the whole body and hands the document to `read`. A body that is not valid JSON is a `DecodingError`.
template<class T>
Result<T> withDocument(const QByteArray &data, const std::function<Result<T>(simdjson::dom::element)> &read);

/// The wanted base symbols, found by their bytes without making a text of every pair name.
class WantedSymbols
{
public:
    explicit WantedSymbols(const QStringList &symbols);

    /// The wanted symbol whose pair with the suffix ("USDT", "-USDT") has this name; none for any other pair.
    const QString *baseOf(std::string_view pair, std::string_view suffix) const;

private:
    QList<QByteArray> m_bytes; // what the keys look at
    std::unordered_map<std::string_view, QString> m_symbols;
};

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
    for (const simdjson::dom::key_value_pair &member : object) {
        if (member.key != keys[found])
            continue;
        values[found] = member.value;
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

/// Keeps the parser of ordinary bodies; memory that an unusually large one took is given back.
class BodyParser
{
public:
    Result<simdjson::dom::element> parse(const QByteArray &data);
    ~BodyParser();

private:
    bool m_unusual = false;
};

template<class T>
Result<T> withDocument(const QByteArray &data, const std::function<Result<T>(simdjson::dom::element)> &read)
{
    BodyParser parser;
    return parser.parse(data).and_then(read);
}

} // namespace tickwise
