#include "ui/updates/UpdateSignature.h"

#include <QFile>

#include <sodium.h>

namespace tickwise {

namespace {

std::optional<QByteArray> decoded(const QByteArray &base64, qsizetype size)
{
    const auto result = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
    if (!result || result.decoded.size() != size)
        return std::nullopt;
    return result.decoded;
}

const unsigned char *bytesOf(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

} // namespace

bool isSignature(const QByteArray &base64)
{
    return decoded(base64, crypto_sign_BYTES).has_value();
}

bool isPublicKey(const QByteArray &base64)
{
    return decoded(base64, crypto_sign_PUBLICKEYBYTES).has_value();
}

SignatureCheck checkSignature(const QString &path, const QByteArray &signature, const QByteArray &publicKey)
{
    if (signature.isEmpty())
        return SignatureCheck::missing;
    const std::optional<QByteArray> signatureBytes = decoded(signature, crypto_sign_BYTES);
    const std::optional<QByteArray> keyBytes = decoded(publicKey, crypto_sign_PUBLICKEYBYTES);
    if (!signatureBytes || !keyBytes || sodium_init() < 0)
        return SignatureCheck::malformed;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return SignatureCheck::unreadable;
    // The signature covers the content as one message, which the library wants in one piece: mapped, not copied.
    const qint64 length = file.size();
    const unsigned char *content = length == 0 ? bytesOf(*keyBytes) : file.map(0, length);
    if (!content)
        return SignatureCheck::unreadable;
    const int wrong = crypto_sign_verify_detached(bytesOf(*signatureBytes), content,
                                                  static_cast<unsigned long long>(length), bytesOf(*keyBytes));
    return wrong ? SignatureCheck::mismatch : SignatureCheck::valid;
}

std::optional<UpdateFailure> signatureFailure(SignatureCheck check, const QString &path)
{
    switch (check) {
    case SignatureCheck::valid:
        return std::nullopt;
    case SignatureCheck::missing:
        return UpdateFailure{UpdateFailureKind::noSignature, QStringLiteral("the package is not signed")};
    case SignatureCheck::unreadable:
        return UpdateFailure{UpdateFailureKind::disk, QStringLiteral("%1 cannot be read").arg(path)};
    case SignatureCheck::malformed:
    case SignatureCheck::mismatch:
        break;
    }
    return UpdateFailure{UpdateFailureKind::signature, QStringLiteral("the package's signature is not valid")};
}

} // namespace tickwise
