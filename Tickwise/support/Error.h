#pragma once

#include "support/Clock.h"

#include <QString>

#include <optional>
#include <variant>
#include <vector>

namespace tickwise {

/// Why a request failed. The names are those of the usual URL-loading error codes.
enum class UrlErrorCode
{
    badURL,                      ///< no URL could be formed, or the request asks for nothing
    badServerResponse,           ///< a status outside 200-299 or an answer that reports a failure
    cannotLoadFromNetwork,       ///< every provider failed or was skipped; `causes` says why
    zeroByteResource,            ///< an answer without any of the requested values
    cannotParseResponse,         ///< an answer that lacks a requested value, or holds an impossible one
    dataLengthExceedsMaximum,    ///< more bytes than the request allows
    redirectRefused,             ///< a redirect to an address that the request does not allow
    cancelled,                   ///< the service was destroyed before the answer
    timedOut,                    ///< no byte within the request's time-out, or not finished by its deadline
    cannotFindHost,              ///< name resolution failed
    cannotConnectToHost,         ///< refused or unreachable
    networkConnectionLost,       ///< the connection broke before the answer was whole
    notConnectedToInternet,      ///< the machine has no network
    secureConnectionFailed,      ///< TLS failed
    serverCertificateHasBadDate, ///< TLS refused because a certificate is not valid at this date: it has expired, or
                                 ///< the clock is wrong
    serverCertificateUntrusted,  ///< TLS refused for another reason in the certificate
};

/// The cause of a failed attempt as the user is told it; computed by `failureReason`.
enum class FailureReason
{
    offline,
    hostNotFound,
    unreachable,
    timedOut,
    clockWrong,
    secureConnectionFailed,
    regionBlocked,
    rateLimited,
    badAnswer,
    cancelled,
};

/// The failure of one provider: its name, the reason and, for a rate limit or ban, its end.
struct ProviderFailure
{
    QString provider;
    FailureReason reason = FailureReason::badAnswer;
    std::optional<TimePoint> until;
    bool operator==(const ProviderFailure &) const = default;
};

/// A URL-loading failure.
struct UrlLoadingError
{
    UrlErrorCode code = UrlErrorCode::badServerResponse;
    QString detail;                      ///< a description of the cause, for the log
    int httpStatus = 0;                  ///< 0: there was no HTTP answer
    std::vector<ProviderFailure> causes; ///< for an operation over several providers: their failures, in order
    bool operator==(const UrlLoadingError &) const = default;
};

/// A crypto exchange that asks for a back-off or refuses the request.
struct TickerProviderError
{
    enum class Kind
    {
        rateLimited,
        requestRejected
    };
    Kind kind = Kind::requestRejected;
    std::optional<double> retryAfter; ///< seconds, when the exchange said so (or the default for status 403)
    int httpStatus = 0;
    bool blockPage = false; ///< status 403 with a page instead of JSON: the region is refused
    bool operator==(const TickerProviderError &) const = default;
};

/// A rate service that asks for a back-off.
struct ExchangeRateProviderError
{
    double retryAfter = 0; ///< seconds: what the service said, or the default
    int httpStatus = 0;
    bool operator==(const ExchangeRateProviderError &) const = default;
};

/// A document that does not have its expected form.
struct DecodingError
{
    QString text;
    std::optional<qint64> offset; ///< byte offset, when the decoder knows it
    bool operator==(const DecodingError &) const = default;
};

/// A file or store that could not be read or written.
struct FileError
{
    QString path;
    QString text;
    bool operator==(const FileError &) const = default;
};

/// A coin catalog that cannot be used.
struct CatalogError
{
    QString message;               ///< when there is one cause
    std::vector<QString> problems; ///< when rules were broken: every one of them, in the order of the rules
    bool operator==(const CatalogError &) const = default;
};

/// A request that a service of the desktop did not fulfill.
struct DesktopServiceError
{
    enum class Kind
    {
        noMessageBus,
        noService,
        timedOut,
        refused
    };
    Kind kind = Kind::refused;
    QString text; ///< the message of the bus or the service
    bool operator==(const DesktopServiceError &) const = default;
};

/// Every failure of an operation of this program.
using Error = std::variant<UrlLoadingError, TickerProviderError, ExchangeRateProviderError, DecodingError, FileError,
                           CatalogError, DesktopServiceError>;

/// One English line about the error: the public argument of log lines.
QString description(const Error &error);

} // namespace tickwise
