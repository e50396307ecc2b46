#include "ui/updates/appcast/VersionComparison.h"

#include <algorithm>
#include <vector>

namespace tickwise {

namespace {

constexpr qsizetype maximumVersionLength = 64;

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool isLetter(QChar character)
{
    const char16_t lower = character.unicode() | 0x20;
    return lower >= u'a' && lower <= u'z';
}

struct Part
{
    bool number = true;
    QString text; ///< a number without leading zeros, so that 0 is empty; or letters in lower case
};

Part partOf(QStringView text, bool number)
{
    if (!number)
        return {false, text.toString().toLower()};
    while (text.startsWith(u'0'))
        text = text.mid(1);
    return {true, text.toString()};
}

std::vector<Part> partsOf(QStringView version)
{
    version = version.left(version.indexOf(u'+') < 0 ? version.size() : version.indexOf(u'+'));
    std::vector<Part> parts;
    for (qsizetype at = 0; at < version.size();) {
        const auto belongsToRun = isDigit(version.at(at)) ? isDigit : isLetter;
        qsizetype end = at;
        while (end < version.size() && belongsToRun(version.at(end)))
            ++end;
        if (end > at)
            parts.push_back(partOf(version.mid(at, end - at), belongsToRun == isDigit));
        at = std::max(end, at + 1);
        while (at < version.size() && !isDigit(version.at(at)) && !isLetter(version.at(at)))
            ++at;
    }
    return parts;
}

std::weak_ordering compareParts(const Part &left, const Part &right)
{
    if (left.number != right.number)
        return left.number <=> right.number;
    if (left.number && left.text.size() != right.text.size())
        return left.text.size() <=> right.text.size();
    return left.text.compare(right.text) <=> 0;
}

} // namespace

bool isVersion(const QString &text)
{
    return !text.isEmpty() && text.size() <= maximumVersionLength && isDigit(text.front()) &&
           std::all_of(text.begin(), text.end(), [](QChar character) {
               return isDigit(character) || isLetter(character) || QStringLiteral(".-_+~").contains(character);
           });
}

std::weak_ordering compareVersions(const QString &left, const QString &right)
{
    const std::vector<Part> lefts = partsOf(left);
    const std::vector<Part> rights = partsOf(right);
    for (std::size_t i = 0; i < std::max(lefts.size(), rights.size()); ++i) {
        const Part missing;
        const auto order = compareParts(i < lefts.size() ? lefts[i] : missing, i < rights.size() ? rights[i] : missing);
        if (std::is_neq(order))
            return order;
    }
    return std::weak_ordering::equivalent;
}

} // namespace tickwise
