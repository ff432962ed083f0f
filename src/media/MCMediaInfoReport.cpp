#include "MCMediaInfoReport.h"

namespace MCMediaInfoReport {

SectionKind headerKind(const QString &line)
{
    if (line.compare(QStringLiteral("Video"), Qt::CaseInsensitive) == 0)
        return SectionKind::Video;
    if (line.startsWith(QStringLiteral("Audio #")) || line.compare(QStringLiteral("Audio"), Qt::CaseInsensitive) == 0)
        return SectionKind::Audio;
    if (line.startsWith(QStringLiteral("Text #")) || line.compare(QStringLiteral("Text"), Qt::CaseInsensitive) == 0)
        return SectionKind::Text;
    return SectionKind::None;
}

QList<Header> headers(const QStringList &lines)
{
    QList<Header> found;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const SectionKind kind = headerKind(lines.at(i));
        if (kind != SectionKind::None)
            found.append({i, kind});
    }
    return found;
}

KeyValue keyValue(const QString &line)
{
    const qsizetype first = line.indexOf(QStringLiteral(": "));
    if (first < 0)
        return {line, {}, false};
    const qsizetype second = line.indexOf(QStringLiteral(": "), first + 2);
    const QString value = second < 0 ? line.mid(first + 2) : line.mid(first + 2, second - first - 2);
    return {line.left(first), value, true};
}

qint64 leadingInteger(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        negative = text.at(i++) == QLatin1Char('-');
    qint64 value = 0;
    for (; i < text.size() && text.at(i).isDigit() && value < (qint64(1) << 58); ++i)
        value = value * 10 + text.at(i).digitValue();
    return negative ? -value : value;
}

QStringList lines(const QString &report)
{
    return report.split(QLatin1Char('\n'));
}

} // namespace MCMediaInfoReport
