#include "ui/updates/UpdateState.h"

namespace tickwise {

namespace {

UpdateFailureKind feedKind(const UrlLoadingError &error)
{
    switch (error.code) {
    case UrlErrorCode::dataLengthExceedsMaximum:
        return UpdateFailureKind::tooLarge;
    case UrlErrorCode::badURL:
    case UrlErrorCode::badServerResponse:
    case UrlErrorCode::zeroByteResource:
    case UrlErrorCode::cannotParseResponse:
    case UrlErrorCode::redirectRefused:
        return UpdateFailureKind::feed;
    default:
        return UpdateFailureKind::network;
    }
}

} // namespace

UpdateFailure feedFailure(const Error &error)
{
    const auto *loading = std::get_if<UrlLoadingError>(&error);
    return {loading ? feedKind(*loading) : UpdateFailureKind::feed, description(error)};
}

UpdateFailure downloadFailure(const Error &error)
{
    const auto *loading = std::get_if<UrlLoadingError>(&error);
    if (std::holds_alternative<FileError>(error))
        return {UpdateFailureKind::disk, description(error)};
    if (loading && loading->code == UrlErrorCode::dataLengthExceedsMaximum)
        return {UpdateFailureKind::tooLarge, description(error)};
    return {UpdateFailureKind::network, description(error)};
}

} // namespace tickwise
