#include "ui/updates/appcast/AppcastParser.h"

#include "ui/updates/appcast/AppcastMarkup.h"
#include "ui/updates/appcast/ReleaseNotesText.h"
#include "ui/updates/appcast/VersionComparison.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>

namespace tickwise {

namespace {

constexpr qsizetype maximumTextLength = 2048;
constexpr qsizetype maximumShortVersionLength = 64;

QString sparkleNamespace()
{
    return QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");
}

bool isPrintable(char32_t character)
{
    return QChar::isPrint(character) && (character == U' ' || !QChar::isSpace(character));
}

/// The text, or nothing where it cannot be shown as a version.
QString readableVersion(const QString &text)
{
    const QList<uint> characters = text.trimmed().toUcs4();
    const bool isReadable = characters.size() <= maximumShortVersionLength &&
                            std::all_of(characters.begin(), characters.end(), isPrintable);
    return isReadable ? text.trimmed() : QString();
}

/// The package of an item, and the versions that older feeds give with it.
struct Enclosure
{
    int systemRank = 0; ///< 0: none, or for another system; 1: for any; 2: for Linux
    QUrl url;
    qint64 length = 0;
    QByteArray signature;
    QString version;
    QString shortVersion;
};

int systemRank(QStringView name)
{
    if (name.isEmpty())
        return 1;
    return name.compare(QLatin1StringView("linux"), Qt::CaseInsensitive) == 0 ? 2 : 0;
}

/// One item while it is read.
struct ItemDraft
{
    AppcastItem item;
    Enclosure enclosure;
    QString channel;
};

std::optional<AppcastItem> itemOf(ItemDraft draft)
{
    AppcastItem item = std::move(draft.item);
    item.url = draft.enclosure.url;
    item.length = draft.enclosure.length;
    item.signature = draft.enclosure.signature;
    if (item.version.isEmpty())
        item.version = draft.enclosure.version;
    if (item.shortVersion.isEmpty())
        item.shortVersion = draft.enclosure.shortVersion;
    const bool isOffered = draft.channel.isEmpty() && draft.enclosure.systemRank > 0 && isVersion(item.version);
    return isOffered ? std::optional(std::move(item)) : std::nullopt;
}

/// Reads one feed. A refusal is an error raised in the XML reader, which ends every loop.
class FeedReader
{
public:
    // Text, not bytes: the reader would decode those by the encoding that the feed declares.
    explicit FeedReader(const QString &text)
        : m_xml(text)
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
        ItemDraft draft;
        while (m_xml.readNextStartElement())
            readItemElement(draft);
        if (m_xml.hasError())
            return;
        if (std::optional<AppcastItem> item = itemOf(std::move(draft)))
            m_items.push_back(std::move(*item));
    }

    void readItemElement(ItemDraft &draft)
    {
        if (isPlain(u"enclosure"))
            readEnclosure(draft.enclosure);
        else if (isPlain(u"description"))
            draft.item.releaseNotes = readNotes();
        else if (isSparkle())
            readSparkleElement(draft);
        else
            m_xml.skipCurrentElement();
    }

    void readSparkleElement(ItemDraft &draft)
    {
        if (m_xml.name() == u"version")
            draft.item.version = readText();
        else if (m_xml.name() == u"shortVersionString")
            draft.item.shortVersion = readableVersion(readElement());
        else if (m_xml.name() == u"minimumSystemVersion")
            draft.item.minimumSystemVersion = readText();
        else if (m_xml.name() == u"channel")
            draft.channel = readText();
        else
            m_xml.skipCurrentElement();
    }

    void readEnclosure(Enclosure &chosen)
    {
        const QXmlStreamAttributes attributes = m_xml.attributes();
        const auto sparkle = [&](QLatin1StringView name) { return attributes.value(sparkleNamespace(), name); };
        const int rank = systemRank(sparkle(QLatin1StringView("os")).trimmed());
        if (rank > chosen.systemRank) {
            chosen.systemRank = rank;
            chosen.url = packageUrl(bounded(attributes.value(QLatin1StringView("url"))));
            chosen.length = std::max<qint64>(0, attributes.value(QLatin1StringView("length")).toLongLong());
            chosen.signature = bounded(sparkle(QLatin1StringView("edSignature"))).toLatin1();
            chosen.version = bounded(sparkle(QLatin1StringView("version")));
            chosen.shortVersion = readableVersion(sparkle(QLatin1StringView("shortVersionString")).toString());
        }
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
    QString readElement() { return m_xml.readElementText(QXmlStreamReader::SkipChildElements); }
    QString readText() { return bounded(readElement()); }
    QString readNotes() { return releaseNotesText(readElement()).left(maximumReleaseNotesLength); }

    QXmlStreamReader m_xml;
    std::size_t m_itemCount = 0;
    std::vector<AppcastItem> m_items;
};

/// Whether the XML declaration names another encoding than UTF-8.
bool declaresOtherEncoding(const QString &text)
{
    static const QRegularExpression declaration(
        QStringLiteral("^<\\?xml\\s[^>]*\\bencoding\\s*=\\s*[\"'](?!utf-8[\"'])"),
        QRegularExpression::CaseInsensitiveOption);
    return declaration.match(text).hasMatch();
}

Error refusal(const QString &text)
{
    return DecodingError{text, std::nullopt};
}

} // namespace

Result<std::vector<AppcastItem>> parseAppcast(const QByteArray &bytes)
{
    if (bytes.size() > maximumAppcastBytes)
        return failure(refusal(QStringLiteral("the feed is larger than 1 MiB")));
    // UTF-16 of Latin letters is valid UTF-8 but for its zeros.
    if (!bytes.isValidUtf8() || bytes.contains('\0'))
        return failure(refusal(QStringLiteral("the feed is not UTF-8")));
    if (const std::optional<QString> refused = appcastMarkupRefusal(bytes))
        return failure(refusal(*refused));
    const qsizetype byteOrderMark = bytes.startsWith("\xef\xbb\xbf") ? 3 : 0;
    const QString text = QString::fromUtf8(QByteArrayView(bytes).sliced(byteOrderMark));
    if (declaresOtherEncoding(text))
        return failure(refusal(QStringLiteral("the feed declares another encoding than UTF-8")));
    return FeedReader(text).read();
}

} // namespace tickwise
