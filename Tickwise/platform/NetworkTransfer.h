#pragma once

#include "market/HttpClient.h"
#include "platform/GzipReader.h"

#include <QList>
#include <QNetworkReply>
#include <QPointer>
#include <QSslConfiguration>
#include <QSslError>
#include <QTimer>

class QNetworkAccessManager;

namespace tickwise {

/// Whether an answer from `from` may send the request on to `to`: never from https to http, to another place only where
/// the request allows it.
bool mayRedirect(const HttpRequest &request, const QUrl &from, const QUrl &to);

/// One request under way, with the redirects it leads through. Destroying it aborts the request.
class NetworkTransfer : public Operation
{
public:
    NetworkTransfer(QNetworkAccessManager &manager, const QSslConfiguration &tls, std::function<bool()> hasNetwork,
                    const HttpRequest &request, Completion<HttpResponse> done);
    ~NetworkTransfer() override;

private:
    void open(const QUrl &url);
    void readHead();
    void readBody();
    bool decode(const char *bytes, qint64 count);
    bool store(const char *bytes, qint64 count);
    bool deliver(const char *bytes, qint64 count);
    void reportProgress();
    void conclude();
    void follow(const QUrl &target);
    void failForDeadline();
    void fail(UrlErrorCode code, const QString &detail);
    void finish(Result<HttpResponse> result);
    void release();
    int status() const;
    bool isRedirect() const;
    bool isGzip() const;
    HttpResponse takeResponse();
    qint64 announcedLength() const;

    QNetworkAccessManager &m_manager;
    QSslConfiguration m_tls;
    std::function<bool()> m_hasNetwork;
    HttpRequest m_request;
    Completion<HttpResponse> m_done;
    QPointer<QNetworkReply> m_reply;
    QList<QSslError> m_sslErrors;
    std::unique_ptr<GzipReader> m_gzip;
    QByteArray m_body;
    qint64 m_received = 0; ///< bytes of the body, inflated
    int m_redirects = 0;
    QTimer m_deadline;
    QObject m_context;
};

} // namespace tickwise
