#include "doubles/SigningKey.h"

#include <sodium.h>

namespace tickwise::test {

namespace {

unsigned char *bytesOf(QByteArray &bytes)
{
    return reinterpret_cast<unsigned char *>(bytes.data());
}

const unsigned char *bytesOf(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

} // namespace

SigningKey::SigningKey()
    : m_publicKey(crypto_sign_PUBLICKEYBYTES, '\0')
    , m_secretKey(crypto_sign_SECRETKEYBYTES, '\0')
{
    if (sodium_init() < 0 || crypto_sign_keypair(bytesOf(m_publicKey), bytesOf(m_secretKey)) != 0)
        qFatal("no key pair could be made");
}

QByteArray SigningKey::sign(const QByteArray &content) const
{
    QByteArray signature(crypto_sign_BYTES, '\0');
    crypto_sign_detached(bytesOf(signature), nullptr, bytesOf(content), static_cast<unsigned long long>(content.size()),
                         bytesOf(m_secretKey));
    return signature.toBase64();
}

} // namespace tickwise::test
