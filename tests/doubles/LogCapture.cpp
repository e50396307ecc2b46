#include "doubles/LogCapture.h"

namespace tickwise::test {

namespace {

std::vector<LogLine> *collected = nullptr;
QtMessageHandler previousHandler = nullptr;

void collect(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    collected->push_back({type, QString::fromUtf8(context.category), text});
}

} // namespace

LogCapture::LogCapture()
{
    Q_ASSERT(!collected);
    collected = new std::vector<LogLine>;
    previousHandler = qInstallMessageHandler(collect);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previousHandler);
    delete collected;
    collected = nullptr;
}

const std::vector<LogLine> &LogCapture::lines() const
{
    return *collected;
}

QStringList LogCapture::texts(const QString &category) const
{
    QStringList texts;
    for (const LogLine &line : *collected) {
        if (line.category == category)
            texts.append(line.text);
    }
    return texts;
}

} // namespace tickwise::test
