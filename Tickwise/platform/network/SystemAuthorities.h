#pragma once

#include <QByteArray>

namespace tickwise {

/// Where a system keeps the certificates of the authorities that it trusts. Empty: there is none.
struct AuthorityFiles
{
    QByteArray folder; ///< one file for each authority, named after the hash of its subject as OpenSSL looks it up
    QByteArray bundle; ///< one file with all of them
    bool operator==(const AuthorityFiles &) const = default;
};

/// The files that libcurl was built to use.
AuthorityFiles systemAuthorityFiles();

/// Whether the folder has at least as many authorities under hashed names as the bundle holds, so that it can stand in
/// for the bundle.
bool isFolderComplete(const AuthorityFiles &files);

} // namespace tickwise
