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

// MEncoder's reader of MPEG streams tags a copied picture with its own
// number, which no MP4 muxer reads.
bool isMpegStreamFile(const QString &container)
{
    static const QStringList mpegStreams{QStringLiteral("ts"),  QStringLiteral("m2ts"), QStringLiteral("mts"),
                                         QStringLiteral("m2t"), QStringLiteral("mpg"),  QStringLiteral("mpeg"),
                                         QStringLiteral("vob")};
    return mpegStreams.contains(container);
}

// The job copies these tracks out as they are; the rest go through a dump.
bool isReadAsItIs(const QString &container)
{
    static const QStringList read{QStringLiteral("mkv"), QStringLiteral("mp4"), QStringLiteral("m4v"),
                                  QStringLiteral("h264"), QStringLiteral("aac"), QStringLiteral("ac3")};
    return read.contains(container);
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
        if (copied) {
            if (const QString refusal = dumpRefusal(*track); !refusal.isEmpty())
                return refusal;
        }
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

QString MCMp4TabRules::dumpRefusal(const MCVideoTrack &track)
{
    const QString container = track.trackFileExtension.toLower();
    if (isReadAsItIs(container))
        return {};
    const QString codec = track.trackCodec.toLower();
    const QString file = container.toUpper();
    if (track.trackType == MCWords::trackVideo && (isMpegStreamFile(container) || codec == QStringLiteral("h264")))
        // A dumped H.264 loses the order in which its pictures are shown.
        return QStringLiteral("Kestrane cannot copy the %1 picture out of the %2 file into an MP4: choose MPEG-4.")
            .arg(track.trackCodec, file);
    if (track.trackType == MCWords::trackAudio && codec == QStringLiteral("aac") && !isMpegStreamFile(container))
        // Only MPEG streams carry AAC with the headers a dump keeps.
        return QStringLiteral("Kestrane cannot copy the AAC sound out of the %1 file into an MP4: choose AAC.").arg(file);
    return {};
}
