#include "MCMencoderAudio.h"

#include "MCAudioOptions.h"
#include "MCMencoderVideo.h"
#include "MCNotificationCenter.h"

namespace {

QString stereoAac(const QString &bitRate)
{
    return QStringLiteral("-ovc copy -oac faac -faacopts br=%1:mpeg=4:object=2 -channels 2 -srate 48000 -of rawaudio")
        .arg(bitRate);
}

QString surroundAac(const QString &bitRate)
{
    return QStringLiteral("-ovc copy -oac faac -faacopts br=%1:mpeg=4:object=2 -channels 6 %2 -srate 48000 -of rawaudio")
        .arg(bitRate, MCAudioOptions::identityChannelMap());
}

QString surroundAc3(const QString &bitRate)
{
    return QStringLiteral("-ovc copy %1 -of rawaudio").arg(MCAudioOptions::surroundAc3(bitRate));
}

} // namespace

MCMencoderAudio::MCMencoderAudio()
{
    converterName = QStringLiteral("mencoderAudio");
    isTemporaryOutput = false;
}

QString MCMencoderAudio::codecOptionFor(const MCVideoTrack &track)
{
    // Fewer than six channels always give stereo AAC, whatever was asked.
    // Six-channel DTS takes the options of any other six-channel source:
    // its channels arrive in the standard order (see docs/adaptations.md).
    if (track.trackNumberOfChannels.toInt() < 6)
        return stereoAac(track.userBitRate);
    if (track.userCodec == QStringLiteral("aac") && track.userNumberOfChannels == QStringLiteral("6"))
        return surroundAac(track.userBitRate);
    if (track.userCodec == QStringLiteral("ac3"))
        return surroundAc3(track.userBitRate);
    return stereoAac(track.userBitRate);
}

void MCMencoderAudio::nameOutputAndLog(const MCVideoTrack &track)
{
    const QString extPart = track.externalTrackFlag ? QStringLiteral(".ext") : QString();
    const QString addedPart = track.isStereoCopyFlag ? QStringLiteral(".added") : QString();
    const QString extension = track.userCodec == QStringLiteral("ac3") ? QStringLiteral(".ac3") : QStringLiteral(".aac");
    const QString base = outputFileURL.toLocalFile();
    if (track.externalTrackFlag) {
        outputFileURL = QUrl::fromLocalFile(base + extPart + addedPart + extension);
        logFileURL = QUrl::fromLocalFile(logFileURL.toLocalFile() + extPart + addedPart + QStringLiteral(".log"));
        return;
    }
    // The log name is built on the output's name and so repeats the
    // pattern (clip.mkv.temp.Audio.t1.ac3.temp.Audio.t1.log); logs kept for
    // the user are known by that name.
    const QString pattern = QStringLiteral(".temp.Audio.t%1%2%3").arg(track.trackMencoderID, extPart, addedPart);
    outputFileURL = QUrl::fromLocalFile(base + pattern + extension);
    logFileURL = QUrl::fromLocalFile(outputFileURL.toLocalFile() + pattern + QStringLiteral(".log"));
}

QString MCMencoderAudio::prepareFor(const MCSelectionPtr &selection)
{
    initializeFor(selection);
    optionArray.clear();
    const MCVideoTrackPtr track = trackToProcess();
    if (!track || track->trackType != QStringLiteral("Audio"))
        return QStringLiteral("there is no audio track to encode");
    nameOutputAndLog(*track);
    // The encoded stream only feeds the job's muxing, whatever the job said.
    tempFileToDeleteURL = outputFileURL;
    optionArray = {inputFileURL,
                   QStringLiteral("-aid %1").arg(track->trackMencoderID),
                   codecOptionFor(*track),
                   MCAudioOptions::decoderFor(*track),
                   QStringLiteral("-o"),
                   outputFileURL,
                   QStringLiteral("&>"),
                   logFileURL,
                   QStringLiteral("& echo $!")};
    return {};
}

QString MCMencoderAudio::startConversionFor(const MCSelectionPtr &selection)
{
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    if (const QString unservable = prepareFor(selection); !unservable.isEmpty())
        return refuse(unservable);
    MCNotificationCenter::defaultCenter().post(MCNotificationName::conversionStarted, outputFileURL);
    oldProgress = QString();
    return launchInBackground(urlOfApp(mencoderVersion), optionArray);
}

QString MCMencoderAudio::monitorConversion()
{
    if (!toolIsRunning())
        return QStringLiteral("Complete");
    if (const std::optional<QString> percent = MCMencoderVideo::percentFromPosLine(lastLogLine()))
        oldProgress = *percent;
    return oldProgress;
}
