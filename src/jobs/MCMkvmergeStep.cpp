#include "MCMkvmergeStep.h"

#include "MCNotificationCenter.h"
#include "MCOutputGuard.h"

#include <QFileInfo>

QString MCMkvmergeStep::monitorConversion()
{
    if (!toolIsRunning())
        return QStringLiteral("Complete");
    return progressFromLine(lastLogLine());
}

QString MCMkvmergeStep::progressFromLine(const QString &line)
{
    const QString last = line.split(QStringLiteral(": ")).constLast();
    return last.endsWith(QLatin1Char('%')) ? last : QStringLiteral("error");
}

QUrl MCMkvmergeStep::saveFolderBeside(const QUrl &file) const
{
    const QString path = file.toLocalFile();
    return preferredSaveDirectory(path.isEmpty() ? QUrl() : QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

QString MCMkvmergeStep::launchMkvmerge(MCOptionList arguments, const QList<QUrl> &inputs)
{
    doShell_ID.clear();
    if (MCOutputGuard::writesOverAnInput({outputFileURL, logFileURL}, inputs))
        return refuse(QStringLiteral("its result would be written over one of its own inputs"));
    // A watched folder must not take the result up as a new movie.
    MCNotificationCenter::defaultCenter().post(MCNotificationName::conversionStarted, outputFileURL);
    arguments << QStringLiteral("&>") << logFileURL << QStringLiteral("& echo $!");
    return launchInBackground(urlOfApp(QStringLiteral("mkvmerge")), arguments);
}
