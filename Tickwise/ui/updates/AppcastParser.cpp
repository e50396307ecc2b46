#include "ui/updates/AppcastParser.h"

#include "ui/updates/ReleaseNotesText.h"
#include "ui/updates/VersionComparison.h"

#include <QXmlStreamReader>

namespace tickwise {

namespace {

constexpr qsizetype maximumTextLength = 2048;

QString sparkleNamespace()
{
    return QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");
}

/// The position after `end`, searched from `from`; the end of the bytes when it is not there.
qsizetype positionAfter(QByteArrayView bytes, QByteArrayView end, qsizetype from)
{
    const qsizetype found = bytes.indexOf(end, from);
    return found < 0 ? bytes.size() : found + end.size();
}

/// Whether a markup declaration stands before the root element. The XML reader must never see one: it would take in its
/// entities before reporting it.
bool hasDocumentType(QByteArrayView bytes)
{
    qsizetype at = 0;
    while ((at = bytes.indexOf('<', at)) >= 0) {
        const QByteArrayView rest = bytes.sliced(at);
        if (rest.startsWith("<?"))
            at = positionAfter(bytes, "?>", at);
        else if (rest.startsWith("<!--"))
            at = positionAfter(bytes, "-->", at);
        else
            return rest.startsWith("<!");
    }
    return false;
}

/// Reads one feed. A refusal is an error raised in the XML reader, which ends every loop.
class FeedReader
{
public:
    explicit FeedReader(const QByteArray &bytes)
        : m_xml(bytes)
    {
    }

    Result<std::vector<AppcastItem>> read()
    {
        if (m_xml.readNextStartElement())
            readRss();
        while (!m_xml.atEnd())
            m_xml.readNext();
        if (m_xml.hasError())
            return failure(DecodingError{m_xml.errorString(), m_xml.characterOffset()});
        return std::move(m_items);
    }

private:
    bool isSparkle() const { return m_xml.namespaceUri() == sparkleNamespace(); }
    bool isPlain(QStringView name) const { return m_xml.namespaceUri().isEmpty() && m_xml.name() == name; }

    void readRss()
    {
        if (!isPlain(u"rss"))
            return m_xml.raiseError(QStringLiteral("the document is no RSS feed"));
        while (m_xml.readNextStartElement()) {
            if (isPlain(u"channel"))
                readChannel();
            else
                m_xml.skipCurrentElement();
        }
    }

    void readChannel()
    {
        while (m_xml.readNextStartElement()) {
            if (isPlain(u"item"))
                readItem();
            else
                m_xml.skipCurrentElement();
        }
    }

    void readItem()
    {
        if (++m_itemCount > maximumAppcastItems)
            return m_xml.raiseError(QStringLiteral("the feed has too many items"));
        AppcastItem item;
        while (m_xml.readNextStartElement())
            readItemElement(item);
        if (!m_xml.hasError() && isVersion(item.version) && !item.url.isEmpty())
            m_items.push_back(std::move(item));
    }

    void readItemElement(AppcastItem &item)
    {
        if (isPlain(u"enclosure"))
            readEnclosure(item);
        else if (isPlain(u"description"))
            item.releaseNotes = readNotes();
        else if (isSparkle())
            readSparkleElement(item);
        else
            m_xml.skipCurrentElement();
    }

    void readSparkleElement(AppcastItem &item)
    {
        if (m_xml.name() == u"version")
            item.version = readText();
        else if (m_xml.name() == u"shortVersionString")
            item.shortVersion = readText();
        else if (m_xml.name() == u"minimumSystemVersion")
            item.minimumSystemVersion = readText();
        else
            m_xml.skipCurrentElement();
    }

    void readEnclosure(AppcastItem &item)
    {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        const auto sparkle = [&](QLatin1StringView name) { return attributes.value(sparkleNamespace(), name); };
        item.url = packageUrl(bounded(attributes.value(QLatin1StringView("url"))));
        item.length = std::max<qint64>(0, attributes.value(QLatin1StringView("length")).toLongLong());
        item.type = bounded(attributes.value(QLatin1StringView("type")));
        item.signature = bounded(sparkle(QLatin1StringView("edSignature"))).toLatin1();
        // Older feeds carry the versions here instead of in elements of their own.
        if (item.version.isEmpty())
            item.version = bounded(sparkle(QLatin1StringView("version")));
        if (item.shortVersion.isEmpty())
            item.shortVersion = bounded(sparkle(QLatin1StringView("shortVersionString")));
        m_xml.skipCurrentElement();
    }

    QUrl packageUrl(const QString &text)
    {
        QUrl url(text, QUrl::StrictMode);
        if (!url.isValid() || url.scheme() != QLatin1StringView("https") || url.host().isEmpty())
            m_xml.raiseError(QStringLiteral("a package is not behind https"));
        return url;
    }

    QString bounded(QStringView text)
    {
        if (text.size() > maximumTextLength)
            m_xml.raiseError(QStringLiteral("a text of the feed is too long"));
        return text.trimmed().left(maximumTextLength).toString();
    }

    // Child elements are skipped, not read: the reader would descend into them recursively.
    QString readText() { return bounded(m_xml.readElementText(QXmlStreamReader::SkipChildElements)); }

    QString readNotes()
    {
        const QString notes = releaseNotesText(m_xml.readElementText(QXmlStreamReader::SkipChildElements));
        return notes.left(maximumReleaseNotesLength);
    }

    QXmlStreamReader m_xml;
    std::size_t m_itemCount = 0;
    std::vector<AppcastItem> m_items;
};

Error refusal(const QString &text)
{
    return DecodingError{text, std::nullopt};
}

} // namespace

Result<std::vector<AppcastItem>> parseAppcast(const QByteArray &bytes)
{
    if (bytes.size() > maximumAppcastBytes)
        return failure(refusal(QStringLiteral("the feed is larger than 1 MiB")));
    // Wide encodings would hide a declaration from the search for it.
    if (bytes.contains('\0'))
        return failure(refusal(QStringLiteral("the feed is not in an eight-bit encoding")));
    if (hasDocumentType(bytes))
        return failure(refusal(QStringLiteral("the feed has a document type declaration")));
    return FeedReader(bytes).read();
}

} // namespace tickwise
