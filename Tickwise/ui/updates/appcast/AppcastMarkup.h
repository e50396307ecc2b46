#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

namespace tickwise {

/// A feed with a longer tag is refused.
inline constexpr qsizetype maximumTagBytes = qsizetype{16} * 1024;
/// A feed with a tag that has more attributes is refused.
inline constexpr int maximumTagAttributes = 100;
/// A feed that declares more namespaces is refused.
inline constexpr qsizetype maximumNamespaceDeclarations = 50;

/// Why the markup of a feed must not reach the XML reader; none: it may.
///
/// The reader takes in the entities of a document type declaration before it reports one, and compares every attribute
/// of a tag and every namespace declaration with all others. Linear in the feed's length.
std::optional<QString> appcastMarkupRefusal(QByteArrayView utf8);

} // namespace tickwise
