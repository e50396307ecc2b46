#pragma once

#include <QByteArray>

namespace tickwise::test {

/// A fresh Ed25519 key pair that signs packages.
class SigningKey
{
public:
    SigningKey();

    /// Base64.
    QByteArray publicKey() const { return m_publicKey.toBase64(); }
    /// Base64 of the signature over the content.
    QByteArray sign(const QByteArray &content) const;

private:
    QByteArray m_publicKey;
    QByteArray m_secretKey;
};

} // namespace tickwise::test
