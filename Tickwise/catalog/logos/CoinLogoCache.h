#pragma once

#include "support/Result.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <optional>

namespace tickwise {

/// The largest logo that is taken from the network or read from the disk, in bytes.
inline constexpr qint64 largestLogo = 524288;

/// Downloaded logos on disk: one file a coin, `<id>.img`, with the bytes exactly as received.
struct CoinLogoCache
{
    std::optional<QString> directory; ///< none when there is no container to put it in

    /// The cache inside the container that is shared with the widget.
    static CoinLogoCache inContainer(const std::optional<QString> &container);

    /// The ids that have a file; empty when the directory is missing or cannot be read.
    QSet<QString> cachedIDs() const;
    /// The file of that coin; none without a directory or when the text is no coin id.
    std::optional<QString> path(const QString &id) const;
    /// The file's bytes; none when it is missing, cannot be read or is larger than a logo may be.
    std::optional<QByteArray> read(const QString &id) const;
    /// Replaces the file as a whole, making the directory where it is missing. Fails with `FileError`.
    Result<void> write(const QString &id, const QByteArray &bytes) const;
    /// Deletes the file, also one whose name is no coin id but was listed by `cachedIDs`; a failure is ignored.
    void remove(const QString &id) const;

    bool operator==(const CoinLogoCache &) const = default;
};

} // namespace tickwise
