#pragma once

#include <QString>

#include <string_view>

namespace tickwise {

/// The first 200 characters of a text that a server sent, for errors and the log; characters that do not print are
/// escaped as "\u001b".
QString excerpt(const QString &text);

/// The same of UTF-8.
QString excerpt(std::string_view text);

} // namespace tickwise
