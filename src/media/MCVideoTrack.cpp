#include "MCVideoTrack.h"

#include "MCLog.h"

namespace {

QString flagText(bool flag)
{
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

QString pathText(const QUrl &url)
{
    return url.isLocalFile() ? url.toLocalFile() : url.toString();
}

} // namespace

MCVideoTrack::MCVideoTrack()
    : muxingTrackFileURL(QUrl(QStringLiteral("temp/file.url")))
{
}

void MCVideoTrack::initializeForMuxing()
{
    muxingTrackType = trackType;
    muxingTrackLanguage = trackLanguage;
    muxingTrackTitle = trackTitle;
    if (externalTrackFlag) {
        muxingTrackMp4boxID = QStringLiteral("one track");
        muxingTrackMencoderID = QStringLiteral("one track");
    } else {
        muxingTrackMp4boxID = trackMp4boxID;
        muxingTrackMencoderID = trackMencoderID;
    }
    // The stream now lives in a new file, so the source's id no longer applies.
    if (wasReEncoded)
        trackMkvmergeID = QStringLiteral("none");
    muxingTrackCodec = trackCodec;
    muxingTrackFileURL = trackFileURL;
    wasReEncoded = false;
    muxingTrackExtension = trackExtension;
    muxingTrackFileExtension = trackFileExtension;
}

QList<std::pair<QString, QString>> MCVideoTrack::trackPropertyPairs() const
{
    return {
        {QStringLiteral("trackSelected"), flagText(trackSelected)},
        {QStringLiteral("trackType"), trackType},
        {QStringLiteral("trackMp4boxID"), trackMp4boxID},
        {QStringLiteral("trackFfmpegID"), trackFfmpegID},
        {QStringLiteral("trackInfo"), trackInfo},
        {QStringLiteral("trackTitle"), trackTitle},
        {QStringLiteral("trackMencoderID"), trackMencoderID},
        {QStringLiteral("trackIndex"), trackIndex},
        {QStringLiteral("selectedAudioTrackIndex"), selectedAudioTrackIndex},
        {QStringLiteral("trackLanguage"), trackLanguage},
        {QStringLiteral("trackCodec"), trackCodec},
        {QStringLiteral("trackExtension"), trackExtension},
        {QStringLiteral("trackBitRate"), trackBitRate},
        {QStringLiteral("trackNumberOfChannels"), trackNumberOfChannels},
        {QStringLiteral("trackMkvmergeID"), trackMkvmergeID},
        {QStringLiteral("trackDefaultFlag"), flagText(trackDefaultFlag)},
        {QStringLiteral("trackForcedFlag"), flagText(trackForcedFlag)},
        {QStringLiteral("userCodec"), userCodec},
        {QStringLiteral("userBitRate"), userBitRate},
        {QStringLiteral("userNumberOfChannels"), userNumberOfChannels},
        {QStringLiteral("trackFilePath"), trackFilePath},
        {QStringLiteral("trackPathToFileFolder"), trackPathToFileFolder},
        {QStringLiteral("trackFileName"), trackFileName},
        {QStringLiteral("trackFileExtension"), trackFileExtension},
        {QStringLiteral("isStereoCopyFlag"), flagText(isStereoCopyFlag)},
        {QStringLiteral("createStereoCopyFlag"), flagText(createStereoCopyFlag)},
        {QStringLiteral("externalTrackFlag"), flagText(externalTrackFlag)},
        {QStringLiteral("convertSubFlag"), flagText(convertSubFlag)},
        {QStringLiteral("wasReEncoded"), flagText(wasReEncoded)},
    };
}

QList<std::pair<QString, QString>> MCVideoTrack::muxingPropertyPairs() const
{
    return {
        {QStringLiteral("muxingTrackType"), muxingTrackType},
        {QStringLiteral("muxingTrackLanguage"), muxingTrackLanguage},
        {QStringLiteral("muxingTrackTitle"), muxingTrackTitle},
        {QStringLiteral("muxingTrackMp4boxID"), muxingTrackMp4boxID},
        {QStringLiteral("muxingTrackMencoderID"), muxingTrackMencoderID},
        {QStringLiteral("muxingTrackCodec"), muxingTrackCodec},
        {QStringLiteral("muxingTrackFileURL"), pathText(muxingTrackFileURL)},
        {QStringLiteral("muxingTrackExtension"), muxingTrackExtension},
        {QStringLiteral("muxingTrackFileExtension"), muxingTrackFileExtension},
        {QStringLiteral("trackMkvmergeID"), trackMkvmergeID},
        {QStringLiteral("wasReEncoded"), flagText(wasReEncoded)},
    };
}

QString MCVideoTrack::stringFromTrackProperties() const
{
    QString text;
    for (const auto &[name, value] : trackPropertyPairs())
        text += QStringLiteral("%1 = %2\n").arg(name, value);
    return text;
}

void MCVideoTrack::logTrackProperties() const
{
    MCLog::line(QStringLiteral("#########################   Track Properties    #########################"));
    for (const auto &[name, value] : trackPropertyPairs())
        MCLog::line(QStringLiteral("%1 = %2").arg(name, value));
}

void MCVideoTrack::logMuxingTrackProperties() const
{
    for (const auto &[name, value] : muxingPropertyPairs())
        MCLog::line(QStringLiteral("%1 = %2").arg(name, value));
}
