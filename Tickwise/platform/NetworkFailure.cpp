#include "platform/NetworkFailure.h"

#include <algorithm>

namespace tickwise {

namespace {

bool isDateError(const QSslError &error)
{
    return error.error() == QSslError::CertificateExpired || error.error() == QSslError::CertificateNotYetValid;
}

bool isBesideTheCertificate(const QSslError &error)
{
    return error.error() == QSslError::NoSslSupport || error.error() == QSslError::NoPeerCertificate ||
           error.error() == QSslError::UnspecifiedError;
}

UrlErrorCode handshakeErrorCode(const QList<QSslError> &errors)
{
    if (std::all_of(errors.begin(), errors.end(), isBesideTheCertificate))
        return UrlErrorCode::secureConnectionFailed;
    return std::all_of(errors.begin(), errors.end(), isDateError) ? UrlErrorCode::serverCertificateHasBadDate
                                                                  : UrlErrorCode::serverCertificateUntrusted;
}

// An unreachable network has no error of its own.
UrlErrorCode unknownErrorCode(const NetworkFailure &failure)
{
    if (failure.status != 0)
        return UrlErrorCode::networkConnectionLost;
    return failure.hasNetwork ? UrlErrorCode::cannotConnectToHost : UrlErrorCode::notConnectedToInternet;
}

} // namespace

bool isStatusOnly(QNetworkReply::NetworkError error, int status)
{
    const bool isAboutTheAnswer = error >= QNetworkReply::ContentAccessDenied;
    return status >= 400 &&
           (isAboutTheAnswer || (status == 407 && error == QNetworkReply::ProxyAuthenticationRequiredError));
}

UrlErrorCode urlErrorCode(const NetworkFailure &failure)
{
    switch (failure.error) {
    case QNetworkReply::HostNotFoundError:
        return failure.hasNetwork ? UrlErrorCode::cannotFindHost : UrlErrorCode::notConnectedToInternet;
    case QNetworkReply::ProxyNotFoundError:
        return UrlErrorCode::cannotFindHost;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::BackgroundRequestNotAllowedError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyAuthenticationRequiredError:
    case QNetworkReply::UnknownProxyError:
        return UrlErrorCode::cannotConnectToHost;
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::ProxyConnectionClosedError:
        return UrlErrorCode::networkConnectionLost;
    case QNetworkReply::NetworkSessionFailedError:
        return UrlErrorCode::notConnectedToInternet;
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError:
    case QNetworkReply::ProxyTimeoutError:
        return UrlErrorCode::timedOut;
    case QNetworkReply::SslHandshakeFailedError:
        return handshakeErrorCode(failure.sslErrors);
    case QNetworkReply::TooManyRedirectsError:
    case QNetworkReply::InsecureRedirectError:
        return UrlErrorCode::redirectRefused;
    case QNetworkReply::ProtocolUnknownError:
        return UrlErrorCode::badURL;
    case QNetworkReply::UnknownContentError:
        return UrlErrorCode::cannotParseResponse;
    case QNetworkReply::UnknownNetworkError:
        return unknownErrorCode(failure);
    default:
        return UrlErrorCode::badServerResponse;
    }
}

} // namespace tickwise
