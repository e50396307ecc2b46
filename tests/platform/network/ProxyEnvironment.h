#pragma once

#include <QtGlobal>

namespace tickwise::test {

/// Requests of the test go straight to their hosts, whatever proxies the environment names.
inline void clearProxyEnvironment()
{
    for (const char *name :
         {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY", "NO_PROXY"})
        qunsetenv(name);
}

} // namespace tickwise::test
