#pragma once

#include "market/HttpClient.h"
#include "platform/network/NetworkFailure.h"

#include <array>

namespace tickwise {

/// What an exchange asks for and how.
struct CurlRequest
{
    QUrl url;
    QByteArray proxy;       ///< as libcurl takes it; empty: none
    QByteArray authorities; ///< PEM; empty: the system's
    bool acceptsCompression = true;
};

/// Is told what comes in. Its functions may drop the exchange and everything around it.
class ExchangeReceiver
{
public:
    /// Status and headers. False ends the exchange.
    virtual bool takeHead(HttpResponse head) = 0;
    /// Bytes of the body as they were sent. False ends the exchange.
    virtual bool takeBody(const char *bytes, qint64 count) = 0;
    /// The last call: the answer is whole, or what failed. `hasNetwork` is left to the receiver.
    virtual void takeEnd(NetworkFailure failure) = 0;

protected:
    ExchangeReceiver() = default;
    ~ExchangeReceiver() = default;
};

/// One GET over libcurl, without redirects. A `CurlSession` runs it and outlives it.
class CurlTransfer
{
public:
    /// Prepares `easy`, which is fresh or reset and stays somebody else's.
    CurlTransfer(CURL *easy, const CurlRequest &request, ExchangeReceiver &receiver);
    ~CurlTransfer();
    CurlTransfer(const CurlTransfer &) = delete;
    CurlTransfer &operator=(const CurlTransfer &) = delete;

    /// The exchange that `easy` was prepared for.
    static CurlTransfer *of(CURL *easy);

    CURL *easy() const { return m_easy; }
    ExchangeReceiver *receiver() const { return m_receiver; }
    /// Whether libcurl took every option. Without that the exchange must not be started.
    bool isPrepared() const { return m_isPrepared; }
    /// Tells the receiver nothing more; the next piece that comes in ends the exchange.
    void forgetReceiver() { m_receiver = nullptr; }
    /// What libcurl knows after it ended with `result`.
    NetworkFailure failure(CURLcode result) const;

private:
    static size_t onHeader(const char *bytes, size_t size, size_t count, void *exchange);
    static size_t onBody(const char *bytes, size_t size, size_t count, void *exchange);
    void prepareTrust(const QByteArray &authorities);
    bool readHeaderLine(QByteArrayView line);
    void addHeader(QByteArrayView line);
    bool finishHead();
    QString words(CURLcode result, int osError) const;
    template<class Value>
    void set(CURLoption option, Value value);

    CURL *m_easy;
    ExchangeReceiver *m_receiver;
    HttpResponse m_head;
    bool m_isPrepared = true;
    bool m_headIsWhole = false;
    qsizetype m_headerBytes = 0;
    std::array<char, CURL_ERROR_SIZE> m_errorText{};
};

} // namespace tickwise
