#include "ui/updates/UpdateState.h"

namespace tickwise {

namespace {

/// Whether the server says that it does not have the file.
bool isMissing(const UrlLoadingError &error)
{
    return error.code == UrlErrorCode::badServerResponse && (error.httpStatus == 404 || error.httpStatus == 410);
}

UpdateFailureKind feedKind(const UrlLoadingError &error)
{
    if (isMissing(error))
        return UpdateFailureKind::feedMissing;
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
    if (loading && isMissing(*loading))
        return {UpdateFailureKind::packageMissing, description(error)};
    return {UpdateFailureKind::network, description(error)};
}

} // namespace tickwise
