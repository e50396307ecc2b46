#include "market/JsonBody.h"

#include <memory>

namespace tickwise {

namespace {

// The largest full list is about 1 MB.
constexpr qsizetype ordinaryBody = 2LL * 1024 * 1024;
constexpr std::size_t largestBody = 16UL * 1024 * 1024;

std::unique_ptr<simdjson::dom::parser> &threadParser()
{
    thread_local std::unique_ptr<simdjson::dom::parser> parser;
    if (!parser)
        parser = std::make_unique<simdjson::dom::parser>(largestBody);
    return parser;
}

/// Bytes that belong to the body behind its end. A copy that shares the bytes is asked, as Qt asks a changeable one
/// only.
qsizetype roomBehind(QByteArray body)
{
    return body.data_ptr().freeSpaceAtEnd();
}

} // namespace

Result<simdjson::dom::element> BodyParser::parse(const QByteArray &data)
{
    m_unusual = data.size() > ordinaryBody;
    simdjson::dom::element root;
    // The parser reads a little past the end, which a body with room to spare allows without a copy.
    const bool needsCopy = roomBehind(data) < static_cast<qsizetype>(simdjson::SIMDJSON_PADDING);
    const simdjson::error_code error =
        threadParser()->parse(data.constData(), static_cast<std::size_t>(data.size()), needsCopy).get(root);
    if (error != simdjson::SUCCESS)
        return failure(DecodingError{QString::fromUtf8(simdjson::error_message(error))});
    return root;
}

BodyParser::~BodyParser()
{
    if (m_unusual)
        threadParser().reset();
}

WantedSymbols::WantedSymbols(const QStringList &symbols)
{
    m_bytes.reserve(symbols.size());
    for (const QString &symbol : symbols) {
        const QByteArray &bytes = m_bytes.emplaceBack(symbol.toUtf8());
        m_symbols.emplace(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())), symbol);
    }
}

const QString *WantedSymbols::baseOf(std::string_view pair, std::string_view suffix) const
{
    if (!pair.ends_with(suffix))
        return nullptr;
    pair.remove_suffix(suffix.size());
    const auto found = m_symbols.find(pair);
    return found == m_symbols.end() ? nullptr : &found->second;
}

} // namespace tickwise
