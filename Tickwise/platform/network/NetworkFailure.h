#pragma once

#include "support/Error.h"

#include <curl/curl.h>

namespace tickwise {

/// What is known about a transfer that failed.
struct NetworkFailure
{
    CURLcode result = CURLE_OK;
    QString text;           ///< libcurl's message
    long verifyResult = 0;  ///< OpenSSL's verdict on the certificate; 0: nothing wrong, or not asked
    int osError = 0;        ///< errno of the connection that failed last
    int proxyStatus = 0;    ///< a proxy's answer to CONNECT
    int status = 0;         ///< 0: no status line came
    bool hasNetwork = true; ///< whether the machine seems to have a network
};

/// The failure as an error code. A certificate counts as badly dated when its date is the first fault that OpenSSL
/// finds.
UrlErrorCode urlErrorCode(const NetworkFailure &failure);

} // namespace tickwise
