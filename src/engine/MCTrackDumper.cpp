#include "MCTrackDumper.h"

#include "MCMencoderVideo.h"
#include "MCNotificationCenter.h"

MCTrackDumper::MCTrackDumper()
{
    converterName = QStringLiteral("trackDumper");
}

QString MCTrackDumper::startConversionFor(const MCSelectionPtr &selection)
{
    initializeFor(selection);
    const MCVideoTrackPtr track = trackToProcess();
    if (!track)
        return refuse(QStringLiteral("there is no track to extract"));
    const QString base = outputFileURL.toLocalFile();
    QUrl tool;
    MCOptionList options{inputFileURL};
    if (track->trackType == QStringLiteral("Video")) {
        dumpingAudio = false;
        outputFileURL = QUrl::fromLocalFile(QStringLiteral("%1.dumped.video.%2").arg(base, track->trackExtension));
        tool = urlOfApp(QStringLiteral("mencoder"));
        options << QStringLiteral("-ovc copy -oac copy -idx -nosound -o");
    } else if (track->trackType == QStringLiteral("Audio")) {
        dumpingAudio = true;
        outputFileURL = QUrl::fromLocalFile(
            QStringLiteral("%1.dumped.a%2.%3").arg(base, track->trackMencoderID, track->trackExtension));
        tool = urlOfApp(QStringLiteral("mplayer"));
        options << QStringLiteral("-aid") << track->trackMencoderID << QStringLiteral("-dumpaudio -dumpfile");
    } else {
        return refuse(QStringLiteral("Kestrane cannot extract a %1 track from a .%2 file")
                          .arg(track->trackType.toLower(), track->trackFileExtension));
    }
    logFileURL = QUrl::fromLocalFile(outputFileURL.toLocalFile() + QStringLiteral(".log"));
    options << outputFileURL << QStringLiteral("&>") << logFileURL << QStringLiteral("& echo $!");
    // The dump only feeds a later step of the job.
    tempFileToDeleteURL = outputFileURL;
    MCNotificationCenter::defaultCenter().post(MCNotificationName::conversionStarted, outputFileURL);
    return launchInBackground(tool, options);
}

QString MCTrackDumper::monitorConversion()
{
    if (!toolIsRunning())
        return QStringLiteral("Complete");
    if (dumpingAudio)
        return QStringLiteral("Extracting");
    return MCMencoderVideo::percentFromPosLine(lastLogLine()).value_or(QString());
}
