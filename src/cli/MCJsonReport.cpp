#include "MCJsonReport.h"

#include "MCVideoFile.h"

#include <QJsonArray>

namespace {

QString pathOf(const QUrl &url)
{
    return url.isLocalFile() ? url.toLocalFile() : url.toString();
}

} // namespace

QJsonObject MCJsonReport::trackObject(const MCVideoTrack &track)
{
    return {
        {QStringLiteral("trackType"), track.trackType},
        {QStringLiteral("trackIndex"), track.trackIndex},
        {QStringLiteral("trackCodec"), track.trackCodec},
        {QStringLiteral("trackExtension"), track.trackExtension},
        {QStringLiteral("trackInfo"), track.trackInfo},
        {QStringLiteral("trackTitle"), track.trackTitle},
        {QStringLiteral("trackLanguage"), track.trackLanguage},
        {QStringLiteral("trackBitRate"), track.trackBitRate},
        {QStringLiteral("trackNumberOfChannels"), track.trackNumberOfChannels},
        {QStringLiteral("trackDefaultFlag"), track.trackDefaultFlag},
        {QStringLiteral("trackForcedFlag"), track.trackForcedFlag},
        {QStringLiteral("trackMp4boxID"), track.trackMp4boxID},
        {QStringLiteral("trackMkvmergeID"), track.trackMkvmergeID},
        {QStringLiteral("trackFfmpegID"), track.trackFfmpegID},
        {QStringLiteral("trackMencoderID"), track.trackMencoderID},
        {QStringLiteral("selectedAudioTrackIndex"), track.selectedAudioTrackIndex},
        {QStringLiteral("trackFilePath"), track.trackFilePath},
        {QStringLiteral("trackFileName"), track.trackFileName},
        {QStringLiteral("trackFileExtension"), track.trackFileExtension},
        {QStringLiteral("trackPathToFileFolder"), track.trackPathToFileFolder},
        {QStringLiteral("trackFileURL"), pathOf(track.trackFileURL)},
        {QStringLiteral("trackURLToFileFolder"), pathOf(track.trackURLToFileFolder)},
        {QStringLiteral("convertedFileURL"), pathOf(track.convertedFileURL)},
        {QStringLiteral("trackSelected"), track.trackSelected},
        {QStringLiteral("userCodec"), track.userCodec},
        {QStringLiteral("userBitRate"), track.userBitRate},
        {QStringLiteral("userNumberOfChannels"), track.userNumberOfChannels},
        {QStringLiteral("isStereoCopyFlag"), track.isStereoCopyFlag},
        {QStringLiteral("createStereoCopyFlag"), track.createStereoCopyFlag},
        {QStringLiteral("externalTrackFlag"), track.externalTrackFlag},
        {QStringLiteral("convertSubFlag"), track.convertSubFlag},
        {QStringLiteral("wasReEncoded"), track.wasReEncoded},
        {QStringLiteral("muxingTrackType"), track.muxingTrackType},
        {QStringLiteral("muxingTrackLanguage"), track.muxingTrackLanguage},
        {QStringLiteral("muxingTrackTitle"), track.muxingTrackTitle},
        {QStringLiteral("muxingTrackMp4boxID"), track.muxingTrackMp4boxID},
        {QStringLiteral("muxingTrackMencoderID"), track.muxingTrackMencoderID},
        {QStringLiteral("muxingTrackCodec"), track.muxingTrackCodec},
        {QStringLiteral("muxingTrackFileURL"), pathOf(track.muxingTrackFileURL)},
        {QStringLiteral("muxingTrackExtension"), track.muxingTrackExtension},
        {QStringLiteral("muxingTrackFileExtension"), track.muxingTrackFileExtension},
    };
}

QJsonObject MCJsonReport::fileObject(const MCVideoFile &file)
{
    QJsonArray tracks;
    for (const MCVideoTrackPtr &track : file.trackList) {
        if (track)
            tracks.append(trackObject(*track));
    }
    return {
        {QStringLiteral("theFilePath"), file.theFilePath},
        {QStringLiteral("theFileName"), file.theFileName},
        {QStringLiteral("theFileShortName"), file.theFileShortName},
        {QStringLiteral("theFileExtension"), file.theFileExtension},
        {QStringLiteral("pathToFileFolder"), file.pathToFileFolder},
        {QStringLiteral("isVideoFile"), file.isVideoFile},
        {QStringLiteral("theDuration"), file.theDuration},
        {QStringLiteral("theFPS"), file.theFPS},
        {QStringLiteral("videoPAR"), file.videoPAR},
        {QStringLiteral("theWidth"), file.theWidth},
        {QStringLiteral("theHeight"), file.theHeight},
        {QStringLiteral("codecProfile"), file.codecProfile},
        {QStringLiteral("theVideoBitRate"), file.theVideoBitRate},
        {QStringLiteral("theVideoCodec"), file.theVideoCodec},
        {QStringLiteral("headerRemovalFlag"), file.headerRemovalFlag},
        {QStringLiteral("theNumberOfVideoTracks"), file.theNumberOfVideoTracks},
        {QStringLiteral("theNumberOfAudioTracks"), file.theNumberOfAudioTracks},
        {QStringLiteral("theNumberOfSubTracks"), file.theNumberOfSubTracks},
        {QStringLiteral("tracks"), tracks},
    };
}
