#include "platform/session/LogHandler.h"

#include "support/LogCategories.h"

#include <sys/uio.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

namespace tickwise {

namespace {

const char *journalSocketPath = nullptr;

struct Level
{
    int priority; ///< as syslog counts
    const char *name;
};

Level level(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return {7, "debug"};
    case QtInfoMsg:
        return {6, "info"};
    case QtWarningMsg:
        return {3, "error"};
    case QtCriticalMsg:
        return {2, "fault"};
    case QtFatalMsg:
        return {2, "fatal"};
    }
    return {3, "error"};
}

QByteArray category(const QMessageLogContext &context)
{
    return context.category ? QByteArray(context.category) : QByteArrayLiteral("default");
}

QByteArray ownCategoryPrefix()
{
    return QByteArray(logSubsystem) + '.';
}

bool breaksLine(char32_t c)
{
    const QChar::Category kind = QChar::category(c);
    return kind == QChar::Other_Control || kind == QChar::Separator_Line || kind == QChar::Separator_Paragraph;
}

QString escaped(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        if (c == u'\n')
            result += QStringLiteral("\\n");
        else if (breaksLine(c.unicode()))
            result += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QChar(u'0'));
        else
            result += c;
    }
    return result;
}

bool sendToJournal(const std::vector<QByteArray> &fields)
{
    std::vector<iovec> parts;
    parts.reserve(fields.size());
    for (const QByteArray &field : fields)
        parts.push_back({const_cast<char *>(field.constData()), static_cast<std::size_t>(field.size())});
    return sd_journal_sendv(parts.data(), static_cast<int>(parts.size())) == 0;
}

void writeToStderr(const QByteArray &line)
{
    // One write a line, so that lines of several threads do not mix; there is nowhere to report a failure to.
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, line.constData(), static_cast<std::size_t>(line.size()));
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    // The journal's library reports success for lines that no journal takes, hence the look at its socket.
    if (::access(journalSocketPath, W_OK) != 0 || !sendToJournal(journalFields(type, context, text)))
        writeToStderr(stderrLine(type, context, text));
}

} // namespace

void installLogHandler(const char *journalSocket)
{
    journalSocketPath = journalSocket;
    // A logo that a server damaged is no fault of this system, so that the decoders' complaints are not its log lines.
    QLoggingCategory::setFilterRules(QStringLiteral("com.pelmo.tickwise.*.debug=false\nqt.gui.imageio*.warning=false"));
    qInstallMessageHandler(handleMessage);
}

std::vector<QByteArray> journalFields(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QByteArray name = category(context);
    std::vector<QByteArray> fields{"MESSAGE=" + text.toUtf8(), "PRIORITY=" + QByteArray::number(level(type).priority)};
    if (name.startsWith(ownCategoryPrefix())) {
        fields.push_back(QByteArray("SUBSYSTEM=") + logSubsystem);
        fields.push_back("CATEGORY=" + name.sliced(ownCategoryPrefix().size()));
    } else {
        fields.push_back("CATEGORY=" + name);
    }
    if (context.file)
        fields.push_back(QByteArray("CODE_FILE=") + context.file);
    if (context.line > 0)
        fields.push_back("CODE_LINE=" + QByteArray::number(context.line));
    if (context.function)
        fields.push_back(QByteArray("CODE_FUNC=") + context.function);
    return fields;
}

QByteArray stderrLine(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    return category(context) + ": " + level(type).name + ": " + escaped(text).toUtf8() + '\n';
}

} // namespace tickwise
