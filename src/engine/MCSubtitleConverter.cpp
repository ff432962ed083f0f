#include "MCSubtitleConverter.h"

#include "MCLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

MCSubtitleConverter::MCSubtitleConverter()
{
    converterName = QStringLiteral("subtitleConverter");
}

QUrl MCSubtitleConverter::convertSubtitleForURL(const QUrl &subtitle, const MCSelectionPtr &selection,
                                                const QString &workFolder)
{
    tempFileToDeleteURL.clear();
    if (!selection)
        return {};
    initializeFor(selection);
    const QDir folder(workFolder);
    const QUrl dump = QUrl::fromLocalFile(folder.filePath(QStringLiteral("dumpsub.srt")));
    outputFileURL = dump;
    QFile::remove(dump.toLocalFile());
    // Without -utf8 today's MPlayer writes every non-ASCII letter as "?".
    const QString head = QStringLiteral("cd %1; %2 -utf8 -sub")
                             .arg(singleQuotedFormOf(workFolder), singleQuotedFormOf(urlOfApp(QStringLiteral("mplayer")).toLocalFile()));
    doUnixCommand(head, {subtitle, QStringLiteral("-dumpsrtsub -vo null -ao null -frames 0"), selection->videoTrackFileURL,
                         QStringLiteral("2>&1")});
    if (fixDumpedSrt(dump) != QStringLiteral("OK"))
        return {};
    const QString result = folder.filePath(QFileInfo(subtitle.toLocalFile()).completeBaseName() + QStringLiteral(".srt"));
    QFile::remove(result);
    if (!QFile::rename(dump.toLocalFile(), result))
        return {};
    outputFileURL = QUrl::fromLocalFile(result);
    tempFileToDeleteURL = outputFileURL;
    return outputFileURL;
}

QString MCSubtitleConverter::fixDumpedSrt(const QUrl &dump) const
{
    QFile file(dump.toLocalFile());
    if (!file.exists())
        return QStringLiteral("no file");
    if (!file.open(QIODevice::ReadOnly))
        MCLog::line(QStringLiteral("The subtitle dump %1 could not be read: %2").arg(file.fileName(), file.errorString()));
    const QString cleaned = withoutBlanksAfterTimeLines(QString::fromUtf8(file.readAll()));
    file.close();
    file.remove();
    if (!file.open(QIODevice::WriteOnly) || file.write(cleaned.toUtf8()) < 0)
        return QStringLiteral("no file");
    return QStringLiteral("OK");
}

QString MCSubtitleConverter::withoutBlanksAfterTimeLines(const QString &text)
{
    // A blank line between a time line and its text would end the cue.
    QString cleaned;
    bool afterTimeLine = false;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const bool blank = line.isEmpty() || line == QStringLiteral(" ");
        if (!(afterTimeLine && blank))
            cleaned += line + QLatin1Char('\n');
        afterTimeLine = line.contains(QStringLiteral("-->"));
    }
    return cleaned;
}
