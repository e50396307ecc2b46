#include "demo/LoopbackTls.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslKey>

namespace tickwise {

namespace {

QByteArray shipped(const QString &name)
{
    QFile file(QStringLiteral(":/loopback-tls/loopback-only-") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is not built in", qUtf8Printable(file.fileName()));
    return file.readAll();
}

QString fileName(LoopbackCertificate certificate)
{
    switch (certificate) {
    case LoopbackCertificate::valid:
        break;
    case LoopbackCertificate::expired:
        return QStringLiteral("expired.pem");
    case LoopbackCertificate::notYetValid:
        return QStringLiteral("not-yet-valid.pem");
    case LoopbackCertificate::fromStranger:
        return QStringLiteral("stranger.pem");
    }
    return QStringLiteral("server.pem");
}

} // namespace

QSslConfiguration loopbackServerTls(LoopbackCertificate certificate)
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificate(QSslCertificate(shipped(fileName(certificate))));
    tls.setPrivateKey(QSslKey(shipped(QStringLiteral("server.key")), QSsl::Ec));
    tls.setPeerVerifyMode(QSslSocket::VerifyNone);
    return tls;
}

QByteArray loopbackAuthorities()
{
    return shipped(QStringLiteral("authority.pem"));
}

} // namespace tickwise
