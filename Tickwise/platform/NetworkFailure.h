#pragma once

#include "support/Error.h"

#include <QList>
#include <QNetworkReply>
#include <QSslError>

namespace tickwise {

/// What is known about a transfer that did not end well.
struct NetworkFailure
{
    QNetworkReply::NetworkError error = QNetworkReply::UnknownNetworkError;
    QString text;               ///< Qt's words
    QList<QSslError> sslErrors; ///< what was wrong with the certificates
    int status = 0;             ///< 0: no status line came
    bool hasNetwork = true;     ///< whether the machine seems to have a network
};

/// Whether Qt's error only repeats the status of a whole answer.
bool isStatusOnly(QNetworkReply::NetworkError error, int status);

/// The failure in the program's own terms. A certificate counts as badly dated when nothing else is wrong with it.
UrlErrorCode urlErrorCode(const NetworkFailure &failure);

} // namespace tickwise
