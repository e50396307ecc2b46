#include "market/JsonResponse.h"

#include "support/DecimalText.h"
#include "support/json/JsonNumber.h"

#include <algorithm>
#include <memory>

namespace tickwise {

namespace {

// The largest full list is about 1 MB.
constexpr qsizetype ordinaryBody = 2LL * 1024 * 1024;
constexpr std::size_t largestBody = 16UL * 1024 * 1024;
constexpr auto padding = static_cast<qsizetype>(simdjson::SIMDJSON_PADDING);
constexpr std::size_t largestIntegerDigits = 18; // any integer of so many digits has 64 bits

std::unique_ptr<simdjson::dom::parser> &threadParser()
{
    thread_local std::unique_ptr<simdjson::dom::parser> parser;
    if (!parser)
        parser = std::make_unique<simdjson::dom::parser>(largestBody);
    return parser;
}

/// Spare capacity after the body. By value: Qt tells it of a non-const array only, and a copy shares the bytes.
qsizetype spareCapacity(QByteArray body)
{
    return body.data_ptr().freeSpaceAtEnd();
}

simdjson::error_code parseInto(simdjson::dom::element &root, const QByteArray &body)
{
    // The parser reads a few bytes past the end; without the capacity for that it needs a copy.
    const bool needsCopy = spareCapacity(body) < padding;
    return threadParser()->parse(body.constData(), static_cast<std::size_t>(body.size()), needsCopy).get(root);
}

void appendBounded(QByteArray &json, std::string_view number)
{
    const auto size = static_cast<qsizetype>(number.size());
    const bool isInteger = number.find_first_of(".eE") == std::string_view::npos;
    const bool hasNegativeExponent = number.find('-', 1) != std::string_view::npos;
    const bool isSmall = isInteger ? number.size() <= largestIntegerDigits : hasNegativeExponent;
    if (isSmall || !isJsonNumber(number))
        json.append(number.data(), size);
    else if (!parseDecimal(number))
        json.append("0.0");
    else
        json.append(number.data(), size).append(isInteger ? ".0" : "");
}

/// The position after the JSON string that starts at `start`.
qsizetype endOfString(const QByteArray &json, qsizetype start)
{
    for (qsizetype at = start + 1; at < json.size(); ++at) {
        if (json[at] == '"')
            return at + 1;
        if (json[at] == '\\')
            ++at;
    }
    return json.size();
}

/// The position of the next string or number.
qsizetype endOfPunctuation(const QByteArray &json, qsizetype start)
{
    const auto startsValue = [](char c) { return c == '"' || startsJsonNumber(c); };
    return std::find_if(json.begin() + start, json.end(), startsValue) - json.begin();
}

} // namespace

QByteArray withBoundedNumbers(const QByteArray &json)
{
    QByteArray bounded;
    bounded.reserve(json.size() + json.size() / 8 + padding);
    for (qsizetype at = 0; at < json.size();) {
        const qsizetype start = at;
        if (startsJsonNumber(json[at])) {
            at = std::find_if_not(json.begin() + at, json.end(), isJsonNumberCharacter) - json.begin();
            appendBounded(bounded, {json.constData() + start, static_cast<std::size_t>(at - start)});
            continue;
        }
        at = json[at] == '"' ? endOfString(json, at) : endOfPunctuation(json, at);
        bounded.append(json.constData() + start, at - start);
    }
    return bounded;
}

Result<simdjson::dom::element> JsonResponseParser::parse(const QByteArray &body)
{
    m_isLarge = body.size() > ordinaryBody;
    simdjson::dom::element root;
    simdjson::error_code error = parseInto(root, body);
    // One number that it cannot hold makes the parser refuse the whole body, whether anything reads that number or not.
    if (error == simdjson::NUMBER_ERROR)
        error = parseInto(root, withBoundedNumbers(body));
    if (error != simdjson::SUCCESS)
        return failure(DecodingError{QString::fromUtf8(simdjson::error_message(error))});
    return root;
}

JsonResponseParser::~JsonResponseParser()
{
    if (m_isLarge)
        threadParser().reset();
}

} // namespace tickwise
