#include "platform/network/CurlTransfer.h"

#include <QDirIterator>
#include <QFile>

#include <cstring>
#include <initializer_list>
#include <new>

namespace tickwise {

namespace {

constexpr qsizetype maximumHeaderBytes = qsizetype{256} * 1024;
constexpr long readBufferBytes = 64L * 1024;
constexpr long idleConnectionSeconds = 118;

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

// Compressed bodies are asked for here and inflated under the receiver's limits. Some content networks refuse a request
// without a user agent.
curl_slist *requestHeaders(bool acceptsCompression)
{
    static const HeaderList compressed{"Accept-Encoding: gzip", "Connection: keep-alive", "User-Agent: Mozilla/5.0"};
    static const HeaderList identity{"Accept-Encoding: identity", "Connection: keep-alive", "User-Agent: Mozilla/5.0"};
    return acceptsCompression ? compressed.get() : identity.get();
}

// The folder in which OpenSSL finds an authority by the hash of its name. The file that holds all of them is read and
// parsed as a whole for each new connection.
const char *hashedAuthorities()
{
    const char *const folder = curl_version_info(CURLVERSION_NOW)->capath;
    if (!folder)
        return nullptr;
    const QStringList hashed{QStringLiteral("[0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f].0")};
    return QDirIterator(QFile::decodeName(folder), hashed, QDir::NoFilter).hasNext() ? folder : nullptr;
}

/// Nothing may be thrown through libcurl: where memory is short the exchange ends.
template<class Condition>
bool holds(const Condition &condition)
{
    try {
        return condition();
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

CurlTransfer::CurlTransfer(CURL *easy, const CurlRequest &request, ExchangeReceiver &receiver)
    : m_easy(easy)
    , m_receiver(&receiver)
{
    set(CURLOPT_PRIVATE, this);
    set(CURLOPT_ERRORBUFFER, m_errorText.data());
    set(CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_URL, request.url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment).constData());
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
    set(CURLOPT_HTTPHEADER, requestHeaders(request.acceptsCompression));
    // Also an empty one is said, so that libcurl does not look into the environment itself.
    set(CURLOPT_PROXY, request.proxy.constData());
    set(CURLOPT_NOPROXY, "");
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_BUFFERSIZE, readBufferBytes);
    set(CURLOPT_MAXAGE_CONN, idleConnectionSeconds);
    set(CURLOPT_NOSIGNAL, 1L);
    // A request that ends while its host is looked up leaves the lookup behind instead of waiting for it.
    set(CURLOPT_QUICK_EXIT, 1L);
    prepareTrust(request.authorities);
}

CurlTransfer::~CurlTransfer()
{
    curl_easy_reset(m_easy);
}

void CurlTransfer::prepareTrust(const QByteArray &authorities)
{
    set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    if (!authorities.isEmpty()) {
        curl_blob blob{const_cast<char *>(authorities.constData()), static_cast<size_t>(authorities.size()),
                       CURL_BLOB_COPY};
        set(CURLOPT_CAINFO_BLOB, &blob);
        set(CURLOPT_CAPATH, static_cast<const char *>(nullptr));
        return;
    }
    static const char *const folder = hashedAuthorities();
    if (!folder)
        return;
    set(CURLOPT_CAPATH, folder);
    set(CURLOPT_CAINFO, static_cast<const char *>(nullptr));
    set(CURLOPT_PROXY_CAPATH, folder);
    set(CURLOPT_PROXY_CAINFO, static_cast<const char *>(nullptr));
}

CurlTransfer *CurlTransfer::of(CURL *easy)
{
    void *exchange = nullptr;
    curl_easy_getinfo(easy, CURLINFO_PRIVATE, &exchange);
    return static_cast<CurlTransfer *>(exchange);
}

// The size of an element is always 1.
size_t CurlTransfer::onHeader(const char *bytes, size_t /*size*/, size_t count, void *exchange)
{
    auto *const self = static_cast<CurlTransfer *>(exchange);
    const auto length = static_cast<qsizetype>(count);
    const auto read = [&] { return self->m_receiver && self->readHeaderLine({bytes, length}) && self->m_receiver; };
    return holds(read) ? count : 0;
}

size_t CurlTransfer::onBody(const char *bytes, size_t /*size*/, size_t count, void *exchange)
{
    auto *const self = static_cast<CurlTransfer *>(exchange);
    const auto length = static_cast<qint64>(count);
    const auto take = [&] { return self->m_receiver && self->m_receiver->takeBody(bytes, length) && self->m_receiver; };
    return holds(take) ? count : 0;
}

bool CurlTransfer::readHeaderLine(QByteArrayView line)
{
    m_headerBytes += line.size();
    if (m_headerBytes > maximumHeaderBytes)
        return false;
    // Trailers behind a body in pieces say nothing that anybody asks for.
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
    // Announcements such as "100 Continue" are followed by another head.
    if (status < 200)
        return true;
    m_headIsWhole = true;
    m_head.status = static_cast<int>(status);
    return m_receiver->takeHead(std::move(m_head));
}

// libcurl's longer words for some results name milliseconds and bytes: no two of them would be the same cause.
QString CurlTransfer::words(CURLcode result, int osError) const
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
    long number = 0;
    const auto info = [this, &number](CURLINFO what) {
        return curl_easy_getinfo(m_easy, what, &number) == CURLE_OK ? number : 0;
    };
    failure.verifyResult = info(CURLINFO_SSL_VERIFYRESULT);
    failure.osError = static_cast<int>(info(CURLINFO_OS_ERRNO));
    failure.proxyStatus = static_cast<int>(info(CURLINFO_HTTP_CONNECTCODE));
    failure.status = static_cast<int>(info(CURLINFO_RESPONSE_CODE));
    failure.text = words(result, failure.osError);
    return failure;
}

} // namespace tickwise
