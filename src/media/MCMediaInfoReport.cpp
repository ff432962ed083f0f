#include "MCMediaInfoReport.h"

namespace MCMediaInfoReport {

namespace {
const QString kSeparator = QStringLiteral(": ");
}

SectionKind headerKind(QStringView line)
{
    if (line.compare(u"Video", Qt::CaseInsensitive) == 0)
        return SectionKind::Video;
    if (line.startsWith(u"Audio #") || line.compare(u"Audio", Qt::CaseInsensitive) == 0)
        return SectionKind::Audio;
    if (line.startsWith(u"Text #") || line.compare(u"Text", Qt::CaseInsensitive) == 0)
        return SectionKind::Text;
    return SectionKind::None;
}

bool isSectionTitle(QStringView line)
{
    return !line.trimmed().isEmpty() && !line.contains(kSeparator);
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

KeyValue keyValue(QStringView line)
{
    const qsizetype first = line.indexOf(kSeparator);
    if (first < 0)
        return {line, {}, false};
    const qsizetype second = line.indexOf(kSeparator, first + 2);
    const QStringView value = second < 0 ? line.mid(first + 2) : line.mid(first + 2, second - first - 2);
    return {line.left(first), value, true};
}

qint64 leadingInteger(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == u'-' || text.at(i) == u'+'))
        negative = text.at(i++) == u'-';
    qint64 value = 0;
    // Digits past 18 would overflow; such an identifier means nothing anyway.
    for (int digits = 0; i < text.size() && text.at(i).isDigit() && digits < 18; ++i, ++digits)
        value = value * 10 + text.at(i).digitValue();
    return negative ? -value : value;
}

QStringList lines(const QString &report)
{
    return report.split(QLatin1Char('\n'));
}

} // namespace MCMediaInfoReport
