#include "support/Excerpt.h"

#include <QList>

namespace tickwise {

namespace {

constexpr qsizetype maximumCharacters = 200;
constexpr std::size_t longestCharacter = 4; // bytes in UTF-8

QString printable(char32_t character)
{
    if (QChar::isPrint(character))
        return QString::fromUcs4(&character, 1);
    return QStringLiteral("\\u%1").arg(static_cast<uint>(character), 4, 16, QLatin1Char('0'));
}

} // namespace

QString excerpt(const QString &text)
{
    // A character takes one or two units.
    const QList<uint> characters = text.left(2 * maximumCharacters).toUcs4().mid(0, maximumCharacters);
    QString result;
    for (const uint character : characters)
        result += printable(character);
    return result;
}

QString excerpt(std::string_view text)
{
    const std::string_view start = text.substr(0, longestCharacter * maximumCharacters);
    return excerpt(QString::fromUtf8(start.data(), static_cast<qsizetype>(start.size())));
}

} // namespace tickwise
