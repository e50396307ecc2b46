#pragma once

#include "support/Result.h"

#include <QByteArray>
#include <QString>

#include <nlohmann/json.hpp>

#include <string_view>

namespace tickwise {

/// A parsed document of our own. Not `ordered_json`: that one searches the whole object for every key that it parses
/// and copies its members while it grows, which a document made for it turns into minutes.
using JsonValue = nlohmann::json;

/// A document under construction: its keys keep the order in which they are set.
using JsonDocument = nlohmann::ordered_json;

/// The largest document, in bytes, that is parsed or encoded where the caller names no other limit.
inline constexpr qsizetype largestJsonDocument = qsizetype{4} * 1024 * 1024;

/// What parsing does with valid syntax that carries no value: a number beyond the range of a double, or an escape that
/// is half a surrogate pair.
enum class JsonFaults
{
    refuse, ///< the document fails
    repair, ///< the number becomes null, the escape U+FFFD
};

/// Parses a whole document. The error is a `DecodingError`, with the byte offset of a syntax error; its text never
/// quotes the document. The value may be nested deeply: move it, because copying it would exhaust the stack.
Result<JsonValue> parseJson(const QByteArray &document, JsonFaults faults = JsonFaults::refuse,
                            qsizetype largest = largestJsonDocument);

/// The compact text of a document, doubles exactly. A number that is not finite, or a text over the size limit, is a
/// `DecodingError`.
Result<QByteArray> encodeJson(const JsonDocument &document, qsizetype largest = largestJsonDocument);

/// The text as it is, where `QString::fromUtf8` drops a U+FEFF at its start.
QString textFromUtf8(std::string_view utf8);

/// The text as a JSON string takes it.
inline std::string utf8(const QString &text)
{
    return text.toStdString();
}

/// The raw value of an enum as a JSON string takes it.
template<class Enum>
std::string utf8Raw(Enum value)
{
    return utf8(rawValue(value));
}

} // namespace tickwise
