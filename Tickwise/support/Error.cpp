#include "support/Error.h"

#include <QStringList>

namespace tickwise {

namespace {

QString name(UrlErrorCode code)
{
    switch (code) {
    case UrlErrorCode::badURL:
        return QStringLiteral("bad URL");
    case UrlErrorCode::badServerResponse:
        return QStringLiteral("bad server response");
    case UrlErrorCode::cannotLoadFromNetwork:
        return QStringLiteral("cannot load from network");
    case UrlErrorCode::zeroByteResource:
        return QStringLiteral("empty answer");
    case UrlErrorCode::cannotParseResponse:
        return QStringLiteral("cannot parse response");
    case UrlErrorCode::dataLengthExceedsMaximum:
        return QStringLiteral("answer too large");
    case UrlErrorCode::redirectRefused:
        return QStringLiteral("redirect refused");
    case UrlErrorCode::cancelled:
        return QStringLiteral("cancelled");
    case UrlErrorCode::timedOut:
        return QStringLiteral("timed out");
    case UrlErrorCode::cannotFindHost:
        return QStringLiteral("cannot find host");
    case UrlErrorCode::cannotConnectToHost:
        return QStringLiteral("cannot connect to host");
    case UrlErrorCode::networkConnectionLost:
        return QStringLiteral("network connection lost");
    case UrlErrorCode::notConnectedToInternet:
        return QStringLiteral("not connected to the internet");
    case UrlErrorCode::secureConnectionFailed:
        return QStringLiteral("secure connection failed");
    case UrlErrorCode::serverCertificateHasBadDate:
        return QStringLiteral("server certificate not valid at this date");
    case UrlErrorCode::serverCertificateUntrusted:
        return QStringLiteral("server certificate not trusted");
    }
    return QStringLiteral("unknown failure");
}

QString name(DesktopServiceError::Kind kind)
{
    switch (kind) {
    case DesktopServiceError::Kind::noMessageBus:
        return QStringLiteral("no message bus");
    case DesktopServiceError::Kind::noService:
        return QStringLiteral("no such service");
    case DesktopServiceError::Kind::timedOut:
        return QStringLiteral("no answer");
    case DesktopServiceError::Kind::refused:
        return QStringLiteral("refused");
    }
    return QStringLiteral("unknown failure");
}

QString withDetail(const QString &text, const QString &detail)
{
    return detail.isEmpty() ? text : text + QStringLiteral(": ") + detail;
}

QString withStatus(const QString &text, int status)
{
    return status == 0 ? text : QStringLiteral("%1 (HTTP %2)").arg(text).arg(status);
}

QString retryingAfter(const QString &text, double seconds)
{
    return QStringLiteral("%1, retry after %2 s").arg(text).arg(seconds);
}

struct Describe
{
    QString operator()(const UrlLoadingError &error) const
    {
        return withDetail(withStatus(name(error.code), error.httpStatus), error.detail);
    }
    QString operator()(const TickerProviderError &error) const
    {
        if (error.kind == TickerProviderError::Kind::requestRejected)
            return withStatus(QStringLiteral("request rejected"), error.httpStatus);
        const QString what = error.blockPage ? QStringLiteral("region blocked") : QStringLiteral("rate limited");
        const QString text = withStatus(what, error.httpStatus);
        return error.retryAfter ? retryingAfter(text, *error.retryAfter) : text;
    }
    QString operator()(const ExchangeRateProviderError &error) const
    {
        return retryingAfter(withStatus(QStringLiteral("rate limited"), error.httpStatus), error.retryAfter);
    }
    QString operator()(const DecodingError &error) const
    {
        return error.offset ? QStringLiteral("%1 at byte %2").arg(error.text).arg(*error.offset) : error.text;
    }
    QString operator()(const FileError &error) const { return error.path + QStringLiteral(": ") + error.text; }
    QString operator()(const CatalogError &error) const
    {
        return error.problems.empty()
                   ? error.message
                   : QStringList(error.problems.begin(), error.problems.end()).join(QStringLiteral(", "));
    }
    QString operator()(const DesktopServiceError &error) const { return withDetail(name(error.kind), error.text); }
};

} // namespace

QString description(const Error &error)
{
    return std::visit(Describe{}, error);
}

} // namespace tickwise
