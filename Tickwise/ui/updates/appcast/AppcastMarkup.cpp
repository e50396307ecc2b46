#include "ui/updates/appcast/AppcastMarkup.h"

#include <algorithm>

namespace tickwise {

namespace {

/// The length of markup that ends with `end`, searched from `from`; the whole rest when it has no end.
qsizetype lengthUntil(QByteArrayView rest, QByteArrayView end, qsizetype from)
{
    const qsizetype found = rest.indexOf(end, from);
    return found < 0 ? rest.size() : found + end.size();
}

struct Tag
{
    qsizetype length = 0;
    int attributes = 0;
};

/// The tag at the start of `rest`. A ">" inside a quoted value does not end it.
Tag tagAt(QByteArrayView rest)
{
    Tag tag;
    char quote = 0;
    while (tag.length < rest.size()) {
        const char character = rest.at(tag.length++);
        if (quote != 0) {
            quote = character == quote ? '\0' : quote;
        } else if (character == '"' || character == '\'') {
            quote = character;
            ++tag.attributes;
        } else if (character == '>') {
            break;
        }
    }
    return tag;
}

qsizetype namespaceDeclarations(QByteArrayView tag)
{
    const QByteArrayView name("xmlns");
    qsizetype count = 0;
    for (qsizetype at = tag.indexOf(name); at >= 0; at = tag.indexOf(name, at + name.size()))
        ++count;
    return count;
}

/// Walks over the markup of a document.
class MarkupScan
{
public:
    explicit MarkupScan(QByteArrayView rest)
        : m_rest(rest)
    {
    }

    std::optional<QString> refusal()
    {
        while (skipText()) {
            if (m_rest.startsWith("<?"))
                skip(lengthUntil(m_rest, "?>", 2));
            else if (m_rest.startsWith("<!--"))
                skip(lengthUntil(m_rest, "-->", 4));
            else if (m_rest.startsWith("<![CDATA["))
                skip(lengthUntil(m_rest, "]]>", 9));
            else if (m_rest.startsWith("<!"))
                return QStringLiteral("the feed has a document type declaration");
            else if (std::optional<QString> refused = readTag())
                return refused;
        }
        return std::nullopt;
    }

private:
    /// Goes to the next "<"; false: there is none.
    bool skipText()
    {
        const qsizetype found = m_rest.indexOf('<');
        if (found >= 0)
            skip(found);
        return found >= 0;
    }

    void skip(qsizetype length) { m_rest = m_rest.sliced(length); }

    std::optional<QString> readTag()
    {
        const Tag tag = tagAt(m_rest.first(std::min(m_rest.size(), maximumTagBytes + 1)));
        if (tag.length > maximumTagBytes)
            return QStringLiteral("a tag of the feed is longer than 16 KiB");
        if (tag.attributes > maximumTagAttributes)
            return QStringLiteral("a tag of the feed has too many attributes");
        m_namespaces += namespaceDeclarations(m_rest.first(tag.length));
        if (m_namespaces > maximumNamespaceDeclarations)
            return QStringLiteral("the feed declares too many namespaces");
        skip(tag.length);
        return std::nullopt;
    }

    QByteArrayView m_rest;
    qsizetype m_namespaces = 0;
};

} // namespace

std::optional<QString> appcastMarkupRefusal(QByteArrayView utf8)
{
    return MarkupScan(utf8).refusal();
}

} // namespace tickwise
