#pragma once

#include <QSslConfiguration>

namespace tickwise {

/// What a loopback server shows to a client that connects over TLS.
enum class LoopbackCertificate
{
    valid,
    expired,
    notYetValid,
    fromStranger
};

/// The TLS configuration of a loopback server.
QSslConfiguration loopbackServerTls(LoopbackCertificate certificate);

/// The PEM certificate of the authority behind the valid certificates.
QByteArray loopbackAuthorities();

} // namespace tickwise
