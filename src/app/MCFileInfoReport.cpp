#include "MCFileInfoReport.h"

#include "MCLog.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

QStringList MCFileInfoReport::save(const QList<QUrl> &files, const QString &preferredFolder) const
{
    QStringList written;
    QStringList failed;
    for (const QUrl &file : files) {
        const QFileInfo source(file.toLocalFile());
        const QString folder = preferredFolder.isEmpty() ? source.absolutePath() : preferredFolder;
        const QString report = doShellScriptFor(urlOfApp(QStringLiteral("mediainfo")), {QStringLiteral("-f"), file});
        QSaveFile out(QDir(folder).filePath(QStringLiteral("%1.info.txt").arg(source.fileName())));
        if (!out.open(QIODevice::WriteOnly) || out.write(report.toUtf8()) < 0 || !out.commit()) {
            MCLog::line(QStringLiteral("Could not write %1: %2").arg(out.fileName(), out.errorString()));
            failed << QStringLiteral("%1 (%2)").arg(out.fileName(), out.errorString());
            continue;
        }
        written << out.fileName();
    }
    if (!failed.isEmpty())
        showTimedNotice(QStringLiteral("Kestrane could not save the file information."), failed.join(QLatin1Char('\n')));
    return written;
}
