#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace tickwise {

/// All cases of an enum in the order of its picker. Each enum that is stored by raw text specializes it.
template<class Enum>
std::vector<Enum> allCases();

/// The case that is stored as `raw`; none for any other text. Case-sensitive.
template<class Enum>
std::optional<Enum> fromRawValue(const QString &raw)
{
    for (const Enum value : allCases<Enum>()) {
        if (rawValue(value) == raw)
            return value;
    }
    return std::nullopt;
}

} // namespace tickwise
