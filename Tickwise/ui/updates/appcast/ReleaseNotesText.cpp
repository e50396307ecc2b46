#include "ui/updates/appcast/ReleaseNotesText.h"

#include <QStringList>

#include <array>
#include <optional>

namespace tickwise {

namespace {

constexpr qsizetype maximumReferenceLength = 10;

struct NamedReference
{
    QLatin1StringView name;
    char16_t character;
};

constexpr std::array references{
    NamedReference{QLatin1StringView("amp"), u'&'},         NamedReference{QLatin1StringView("lt"), u'<'},
    NamedReference{QLatin1StringView("gt"), u'>'},          NamedReference{QLatin1StringView("quot"), u'"'},
    NamedReference{QLatin1StringView("apos"), u'\''},       NamedReference{QLatin1StringView("nbsp"), u' '},
    NamedReference{QLatin1StringView("ndash"), u'\u2013'},  NamedReference{QLatin1StringView("mdash"), u'\u2014'},
    NamedReference{QLatin1StringView("hellip"), u'\u2026'}, NamedReference{QLatin1StringView("rsquo"), u'\u2019'},
    NamedReference{QLatin1StringView("copy"), u'\u00a9'},
};

bool isTagStart(QStringView text, qsizetype at)
{
    if (text.at(at) != u'<' || at + 1 >= text.size())
        return false;
    const QChar next = text.at(at + 1);
    return next.isLetter() || next == u'/' || next == u'!' || next == u'?';
}

bool hasMarkup(QStringView text)
{
    for (qsizetype at = text.indexOf(u'<'); at >= 0; at = text.indexOf(u'<', at + 1)) {
        if (isTagStart(text, at))
            return true;
    }
    return false;
}

bool isLineBreak(QStringView tag)
{
    static const QStringList names =
        QStringLiteral("br p div tr ul ol li h1 h2 h3 h4 h5 h6 pre blockquote table section hr").split(u' ');
    return names.contains(tag);
}

/// The character that `&name;` or `&#number;` stands for; none when it is no reference.
std::optional<QString> referenced(QStringView name)
{
    if (name.startsWith(u'#')) {
        const bool hex = name.size() > 1 && (name.at(1) == u'x' || name.at(1) == u'X');
        bool valid = false;
        const char32_t code = name.mid(hex ? 2 : 1).toUInt(&valid, hex ? 16 : 10);
        const bool surrogate = code >= 0xd800 && code <= 0xdfff;
        if (!valid || surrogate || code < 0x20 || code > 0x10ffff)
            return std::nullopt;
        return QString::fromUcs4(&code, 1);
    }
    for (const NamedReference &reference : references) {
        if (name == reference.name)
            return QString(QChar(reference.character));
    }
    return std::nullopt;
}

/// Walks once over the notes and collects what a reader would see.
class Stripper
{
public:
    explicit Stripper(QStringView notes)
        : m_notes(notes)
        , m_hasMarkup(hasMarkup(notes))
    {
    }

    QString text()
    {
        while (m_at < m_notes.size())
            takeNext();
        return m_text.trimmed();
    }

private:
    void takeNext()
    {
        if (isTagStart(m_notes, m_at))
            takeTag();
        else if (m_notes.at(m_at) == u'&')
            takeReference();
        else
            takeCharacter(m_notes.at(m_at++));
    }

    void takeCharacter(QChar character)
    {
        if (character == u'\n' && !m_hasMarkup)
            breakLine();
        else if (character.isSpace() || character == u'\n')
            m_space = true;
        else if (character.isPrint() || character.isSurrogate())
            append(QString(character));
    }

    void append(const QString &text)
    {
        if (m_space && !m_text.isEmpty() && !m_text.endsWith(u'\n'))
            m_text += u' ';
        m_space = false;
        m_text += text;
    }

    // One blank line at most.
    void breakLine()
    {
        m_space = false;
        if (!m_text.endsWith(QStringLiteral("\n\n")) && !m_text.isEmpty())
            m_text += u'\n';
    }

    void startLine()
    {
        if (!m_text.endsWith(u'\n'))
            breakLine();
    }

    void takeReference()
    {
        const QStringView ahead = m_notes.mid(m_at + 1, maximumReferenceLength);
        const qsizetype end = ahead.indexOf(u';');
        const std::optional<QString> character = end < 0 ? std::nullopt : referenced(ahead.left(end));
        if (!character)
            return takeCharacter(m_notes.at(m_at++));
        append(*character);
        m_at += end + 2;
    }

    void takeTag()
    {
        const QStringView rest = m_notes.mid(m_at);
        if (rest.startsWith(u"<!--"))
            return skipPast(u"-->");
        skipPast(u">");
        const bool closing = rest.mid(1).startsWith(u'/');
        const QString name = tagName(rest.mid(closing ? 2 : 1));
        if (!closing && (name == u"script" || name == u"style" || name == u"title"))
            return skipElement(name);
        if (isLineBreak(name))
            name == u"br" ? breakLine() : startLine();
        if (name == u"li" && !closing)
            append(QStringLiteral("\u2022 "));
    }

    void skipElement(const QString &name)
    {
        skipPast(QString(QStringLiteral("</") + name));
        skipPast(u">");
    }

    static QString tagName(QStringView text)
    {
        qsizetype length = 0;
        while (length < text.size() && length < maximumReferenceLength && text.at(length).isLetterOrNumber())
            ++length;
        return text.left(length).toString().toLower();
    }

    void skipPast(QStringView end)
    {
        const qsizetype found = m_notes.indexOf(end, m_at, Qt::CaseInsensitive);
        m_at = found < 0 ? m_notes.size() : found + end.size();
    }

    QStringView m_notes;
    bool m_hasMarkup;
    bool m_space = false;
    qsizetype m_at = 0;
    QString m_text;
};

} // namespace

QString releaseNotesText(const QString &notes)
{
    return Stripper(notes).text();
}

} // namespace tickwise
