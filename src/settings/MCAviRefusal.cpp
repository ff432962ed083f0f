#include "MCAviRefusal.h"

#include "MCContainers.h"
#include "MCHelpers.h"
#include "MCTextNumbers.h"
#include "MCWords.h"

#include <QFileInfo>
#include <QHash>

using MCTextNumbers::integerValue;

namespace {

const QString kPassthru = QStringLiteral("passthru");

// MEncoder refuses a lower MPEG-4 bit rate; LAME a higher MP3 one.
constexpr long long kLowestVideoBitRate = 4;
constexpr long long kHighestMp3BitRate = 320;

MCVideoTrackPtr firstOfType(const MCSelection &selection, const QStringList &types)
{
    for (const MCVideoTrackPtr &track : selection.trackList) {
        if (track && types.contains(track->trackType))
            return track;
    }
    return nullptr;
}

// The codec as users know it, from its class name.
QString displayName(const QString &trackCodec)
{
    static const QHash<QString, QString> names{
        {QStringLiteral("ogg"), QStringLiteral("Vorbis")},   {QStringLiteral("eac3"), QStringLiteral("E-AC-3")},
        {QStringLiteral("truehd"), QStringLiteral("TrueHD")}, {QStringLiteral("opus"), QStringLiteral("Opus")},
        {QStringLiteral("Wavpack"), QStringLiteral("WavPack")}, {QStringLiteral("vp9"), QStringLiteral("VP9")},
        {QStringLiteral("av1"), QStringLiteral("AV1")},
    };
    return names.value(trackCodec, trackCodec.toUpper());
}

} // namespace

bool MCAviRefusal::aviCarriesAudio(const QString &trackCodec)
{
    // MEncoder copies these into an AVI in step and players read them there;
    // AAC, Opus and the newer surround codecs it refuses, Vorbis and FLAC it
    // writes in a form devices do not play.
    static const QStringList carried{QStringLiteral("mp3"), QStringLiteral("mp2"), QStringLiteral("ac3"),
                                     QStringLiteral("dts"), QStringLiteral("wav"), QStringLiteral("wma")};
    return carried.contains(trackCodec);
}

QString MCAviRefusal::reasonFor(const MCSelection &selection, bool typedBitRateValid)
{
    const MCVideoTrackPtr video = firstOfType(selection, {QStringLiteral("Video")});
    const MCVideoTrackPtr audio = firstOfType(selection, {QStringLiteral("Audio")});
    if (!video || !audio)
        return {};
    for (const QString &reason : {videoReason(selection, *video, typedBitRateValid), audioReason(*audio),
                                  subtitleReason(selection, *video)}) {
        if (!reason.isEmpty())
            return reason;
    }
    return {};
}

QString MCAviRefusal::videoReason(const MCSelection &selection, const MCVideoTrack &video, bool typedBitRateValid)
{
    if (video.userCodec == kPassthru) {
        // MEncoder copies these, under tags AVI players and mediainfo do not know.
        if (video.trackCodec == QLatin1String("vp9") || video.trackCodec == QLatin1String("av1"))
            return QStringLiteral("An AVI cannot hold %1 video as it is: choose MPEG-4.").arg(displayName(video.trackCodec));
        // Copied out of a transport stream, MPEG-2 loses its first pictures
        // and runs ahead of its sound; read another way it is garbled.
        if (video.trackCodec == QLatin1String("mpeg2") && MCContainers::isTransportStream(selection.videoTrackFileExtension))
            return QStringLiteral("MPEG-2 video cannot be copied out of a transport stream in step with its sound: "
                                  "choose MPEG-4.");
        return {};
    }
    return mpeg4BitRateReason(selection, typedBitRateValid);
}

QString MCAviRefusal::mpeg4BitRateReason(const MCSelection &selection, bool typedBitRateValid)
{
    if (!typedBitRateValid)
        return QStringLiteral("The video bit rate must be a whole number of kbit/s.");
    if (integerValue(selection.userVideoBitRate) >= kLowestVideoBitRate)
        return {};
    if (integerValue(selection.videoTrackBitRate) <= 0)
        return QStringLiteral("This video does not declare its bit rate: enter the MPEG-4 video bit rate in kbit/s.");
    return QStringLiteral("MPEG-4 needs a video bit rate of at least %1 kbit/s.").arg(kLowestVideoBitRate);
}

QString MCAviRefusal::audioReason(const MCVideoTrack &audio)
{
    const long long channels = integerValue(audio.trackNumberOfChannels);
    if (audio.userCodec == kPassthru) {
        if (aviCarriesAudio(audio.trackCodec))
            return {};
        return QStringLiteral("An AVI cannot hold %1 audio as it is: choose %2.")
            .arg(displayName(audio.trackCodec), channels >= 6 ? QStringLiteral("MP3 or AC-3 5.1") : QStringLiteral("MP3"));
    }
    // Fewer than six channels are always encoded to MP3, at the AC-3 rate.
    if (audio.userCodec == QLatin1String("ac3") && channels < 6)
        return QStringLiteral("AC-3 5.1 needs a surround track of 6 channels; this one has %1: choose MP3.")
            .arg(channels);
    if (audio.userCodec == QLatin1String("mp3") && integerValue(audio.userBitRate) > kHighestMp3BitRate)
        return QStringLiteral("MP3 goes up to %1 kbit/s: choose a lower audio bit rate.").arg(kHighestMp3BitRate);
    return {};
}

QString MCAviRefusal::subtitleReason(const MCSelection &selection, const MCVideoTrack &video)
{
    const MCVideoTrackPtr subtitle = firstOfType(selection, {MCWords::trackSubtitle, QStringLiteral("External Subtitle")});
    if (subtitle && subtitle->userCodec == QLatin1String("burn") && video.userCodec == kPassthru)
        return QStringLiteral("Burning a subtitle needs the video re-encoded: choose MPEG-4, or extract the subtitle.");
    if (subtitle && subtitle->trackType == MCWords::trackSubtitle && subtitle->userCodec == QLatin1String("extract"))
        return extractionReason(subtitle->trackFileExtension.toLower());
    return {};
}

QString MCAviRefusal::extractionReason(const QString &container)
{
    // mkvextract reads Matroska and MP4Box reads MP4; no tool here takes a
    // subtitle out of any other container.
    if (container == QLatin1String("mkv"))
        return {};
    if (container == QLatin1String("mp4") || container == QLatin1String("m4v")) {
        if (QFileInfo::exists(MCHelpers::urlOfApp(QStringLiteral("mp4box")).toLocalFile()))
            return {};
        return QStringLiteral("Extracting the subtitle of an MP4 file needs MP4Box, which is not installed: "
                              "burn the subtitle in, or leave it out.");
    }
    return QStringLiteral("Kestrane cannot extract a subtitle from a .%1 file: burn it in, or leave it out.").arg(container);
}
