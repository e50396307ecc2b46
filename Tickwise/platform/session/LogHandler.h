#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <vector>

namespace tickwise {

/// Sends every log line of the process to the journal or, where no journal listens at the socket, to stderr. Debug
/// lines of this program's categories are off unless QT_LOGGING_RULES turns them on.
void installLogHandler(const char *journalSocket = "/run/systemd/journal/socket");

/// The journal's fields of a log line ("MESSAGE=...", "PRIORITY=3", ...). A category "com.pelmo.tickwise.X" gives
/// SUBSYSTEM and CATEGORY; any other is the CATEGORY alone.
std::vector<QByteArray> journalFields(QtMsgType type, const QMessageLogContext &context, const QString &text);

/// The same line for stderr, ending in its only line break: control characters are written as escapes, so that no text
/// can pass for a line of its own.
QByteArray stderrLine(QtMsgType type, const QMessageLogContext &context, const QString &text);

} // namespace tickwise
