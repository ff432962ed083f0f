#include "MCMp4TabRules.h"

#include "MCWords.h"

namespace {

const QString kPassthru = QStringLiteral("passthru");

// The track as the user sees it in the table: language and kind.
QString nameOf(const MCVideoTrack &track)
{
    const QString &language = track.trackLanguage;
    const bool known = !language.isEmpty() && language != QStringLiteral("undetermined") && language != QStringLiteral("none");
    const QString kind = track.trackType.toLower();
    return known ? QStringLiteral("the %1 %2 track").arg(language, kind) : QStringLiteral("the %1 track").arg(kind);
}

bool isSubtitle(const MCVideoTrack &track)
{
    return track.trackType == MCWords::trackSubtitle || track.trackType == QStringLiteral("External Subtitle");
}

// The job gets a subtitle's text out of these containers; any other leaves
// it behind.
bool subtitleSourceServed(const MCVideoTrack &track)
{
    if (track.externalTrackFlag || track.trackType == QStringLiteral("External Subtitle"))
        return true;
    const QString container = track.trackFileExtension.toLower();
    return container == QStringLiteral("mkv") || container == QStringLiteral("mp4") || container == QStringLiteral("m4v");
}

} // namespace

MCMp4TabRules::MCMp4TabRules(QObject *parent)
    : MCMkvTabRules(parent)
{
}

const QStringList &MCMp4TabRules::deviceList()
{
    static const QStringList devices{QStringLiteral("General"),
                                     QStringLiteral("Apple TV 3"),
                                     QStringLiteral("Apple TV 2"),
                                     QStringLiteral("iPad 3/iPhone 4S"),
                                     QStringLiteral("iPad (2 and Earlier)"),
                                     QStringLiteral("iPhone 4/iPod Touch (4G and Later)"),
                                     QStringLiteral("iPhone/iPod Touch (3G and Earlier)"),
                                     QStringLiteral("iPod"),
                                     QStringLiteral("PS3"),
                                     QStringLiteral("Xbox")};
    return devices;
}

bool MCMp4TabRules::isMp4Video(const QString &codec)
{
    const QString lower = codec.toLower();
    return lower == QStringLiteral("h264") || lower == QStringLiteral("mpeg4");
}

bool MCMp4TabRules::isMp4Audio(const QString &codec)
{
    const QString lower = codec.toLower();
    return lower == QStringLiteral("aac") || lower == QStringLiteral("ac3");
}

bool MCMp4TabRules::isTextSubtitle(const QString &codec)
{
    static const QStringList text{QStringLiteral("srt"), QStringLiteral("sub"), QStringLiteral("ass"), QStringLiteral("ssa"),
                                  QStringLiteral("ttxt")};
    return text.contains(codec.toLower());
}

QString MCMp4TabRules::conversionJobType() const
{
    return MCWords::jobMp4Conversion;
}

QString MCMp4TabRules::containerName() const
{
    return QStringLiteral("MP4");
}

QString MCMp4TabRules::copyRefusal(const MCSelection &selection) const
{
    if (!deviceList().contains(selection.theDevice))
        return QStringLiteral("\"%1\" is not an MP4 device: choose one of %2.")
            .arg(selection.theDevice, deviceList().join(QStringLiteral(", ")));
    for (const MCVideoTrackPtr &track : selection.trackList) {
        const bool copied = track->userCodec == kPassthru;
        if (track->trackType == MCWords::trackVideo && copied && !holdsVideo(track->trackCodec))
            return QStringLiteral("An MP4 takes an H.264 or MPEG-4 picture as it is, not %1: choose MPEG-4.")
                .arg(track->trackCodec);
        if (track->trackType == MCWords::trackAudio && copied && !holdsAudio(track->trackCodec))
            return QStringLiteral("An MP4 takes AAC or AC-3 sound as it is; %1 is %2: choose AAC or AC-3.")
                .arg(nameOf(*track), track->trackCodec);
        if (isSubtitle(*track) && track->userCodec == QStringLiteral("mux")) {
            if (const QString refusal = subtitleRefusal(*track); !refusal.isEmpty())
                return refusal;
        }
    }
    return {};
}

QString MCMp4TabRules::subtitleRefusal(const MCVideoTrack &track) const
{
    if (!isTextSubtitle(track.trackCodec))
        return QStringLiteral("An MP4 takes text subtitles only; %1 is %2 (pictures): leave the subtitles out.")
            .arg(nameOf(track), track.trackCodec);
    if (!subtitleSourceServed(track))
        return QStringLiteral("The subtitles inside this %1 file cannot be muxed into an MP4 (only those of MKV and MP4 "
                              "files and added subtitle files): leave the subtitles out.")
            .arg(track.trackFileExtension.toUpper());
    return {};
}
