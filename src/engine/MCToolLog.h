#pragma once

#include <QString>
#include <QStringList>

// Plain functions over a tool's log: what a user needs to read when the tool
// failed, without the progress lines it rewrote in place.
namespace MCToolLog {

// The last lines of a log (carriage-return updates count as lines), read
// from at most its last maxBytes.
QStringList tailLines(const QString &path, qint64 maxBytes = 64 * 1024);

// Whether a line only reports progress ("Pos: ... ( 42%)", "Progress: 42%",
// "| (42/100)", a bare percentage) or is blank.
bool isProgressLine(const QString &line);

// The tool's own last words: up to count meaningful lines from the end,
// oldest first, joined by " / ", shortened to a readable length.
QString failureSummary(const QStringList &lines, int count = 3);

} // namespace MCToolLog
