#pragma once

#include "market/HttpClient.h"
#include "platform/network/NetworkFailure.h"
#include "platform/network/SystemAuthorities.h"

#include <array>

namespace tickwise {

/// What a transfer asks for and how.
struct TransferRequest
{
    QUrl url;
    QByteArray proxy;       ///< as libcurl takes it; empty: none
    QByteArray authorities; ///< PEM; empty: the system's
    AuthorityFiles systemAuthorities;
    bool acceptsCompression = true;
};

/// What a transfer is busy with after it has waited for its turn.
enum class TransferPhase
{
    lookup,  ///< the name of the host, or of the proxy, is looked up
    network, ///< a connection is opened or reused, and the server is to answer
};

/// Receives what a transfer brings. Each function may drop the transfer and everything around it.
class TransferReceiver
{
public:
    /// A phase begins. A transfer that opens a second connection comes through its phases again.
    virtual void takePhase(TransferPhase phase) = 0;
    /// Status and headers. False ends the transfer.
    virtual bool takeHead(HttpResponse head) = 0;
    /// Bytes of the body as they were sent. False ends the transfer.
    virtual bool takeBody(const char *bytes, qint64 count) = 0;
    /// The last call: the answer is whole, or what failed. `hasNetwork` is left to the receiver.
    virtual void takeEnd(NetworkFailure failure) = 0;

protected:
    TransferReceiver() = default;
    ~TransferReceiver() = default;
};

/// One HTTP round trip over libcurl: a GET without redirects. A `CurlSession` runs it and outlives it.
class CurlTransfer
{
public:
    /// Prepares `easy`, which is new or reset and owned by the caller.
    CurlTransfer(CURL *easy, const TransferRequest &request, TransferReceiver &receiver);
    ~CurlTransfer();
    CurlTransfer(const CurlTransfer &) = delete;
    CurlTransfer &operator=(const CurlTransfer &) = delete;

    /// The transfer that `easy` was prepared for.
    static CurlTransfer *of(CURL *easy);

    CURL *easy() const { return m_easy; }
    TransferReceiver *receiver() const { return m_receiver; }
    /// Whether libcurl took every option. A transfer that is not prepared must not be started.
    bool isPrepared() const { return m_isPrepared; }
    /// Calls the receiver no more; the next callback of libcurl ends the transfer.
    void forgetReceiver() { m_receiver = nullptr; }
    /// What libcurl knows after it ended with `result`.
    NetworkFailure failure(CURLcode result) const;

private:
    static size_t onHeader(const char *bytes, size_t size, size_t count, void *transfer);
    static size_t onBody(const char *bytes, size_t size, size_t count, void *transfer);
    static int onLookup(void *resolver, void *reserved, void *transfer);
    static int onSocket(void *transfer, curl_socket_t socket, curlsocktype purpose);
    static int onRequest(void *transfer, char *, char *, int, int);
    void prepareCallbacks();
    void prepareTrust(const TransferRequest &request);
    bool takePhase(TransferPhase phase);
    bool readHeaderLine(QByteArrayView line);
    void addHeader(QByteArrayView line);
    bool finishHead();
    QString errorText(CURLcode result, int osError) const;
    template<class Value>
    void set(CURLoption option, Value value);

    CURL *m_easy;
    TransferReceiver *m_receiver;
    HttpResponse m_head;
    bool m_isPrepared = true;
    bool m_headIsWhole = false;
    bool m_isProtocolSwitched = false;
    qsizetype m_headerBytes = 0;
    std::array<char, CURL_ERROR_SIZE> m_errorText{};
};

} // namespace tickwise
