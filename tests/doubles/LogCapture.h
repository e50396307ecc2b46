#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace tickwise::test {

struct LogLine
{
    QtMsgType type;
    QString category;
    QString text;
};

/// Collects every log line while it lives, instead of printing it.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    const std::vector<LogLine> &lines() const;
    /// The texts of one category ("com.pelmo.tickwise.Settings"), in order.
    QStringList texts(const QString &category) const;
};

} // namespace tickwise::test
