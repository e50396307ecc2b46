#include "support/json/JsonNumber.h"

#include <algorithm>

namespace tickwise {

namespace {

/// How many digits stand at a place of the text.
std::size_t digitsAt(std::string_view text, std::size_t at)
{
    const std::string_view rest = text.substr(std::min(at, text.size()));
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return static_cast<std::size_t>(std::ranges::find_if_not(rest, isDigit) - rest.begin());
}

} // namespace

bool isJsonNumber(std::string_view text)
{
    std::size_t at = text.starts_with('-') ? 1 : 0;
    const std::size_t whole = digitsAt(text, at);
    if (whole == 0 || (whole > 1 && text[at] == '0'))
        return false;
    at += whole;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fraction = digitsAt(text, ++at);
        if (fraction == 0)
            return false;
        at += fraction;
    }
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-'))
            ++at;
        const std::size_t exponent = digitsAt(text, at);
        if (exponent == 0)
            return false;
        at += exponent;
    }
    return at == text.size();
}

} // namespace tickwise
