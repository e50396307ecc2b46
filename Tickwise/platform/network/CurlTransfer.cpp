#include "platform/network/CurlTransfer.h"

#include <cstring>
#include <initializer_list>
#include <new>

namespace tickwise {

namespace {

constexpr qsizetype maximumHeaderBytes = qsizetype{256} * 1024;
constexpr long readBufferBytes = 64L * 1024;
constexpr long idleConnectionSeconds = 118;
constexpr long switchingProtocols = 101;

class HeaderList
{
public:
    HeaderList(std::initializer_list<const char *> lines)
    {
        for (const char *line : lines)
            m_first = curl_slist_append(m_first, line);
    }
    ~HeaderList() { curl_slist_free_all(m_first); }
    HeaderList(const HeaderList &) = delete;
    HeaderList &operator=(const HeaderList &) = delete;
    curl_slist *get() const { return m_first; }

private:
    curl_slist *m_first = nullptr;
};

// Compressed bodies are asked for here and inflated by the receiver, which bounds them. Some content delivery networks
// refuse a request without a user agent.
curl_slist *requestHeaders(bool acceptsCompression)
{
    static const HeaderList compressed{"Accept-Encoding: gzip", "Connection: keep-alive", "User-Agent: Mozilla/5.0"};
    static const HeaderList identity{"Accept-Encoding: identity", "Connection: keep-alive", "User-Agent: Mozilla/5.0"};
    return acceptsCompression ? compressed.get() : identity.get();
}

/// `isFolderComplete`, read once for the system's own files.
bool isKnownComplete(const AuthorityFiles &files)
{
    static const AuthorityFiles system = systemAuthorityFiles();
    if (files != system)
        return isFolderComplete(files);
    static const bool isSystemComplete = isFolderComplete(system);
    return isSystemComplete;
}

/// Calls a function for libcurl, which no exception may pass: out of memory ends the transfer.
template<class Function>
bool callWithoutThrowing(const Function &function)
{
    try {
        return function();
    } catch (const std::bad_alloc &) {
        return false;
    }
}

} // namespace

template<class Value>
void CurlTransfer::set(CURLoption option, Value value)
{
    m_isPrepared = curl_easy_setopt(m_easy, option, value) == CURLE_OK && m_isPrepared;
}

CurlTransfer::CurlTransfer(CURL *easy, const TransferRequest &request, TransferReceiver &receiver)
    : m_easy(easy)
    , m_receiver(&receiver)
{
    prepareCallbacks();
    set(CURLOPT_URL, request.url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment).constData());
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_HTTPHEADER, requestHeaders(request.acceptsCompression));
    // An empty proxy is set too: without one libcurl reads the environment.
    set(CURLOPT_PROXY, request.proxy.constData());
    set(CURLOPT_NOPROXY, "");
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_BUFFERSIZE, readBufferBytes);
    set(CURLOPT_MAXAGE_CONN, idleConnectionSeconds);
    set(CURLOPT_NOSIGNAL, 1L);
    // A request that ends during the lookup of its host abandons the lookup's thread instead of waiting for it.
    set(CURLOPT_QUICK_EXIT, 1L);
    prepareTrust(request);
}

void CurlTransfer::prepareCallbacks()
{
    set(CURLOPT_PRIVATE, this);
    set(CURLOPT_ERRORBUFFER, m_errorText.data());
    set(CURLOPT_RESOLVER_START_FUNCTION, &CurlTransfer::onLookup);
    set(CURLOPT_RESOLVER_START_DATA, this);
    set(CURLOPT_SOCKOPTFUNCTION, &CurlTransfer::onSocket);
    set(CURLOPT_SOCKOPTDATA, this);
    set(CURLOPT_PREREQFUNCTION, &CurlTransfer::onRequest);
    set(CURLOPT_PREREQDATA, this);
    set(CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
    set(CURLOPT_WRITEDATA, this);
}

CurlTransfer::~CurlTransfer()
{
    curl_easy_reset(m_easy);
}

void CurlTransfer::prepareTrust(const TransferRequest &request)
{
    set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    const QByteArray &authorities = request.authorities;
    if (!authorities.isEmpty()) {
        curl_blob blob{const_cast<char *>(authorities.constData()), static_cast<size_t>(authorities.size()),
                       CURL_BLOB_COPY};
        set(CURLOPT_CAINFO_BLOB, &blob);
        set(CURLOPT_CAPATH, static_cast<const char *>(nullptr));
        return;
    }
    const auto path = [](const QByteArray &file) { return file.isEmpty() ? nullptr : file.constData(); };
    const AuthorityFiles &files = request.systemAuthorities;
    // The bundle is read and parsed as a whole for each new connection.
    const char *const bundle = isKnownComplete(files) ? nullptr : path(files.bundle);
    set(CURLOPT_CAPATH, path(files.folder));
    set(CURLOPT_CAINFO, bundle);
    set(CURLOPT_PROXY_CAPATH, path(files.folder));
    set(CURLOPT_PROXY_CAINFO, bundle);
}

CurlTransfer *CurlTransfer::of(CURL *easy)
{
    void *transfer = nullptr;
    curl_easy_getinfo(easy, CURLINFO_PRIVATE, &transfer);
    return static_cast<CurlTransfer *>(transfer);
}

bool CurlTransfer::takePhase(TransferPhase phase)
{
    if (m_receiver)
        m_receiver->takePhase(phase);
    return m_receiver != nullptr;
}

// A new connection begins with a lookup, of an address as well, unless libcurl remembers the answer.
int CurlTransfer::onLookup(void * /*resolver*/, void * /*reserved*/, void *transfer)
{
    return static_cast<CurlTransfer *>(transfer)->takePhase(TransferPhase::lookup) ? 0 : 1;
}

int CurlTransfer::onSocket(void *transfer, curl_socket_t /*socket*/, curlsocktype /*purpose*/)
{
    return static_cast<CurlTransfer *>(transfer)->takePhase(TransferPhase::network) ? CURL_SOCKOPT_OK
                                                                                    : CURL_SOCKOPT_ERROR;
}

// The request is about to be sent. Over a connection that is reused, this is the first that is heard of the transfer.
int CurlTransfer::onRequest(void *transfer, char * /*primary*/, char * /*local*/, int /*port*/, int /*localPort*/)
{
    return static_cast<CurlTransfer *>(transfer)->takePhase(TransferPhase::network) ? CURL_PREREQFUNC_OK
                                                                                    : CURL_PREREQFUNC_ABORT;
}

// The size of an element is always 1.
size_t CurlTransfer::onHeader(const char *bytes, size_t /*size*/, size_t count, void *transfer)
{
    auto *const self = static_cast<CurlTransfer *>(transfer);
    const auto length = static_cast<qsizetype>(count);
    const auto read = [&] { return self->m_receiver && self->readHeaderLine({bytes, length}) && self->m_receiver; };
    return callWithoutThrowing(read) ? count : 0;
}

size_t CurlTransfer::onBody(const char *bytes, size_t /*size*/, size_t count, void *transfer)
{
    auto *const self = static_cast<CurlTransfer *>(transfer);
    const auto length = static_cast<qint64>(count);
    const auto take = [&] { return self->m_receiver && self->m_receiver->takeBody(bytes, length) && self->m_receiver; };
    return callWithoutThrowing(take) ? count : 0;
}

bool CurlTransfer::readHeaderLine(QByteArrayView line)
{
    m_headerBytes += line.size();
    if (m_headerBytes > maximumHeaderBytes)
        return false;
    // Trailers of a chunked body are not read.
    if (m_headIsWhole)
        return true;
    if (line.startsWith("HTTP/")) {
        m_head = {};
        return true;
    }
    const QByteArrayView text = line.trimmed();
    if (text.isEmpty())
        return finishHead();
    if (line.front() == ' ' || line.front() == '\t') {
        if (!m_head.headers.empty())
            m_head.headers.back().second += ' ' + text.toByteArray();
        return true;
    }
    addHeader(text);
    return true;
}

void CurlTransfer::addHeader(QByteArrayView line)
{
    const qsizetype colon = line.indexOf(':');
    if (colon > 0)
        m_head.headers.emplace_back(line.first(colon).trimmed().toByteArray(),
                                    line.sliced(colon + 1).trimmed().toByteArray());
}

bool CurlTransfer::finishHead()
{
    long status = 0;
    curl_easy_getinfo(m_easy, CURLINFO_RESPONSE_CODE, &status);
    // Nothing that HTTP describes follows a change of protocol, and the connection may stay open.
    m_isProtocolSwitched = status == switchingProtocols;
    if (m_isProtocolSwitched)
        return false;
    // Interim answers such as "100 Continue" are followed by another head.
    if (status < 200)
        return true;
    m_headIsWhole = true;
    m_head.status = static_cast<int>(status);
    return m_receiver->takeHead(std::move(m_head));
}

// libcurl's own text of some results names milliseconds and bytes, so that one lasting failure would seem new each
// time.
QString CurlTransfer::errorText(CURLcode result, int osError) const
{
    if (result == CURLE_COULDNT_CONNECT && osError != 0)
        return QString::fromLocal8Bit(std::strerror(osError));
    const bool isBrief = result == CURLE_COULDNT_CONNECT || result == CURLE_PARTIAL_FILE || m_errorText.front() == 0;
    return QString::fromUtf8(isBrief ? curl_easy_strerror(result) : m_errorText.data());
}

NetworkFailure CurlTransfer::failure(CURLcode result) const
{
    NetworkFailure failure;
    failure.result = result;
    if (m_headerBytes > maximumHeaderBytes) {
        failure.result = CURLE_FILESIZE_EXCEEDED;
        failure.text = QStringLiteral("more than %1 bytes of headers").arg(maximumHeaderBytes);
        return failure;
    }
    if (m_isProtocolSwitched) {
        failure.result = CURLE_WEIRD_SERVER_REPLY;
        failure.text = QStringLiteral("status %1 without a request for it").arg(switchingProtocols);
        return failure;
    }
    long number = 0;
    const auto info = [this, &number](CURLINFO what) {
        return curl_easy_getinfo(m_easy, what, &number) == CURLE_OK ? number : 0;
    };
    failure.verifyResult = info(CURLINFO_SSL_VERIFYRESULT);
    failure.osError = static_cast<int>(info(CURLINFO_OS_ERRNO));
    failure.proxyStatus = static_cast<int>(info(CURLINFO_HTTP_CONNECTCODE));
    failure.status = static_cast<int>(info(CURLINFO_RESPONSE_CODE));
    failure.text = errorText(result, failure.osError);
    return failure;
}

} // namespace tickwise
