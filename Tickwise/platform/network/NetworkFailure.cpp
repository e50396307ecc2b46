#include "platform/network/NetworkFailure.h"

#include <array>
#include <cerrno>

namespace tickwise {

namespace {

// X509_V_ERR_CERT_NOT_YET_VALID and X509_V_ERR_CERT_HAS_EXPIRED of openssl/x509_vfy.h, which its ABI keeps.
constexpr long certificateNotYetValid = 9;
constexpr long certificateExpired = 10;

UrlErrorCode certificateErrorCode(long verifyResult)
{
    const bool isDateError = verifyResult == certificateNotYetValid || verifyResult == certificateExpired;
    return isDateError ? UrlErrorCode::serverCertificateHasBadDate : UrlErrorCode::serverCertificateUntrusted;
}

UrlErrorCode connectErrorCode(const NetworkFailure &failure)
{
    switch (failure.osError) {
    // The last address of a host may be unreachable, such as an IPv6 one, while its other addresses refused.
    case ENETUNREACH:
    case ENETDOWN:
    case EHOSTUNREACH:
        return failure.hasNetwork ? UrlErrorCode::cannotConnectToHost : UrlErrorCode::notConnectedToInternet;
    case ETIMEDOUT:
        return UrlErrorCode::timedOut;
    default:
        return UrlErrorCode::cannotConnectToHost;
    }
}

// libcurl has no result code for a connection that ends during the handshake, only these texts of its own and
// OpenSSL's.
UrlErrorCode handshakeErrorCode(const QString &text)
{
    const std::array texts{QStringLiteral("Recv failure"), QStringLiteral("Send failure"),
                           QStringLiteral(" SSL_connect: "), QStringLiteral("unexpected eof")};
    const auto isContained = [&text](const QString &part) { return text.contains(part); };
    return std::any_of(texts.begin(), texts.end(), isContained) ? UrlErrorCode::networkConnectionLost
                                                                : UrlErrorCode::secureConnectionFailed;
}

bool isRefusedByProxy(const NetworkFailure &failure)
{
    return failure.proxyStatus >= 300 && failure.status == 0;
}

} // namespace

UrlErrorCode urlErrorCode(const NetworkFailure &failure)
{
    switch (failure.result) {
    case CURLE_URL_MALFORMAT:
        return UrlErrorCode::badURL;
    case CURLE_COULDNT_RESOLVE_HOST:
        return failure.hasNetwork ? UrlErrorCode::cannotFindHost : UrlErrorCode::notConnectedToInternet;
    case CURLE_COULDNT_RESOLVE_PROXY:
        return UrlErrorCode::cannotFindHost;
    case CURLE_COULDNT_CONNECT:
        return connectErrorCode(failure);
    case CURLE_PROXY:
    case CURLE_FAILED_INIT:
        return UrlErrorCode::cannotConnectToHost;
    case CURLE_OPERATION_TIMEDOUT:
        return UrlErrorCode::timedOut;
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        return isRefusedByProxy(failure) ? UrlErrorCode::cannotConnectToHost : UrlErrorCode::networkConnectionLost;
    case CURLE_PEER_FAILED_VERIFICATION:
        return certificateErrorCode(failure.verifyResult);
    case CURLE_SSL_CONNECT_ERROR:
        return handshakeErrorCode(failure.text);
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ENGINE_NOTFOUND:
    case CURLE_SSL_ENGINE_SETFAILED:
    case CURLE_SSL_ENGINE_INITFAILED:
    case CURLE_USE_SSL_FAILED:
        return UrlErrorCode::secureConnectionFailed;
    case CURLE_FILESIZE_EXCEEDED:
    // libcurl's result for a header line above its own limit.
    case CURLE_OUT_OF_MEMORY:
        return UrlErrorCode::dataLengthExceedsMaximum;
    default:
        return UrlErrorCode::badServerResponse;
    }
}

} // namespace tickwise
