#include "MCMkvExtractor.h"

#include "MCMkvJobChecks.h"

MCMkvExtractor::MCMkvExtractor()
{
    converterName = QStringLiteral("mkvExtractor");
}

QString MCMkvExtractor::startConversionFor(const MCSelectionPtr &selection)
{
    initializeFor(selection);
    const MCVideoTrackPtr track = trackToProcess();
    if (!track)
        return refuse(QStringLiteral("there is no track to extract"));
    if (const QString refusal = MCMkvJobChecks::extractionRefusal(*track); !refusal.isEmpty())
        return refuse(refusal);
    const QString kind = track->trackType == QStringLiteral("Video")   ? QStringLiteral("v")
                         : track->trackType == QStringLiteral("Audio") ? QStringLiteral("a")
                                                                       : QStringLiteral("s");
    const QString output = QStringLiteral("%1%2.%3%4.%5")
                               .arg(outputFileURL.toLocalFile(),
                                    isTemporaryOutput ? QStringLiteral(".temp") : QString(), kind,
                                    QString::number(track->trackMencoderID.toInt() + 1), track->trackExtension);
    outputFileURL = QUrl::fromLocalFile(output);
    logFileURL = QUrl::fromLocalFile(output + QStringLiteral(".extract.log"));
    tempFileToDeleteURL = isTemporaryOutput ? outputFileURL : QUrl();
    const MCOptionList options{QStringLiteral("tracks"), inputFileURL,
                               QStringLiteral("%1:%2").arg(track->trackMkvmergeID, doubleQuotedFormOf(output)),
                               QStringLiteral("&>"), logFileURL, QStringLiteral("& echo $!")};
    return launchInBackground(urlOfApp(QStringLiteral("mkvextract")), options);
}

QString MCMkvExtractor::progressFromLine(const QString &line)
{
    const QString last = line.split(QStringLiteral(": ")).constLast();
    return last.endsWith(QLatin1Char('%')) ? last : QStringLiteral("error");
}

QString MCMkvExtractor::monitorConversion()
{
    if (!toolIsRunning())
        return QStringLiteral("Complete");
    return progressFromLine(lastLogLine());
}
