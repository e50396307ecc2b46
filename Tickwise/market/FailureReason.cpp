#include "market/FailureReason.h"

#include <algorithm>
#include <array>

namespace tickwise {

namespace {

constexpr int unavailableForLegalReasons = 451;

FailureReason reasonOf(UrlErrorCode code)
{
    switch (code) {
    case UrlErrorCode::notConnectedToInternet:
        return FailureReason::offline;
    case UrlErrorCode::cannotFindHost:
        return FailureReason::hostNotFound;
    case UrlErrorCode::timedOut:
        return FailureReason::timedOut;
    case UrlErrorCode::serverCertificateHasBadDate:
        return FailureReason::clockWrong;
    case UrlErrorCode::serverCertificateUntrusted:
    case UrlErrorCode::secureConnectionFailed:
        return FailureReason::secureConnectionFailed;
    case UrlErrorCode::cancelled:
        return FailureReason::cancelled;
    case UrlErrorCode::cannotConnectToHost:
    case UrlErrorCode::networkConnectionLost:
    case UrlErrorCode::cannotLoadFromNetwork:
        return FailureReason::unreachable;
    case UrlErrorCode::badURL:
    case UrlErrorCode::badServerResponse:
    case UrlErrorCode::zeroByteResource:
    case UrlErrorCode::cannotParseResponse:
    case UrlErrorCode::dataLengthExceedsMaximum:
    case UrlErrorCode::redirectRefused:
        break;
    }
    return FailureReason::badAnswer;
}

struct ReasonOf
{
    FailureReason operator()(const UrlLoadingError &error) const
    {
        if (!error.causes.empty())
            return summary(error.causes).reason;
        return error.httpStatus == unavailableForLegalReasons ? FailureReason::regionBlocked : reasonOf(error.code);
    }
    FailureReason operator()(const TickerProviderError &error) const
    {
        if (error.kind == TickerProviderError::Kind::requestRejected)
            return FailureReason::badAnswer;
        return error.blockPage ? FailureReason::regionBlocked : FailureReason::rateLimited;
    }
    FailureReason operator()(const ExchangeRateProviderError &) const { return FailureReason::rateLimited; }
    FailureReason operator()(const DecodingError &) const { return FailureReason::badAnswer; }
    FailureReason operator()(const FileError &) const { return FailureReason::badAnswer; }
    FailureReason operator()(const CatalogError &) const { return FailureReason::badAnswer; }
    FailureReason operator()(const DesktopServiceError &) const { return FailureReason::badAnswer; }
};

/// The most useful reason comes first.
constexpr std::array reasonsByPriority{FailureReason::clockWrong,    FailureReason::offline,
                                       FailureReason::regionBlocked, FailureReason::rateLimited,
                                       FailureReason::hostNotFound,  FailureReason::secureConnectionFailed,
                                       FailureReason::timedOut,      FailureReason::unreachable,
                                       FailureReason::badAnswer,     FailureReason::cancelled};

auto priority(FailureReason reason)
{
    return std::find(reasonsByPriority.begin(), reasonsByPriority.end(), reason);
}

bool isMoreUseful(const ProviderFailure &left, const ProviderFailure &right)
{
    if (left.reason != right.reason)
        return priority(left.reason) < priority(right.reason);
    return left.until && (!right.until || *left.until < *right.until);
}

} // namespace

FailureReason failureReason(const Error &error)
{
    return std::visit(ReasonOf{}, error);
}

ProviderFailure summary(const std::vector<ProviderFailure> &causes)
{
    if (causes.empty())
        return {{}, FailureReason::unreachable, std::nullopt};
    return *std::min_element(causes.begin(), causes.end(), isMoreUseful);
}

} // namespace tickwise
