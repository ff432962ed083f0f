#include "MCMp4Extractor.h"

#include "MCStagedSource.h"

#include <QDir>
#include <QFileInfo>

MCMp4Extractor::MCMp4Extractor()
{
    converterName = QStringLiteral("mp4Extractor");
}

bool MCMp4Extractor::prepareFor(const MCSelectionPtr &selection, MCOptionList *options)
{
    initializeFor(selection);
    const MCVideoTrackPtr track = trackToProcess();
    if (!track || !selection)
        return false;
    const bool staged = readsThroughStagedLink && !stagingFolder.isEmpty();
    if (staged) {
        const QString source = inputFileURL.toLocalFile();
        const QString link = MCStagedSource::linkInto(stagingFolder, source, QFileInfo(source).fileName());
        if (link.isEmpty())
            return false;
        inputFileURL = QUrl::fromLocalFile(link);
    }
    // MP4Box names the file itself, beside what it reads; the name is predicted.
    const QUrl read = staged ? inputFileURL : selection->videoTrackFileURL;
    const QDir folder(QFileInfo(read.toLocalFile()).absolutePath());
    const bool subtitle = track->trackType == QStringLiteral("Subtitle");
    const QString name = subtitle
                             ? QStringLiteral("%1_%2_text.srt").arg(selection->videoTrackFileShortName, track->trackMp4boxID)
                             : QStringLiteral("%1_track%2.%3")
                                   .arg(selection->videoTrackFileShortName, track->trackMp4boxID, track->trackExtension);
    outputFileURL = QUrl::fromLocalFile(folder.filePath(name));
    logFileURL = QUrl::fromLocalFile(outputFileURL.toLocalFile() + QStringLiteral(".extract.log"));
    tempFileToDeleteURL = isTemporaryOutput ? outputFileURL : QUrl();
    *options = {inputFileURL, subtitle ? QStringLiteral("-srt") : QStringLiteral("-raw"), track->trackMp4boxID};
    return true;
}

QString MCMp4Extractor::startConversionFor(const MCSelectionPtr &selection)
{
    MCOptionList options;
    if (!prepareFor(selection, &options))
        return refuse(QStringLiteral("there is no track to extract"));
    const QString pid = launchMp4Box(options, {inputFileURL});
    if (pid == QStringLiteral("error"))
        tempFileToDeleteURL.clear();
    return pid;
}
