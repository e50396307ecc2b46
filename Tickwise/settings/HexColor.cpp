#include "settings/HexColor.h"

namespace tickwise {

namespace {

constexpr int hexDigits = 6;

std::optional<unsigned> hexDigit(QChar c)
{
    const char16_t code = c.unicode();
    if (code >= u'0' && code <= u'9')
        return code - u'0';
    if (code >= u'a' && code <= u'f')
        return code - u'a' + 10U;
    if (code >= u'A' && code <= u'F')
        return code - u'A' + 10U;
    return std::nullopt;
}

/// An unsigned number with an optional plus sign. Written out, because Qt's own conversion takes "0x" too.
std::optional<unsigned> parseHexNumber(QStringView text)
{
    if (text.startsWith(u'+'))
        text = text.sliced(1);
    unsigned value = 0;
    for (const QChar c : text) {
        const std::optional<unsigned> digit = hexDigit(c);
        if (!digit)
            return std::nullopt;
        value = value << 4 | *digit;
    }
    return value;
}

} // namespace

std::optional<QColor> colorFromHex(const QString &text)
{
    const QString trimmed = text.trimmed();
    const QStringView digits = trimmed.startsWith(u'#') ? QStringView(trimmed).sliced(1) : QStringView(trimmed);
    // Whatever parses is plain ASCII, so its code units are its characters.
    if (digits.size() != hexDigits)
        return std::nullopt;
    const std::optional<unsigned> value = parseHexNumber(digits);
    if (!value)
        return std::nullopt;
    return QColor::fromRgb(static_cast<int>(*value >> 16 & 255), static_cast<int>(*value >> 8 & 255),
                           static_cast<int>(*value & 255));
}

QString hexFromColor(const QColor &color)
{
    return color.name(QColor::HexRgb).toUpper();
}

} // namespace tickwise
