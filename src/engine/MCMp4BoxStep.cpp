#include "MCMp4BoxStep.h"

#include "MCNotificationCenter.h"
#include "MCOutputGuard.h"

QString MCMp4BoxStep::monitorConversion()
{
    if (!toolIsRunning())
        return QStringLiteral("Complete");
    return progressFromLine(lastLogLine());
}

QString MCMp4BoxStep::progressFromLine(const QString &line)
{
    const qsizetype bar = line.lastIndexOf(QStringLiteral("| ("));
    QString piece = (bar < 0 ? line : line.mid(bar + 3)).section(QLatin1Char('/'), 0, 0);
    if (piece.isEmpty())
        piece = QStringLiteral("0");
    if (!isStringInteger(piece))
        return QStringLiteral("error");
    return piece + QLatin1Char('%');
}

QString MCMp4BoxStep::launchMp4Box(MCOptionList arguments, const QList<QUrl> &inputs)
{
    doShell_ID.clear();
    if (MCOutputGuard::writesOverAnInput({outputFileURL, logFileURL}, inputs))
        return refuse(QStringLiteral("its result would be written over one of its own inputs"));
    if (!outputFileURL.isEmpty() && !inputs.contains(outputFileURL))
        MCNotificationCenter::defaultCenter().post(MCNotificationName::conversionStarted, outputFileURL);
    arguments << QStringLiteral("&>") << logFileURL << QStringLiteral("& echo $!");
    return launchInBackground(urlOfApp(QStringLiteral("mp4box")), arguments);
}
