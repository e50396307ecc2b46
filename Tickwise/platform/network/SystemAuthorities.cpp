#include "platform/network/SystemAuthorities.h"

#include <QFile>

#include <algorithm>
#include <filesystem>

#include <curl/curl.h>

namespace tickwise {

namespace {

constexpr std::size_t hashDigits = 8;

/// Whether the name is a hash, a dot and a number.
bool isHashedName(std::string_view name)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto isHex = [&](char c) { return isDigit(c) || (c >= 'a' && c <= 'f'); };
    if (name.size() <= hashDigits + 1 || name[hashDigits] != '.')
        return false;
    const std::string_view hash = name.substr(0, hashDigits);
    const std::string_view number = name.substr(hashDigits + 1);
    return std::all_of(hash.begin(), hash.end(), isHex) && std::all_of(number.begin(), number.end(), isDigit);
}

// Links count whether or not their target exists: looking at each would cost more than the folder saves.
qsizetype hashedNames(const QByteArray &folder)
{
    using Iterator = std::filesystem::directory_iterator;
    std::error_code error;
    qsizetype count = 0;
    for (Iterator entry(folder.toStdString(), error); !error && entry != Iterator(); entry.increment(error)) {
        if (isHashedName(entry->path().filename().native()))
            ++count;
    }
    return count;
}

qsizetype certificates(const QByteArray &bundle)
{
    QFile file(QFile::decodeName(bundle));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().count("-----BEGIN CERTIFICATE-----");
}

} // namespace

AuthorityFiles systemAuthorityFiles()
{
    const curl_version_info_data *const libcurl = curl_version_info(CURLVERSION_NOW);
    return {libcurl->capath, libcurl->cainfo};
}

bool isFolderComplete(const AuthorityFiles &files)
{
    if (files.folder.isEmpty())
        return false;
    const qsizetype names = hashedNames(files.folder);
    return names > 0 && names >= certificates(files.bundle);
}

} // namespace tickwise
