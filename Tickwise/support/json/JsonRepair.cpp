#include "support/json/JsonRepair.h"

#include "support/json/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tickwise {

namespace {

constexpr std::size_t escapeLength = 6; // \uXXXX

std::int64_t exponentOf(std::string_view number)
{
    const std::size_t start = number.find_first_of("eE");
    if (start == std::string_view::npos)
        return 0;
    std::string_view digits = number.substr(start + 1);
    if (digits.starts_with('+'))
        digits.remove_prefix(1);
    constexpr std::int64_t unbounded = 1'000'000'000'000; // larger than any document has digits
    std::int64_t exponent = digits.starts_with('-') ? -unbounded : unbounded;
    std::from_chars(digits.data(), digits.data() + digits.size(), exponent); // stays as it is when out of range
    return exponent;
}

/// How many digits a number other than zero has before its point when it is written without an exponent; negative when
/// zeros follow the point.
std::int64_t magnitudeOf(std::string_view number, std::size_t firstDigit)
{
    const std::size_t point = std::min(number.find_first_of(".eE"), number.size());
    const auto distance = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(firstDigit);
    return (distance > 0 ? distance : distance + 1) + exponentOf(number);
}

/// Whether the token is a JSON number that no double holds, such as 1e999.
bool overflows(std::string_view token)
{
    constexpr std::int64_t largestMagnitude = 309; // the largest double's
    const std::size_t firstDigit = token.substr(0, token.find_first_of("eE")).find_first_of("123456789");
    if (firstDigit == std::string_view::npos || !isJsonNumber(token))
        return false;
    const std::int64_t magnitude = magnitudeOf(token, firstDigit);
    double value = 0;
    return magnitude > largestMagnitude ||
           (magnitude == largestMagnitude &&
            std::from_chars(token.data(), token.data() + token.size(), value).ec == std::errc::result_out_of_range);
}

/// The code unit of an escape \uXXXX at the start of the text.
std::optional<unsigned> escapedUnit(std::string_view text)
{
    if (text.size() < escapeLength || !text.starts_with("\\u"))
        return std::nullopt;
    unsigned unit = 0;
    const char *const end = text.data() + escapeLength;
    if (std::from_chars(text.data() + 2, end, unit, 16).ptr != end)
        return std::nullopt;
    return unit;
}

bool isHighSurrogate(unsigned unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(unsigned unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// One pass over a document that writes the repairs into a copy of it.
class Repair
{
public:
    explicit Repair(const QByteArray &document)
        : m_text(document.constData(), static_cast<std::size_t>(document.size()))
        , m_result(document)
    {
    }

    QByteArray run()
    {
        for (std::size_t i = 0; i < m_text.size();) {
            if (m_text[i] == '"')
                i = passString(i + 1);
            else if (startsJsonNumber(m_text[i]))
                i = passNumber(i);
            else
                ++i;
        }
        return m_result;
    }

private:
    /// Both return where what they pass ends.
    std::size_t passString(std::size_t i)
    {
        while (i < m_text.size() && m_text[i] != '"')
            i += m_text[i] == '\\' ? passEscape(i) : 1;
        return i + 1;
    }

    std::size_t passNumber(std::size_t start)
    {
        std::size_t end = start;
        while (end < m_text.size() && isJsonNumberCharacter(m_text[end]))
            ++end;
        if (overflows(m_text.substr(start, end - start))) {
            replace(start, "null");
            std::fill(m_result.data() + start + 4, m_result.data() + end, ' ');
        }
        return end;
    }

    /// Returns the length of the escape, or of the pair of escapes.
    std::size_t passEscape(std::size_t i)
    {
        const std::optional<unsigned> unit = escapedUnit(m_text.substr(i));
        if (!unit)
            return 2;
        if (isHighSurrogate(*unit)) {
            const std::optional<unsigned> next = escapedUnit(m_text.substr(i + escapeLength));
            if (next && isLowSurrogate(*next))
                return 2 * escapeLength;
        }
        if (isHighSurrogate(*unit) || isLowSurrogate(*unit))
            replace(i, "\\ufffd");
        return escapeLength;
    }

    void replace(std::size_t start, std::string_view by) { std::ranges::copy(by, m_result.data() + start); }

    std::string_view m_text;
    QByteArray m_result;
};

} // namespace

QByteArray repairedJson(const QByteArray &document)
{
    return Repair(document).run();
}

} // namespace tickwise
