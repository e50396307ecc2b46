#pragma once

#include <string_view>

namespace tickwise {

/// Whether a number of a JSON document can begin with the character, outside of strings.
constexpr bool startsJsonNumber(char c)
{
    return (c >= '0' && c <= '9') || c == '-';
}

/// Whether the character can stand in a JSON number.
constexpr bool isJsonNumberCharacter(char c)
{
    return startsJsonNumber(c) || c == '+' || c == '.' || c == 'e' || c == 'E';
}

/// Whether the whole text follows the grammar of a JSON number.
bool isJsonNumber(std::string_view text);

} // namespace tickwise
