#pragma once

#include <QString>

#include <compare>

namespace tickwise {

/// Whether the text can be compared as a version: it starts with an ASCII digit, has at most 64 characters, and only
/// letters, digits and ". - _ + ~" of ASCII.
bool isVersion(const QString &text);

/// Compares two versions part by part: runs of digits as numbers of any length (1.10 is newer than 1.9), runs of
/// letters alphabetically without case. A part that is missing counts as 0, and letters are older than any number, so
/// that 1.0b1 is older than 1.0, and 1.0 equals 1.0.0. What follows a "+" does not count.
std::weak_ordering compareVersions(const QString &left, const QString &right);

} // namespace tickwise
