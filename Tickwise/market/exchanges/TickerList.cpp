#include "market/exchanges/TickerList.h"

#include "support/Excerpt.h"

#include <QUrlQuery>

#include <cmath>

namespace tickwise {

std::optional<HttpRequest> tickerRequest(const QString &address, const QString &key, const QString &encodedValue)
{
    QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        return std::nullopt;
    if (!key.isEmpty()) {
        QUrlQuery query;
        query.addQueryItem(key, encodedValue);
        url.setQuery(query);
    }
    HttpRequest request;
    request.url = url;
    return request;
}

tl::unexpected<Error> exchangeFailure(std::string_view code)
{
    return failure(
        UrlLoadingError{UrlErrorCode::badServerResponse, QStringLiteral("the exchange reports code ") + excerpt(code)});
}

std::optional<double> finitePercent(double percent)
{
    return std::isfinite(percent) ? std::optional(percent) : std::nullopt;
}

WantedSymbols::WantedSymbols(const QStringList &symbols)
{
    m_bytes.reserve(symbols.size());
    for (const QString &symbol : symbols) {
        const QByteArray &bytes = m_bytes.emplaceBack(symbol.toUtf8());
        const std::string_view key(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        m_symbols.emplace(key, symbol);
        m_fingerprints.set(fingerprint(key));
    }
}

std::size_t WantedSymbols::fingerprint(std::string_view symbol)
{
    if (symbol.empty())
        return 0;
    const auto byte = [](char c) { return static_cast<std::size_t>(static_cast<unsigned char>(c)); };
    return (byte(symbol.front()) * 31 + byte(symbol.back()) * 5 + symbol.size()) % 1024;
}

const QString *WantedSymbols::baseOf(std::string_view pair, std::string_view suffix) const
{
    if (!pair.ends_with(suffix))
        return nullptr;
    pair.remove_suffix(suffix.size());
    if (!m_fingerprints.test(fingerprint(pair)))
        return nullptr;
    const auto found = m_symbols.find(pair);
    return found == m_symbols.end() ? nullptr : &found->second;
}

} // namespace tickwise
