#pragma once

#include "ui/updates/UpdateState.h"

#include <QByteArray>
#include <QString>

namespace tickwise {

/// What checking a signature came to; only `valid` lets anything be used.
enum class SignatureCheck
{
    valid,
    missing,
    malformed,
    mismatch,
    unreadable
};

/// Whether the text is the base64 of as many bytes as an Ed25519 signature has.
bool isSignature(const QByteArray &base64);

/// Checks the Ed25519 signature over a file's whole content. Key and signature are base64; a key that is not one is
/// `malformed`, a file that cannot be read `unreadable`.
SignatureCheck checkSignature(const QString &path, const QByteArray &signature, const QByteArray &publicKey);

/// Whether the text is the base64 of as many bytes as an Ed25519 public key has.
bool isPublicKey(const QByteArray &base64);

/// Why the package at `path` cannot be used after this check; none for a valid one.
std::optional<UpdateFailure> signatureFailure(SignatureCheck check, const QString &path);

} // namespace tickwise
