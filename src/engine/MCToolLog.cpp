#include "MCToolLog.h"

#include "MCHelpers.h"

#include <QFile>
#include <QRegularExpression>

namespace MCToolLog {

namespace {

constexpr qsizetype kMaxSummaryLength = 400;

} // namespace

QStringList tailLines(const QString &path, qint64 maxBytes)
{
    QFile log(path);
    if (path.isEmpty() || !log.open(QIODevice::ReadOnly))
        return {};
    if (log.size() > maxBytes)
        log.seek(log.size() - maxBytes);
    QByteArray text = log.readAll();
    text.replace('\r', '\n');
    return MCHelpers::decodeToolOutput(text).split(QLatin1Char('\n'));
}

bool isProgressLine(const QString &line)
{
    static const QRegularExpression progress(QStringLiteral(
        R"(^\s*$|^Pos:|\(\s*\d+%\)\s*$|^Progress: \d+%|\|\s*\(\d+/100\)\s*$|^\s*\d+(\.\d+)?%\s*$|^\S+ \d+% done|^frame=\s*\d+)"));
    return progress.match(line).hasMatch();
}

QString failureSummary(const QStringList &lines, int count)
{
    QStringList picked;
    for (qsizetype i = lines.size() - 1; i >= 0 && picked.size() < count; --i) {
        const QString line = lines.at(i).simplified();
        if (isProgressLine(line) || picked.contains(line))
            continue;
        picked.prepend(line);
    }
    QString summary = picked.join(QStringLiteral(" / "));
    if (summary.size() > kMaxSummaryLength)
        summary = QStringLiteral("...") + summary.right(kMaxSummaryLength);
    return summary;
}

} // namespace MCToolLog
