#pragma once

#include "support/Error.h"

#include <curl/curl.h>

namespace tickwise {

/// What is known about an exchange that did not end well.
struct NetworkFailure
{
    CURLcode result = CURLE_OK;
    QString text;           ///< libcurl's words
    long verifyResult = 0;  ///< OpenSSL's verdict on the certificate; 0: nothing wrong, or not asked
    int osError = 0;        ///< errno of the connection that failed last
    int proxyStatus = 0;    ///< a proxy's answer to CONNECT
    int status = 0;         ///< 0: no status line came
    bool hasNetwork = true; ///< whether the machine seems to have a network
};

/// The failure in the program's own terms. A certificate counts as badly dated when that is the first thing wrong with
/// it.
UrlErrorCode urlErrorCode(const NetworkFailure &failure);

} // namespace tickwise
