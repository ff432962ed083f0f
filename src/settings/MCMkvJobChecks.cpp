#include "MCMkvJobChecks.h"

#include "MCSplitRange.h"

#include <QTime>

namespace {

// Tolerance for an end typed in whole seconds on a file a fraction shorter.
constexpr double kEndSlackSeconds = 1.0;

QString clockText(double seconds)
{
    return QTime(0, 0).addSecs(static_cast<int>(seconds)).toString(QStringLiteral("HH:mm:ss"));
}

QString timeRangeRefusal(const MCSelection &selection, double fileSeconds)
{
    const QString &startText = selection.splitStartTimeText;
    const QString &endText = selection.splitEndTimeText;
    if (!MCSplitRange::isValidTimeRange(startText, endText))
        return QStringLiteral("the split range %1-%2 does not end after it starts").arg(startText, endText);
    if (fileSeconds <= 0.0)
        return {};
    if (MCSplitRange::secondsOfTimeText(startText) >= fileSeconds)
        return QStringLiteral("the split range starts at %1, but the file ends at %2").arg(startText, clockText(fileSeconds));
    if (MCSplitRange::secondsOfTimeText(endText) > fileSeconds + kEndSlackSeconds)
        return QStringLiteral("the split range ends at %1, but the file ends at %2").arg(endText, clockText(fileSeconds));
    return {};
}

} // namespace

QString MCMkvJobChecks::splitRefusal(const MCSelection &selection, double fileSeconds)
{
    const QString &type = selection.splitType;
    if (type == QStringLiteral("time"))
        return timeRangeRefusal(selection, fileSeconds);
    // mkvmerge reads "0k" as no limit and would write the whole film again.
    if (type == QStringLiteral("size"))
        return selection.splitSize.toInt() > 0 ? QString() : QStringLiteral("a split size must be at least 1 MB");
    if (type == QStringLiteral("duration"))
        return selection.splitDurationSeconds.toInt() > 0 ? QString()
                                                          : QStringLiteral("a split duration must be at least one second");
    return QStringLiteral("MKV files are split by time, size or duration, not by \"%1\"").arg(type);
}

QString MCMkvJobChecks::removalRefusal(const MCSelection &selection)
{
    if (selection.keepTracksList.isEmpty())
        return QStringLiteral("removing every track would leave an empty file; keep at least one track");
    return {};
}

QString MCMkvJobChecks::extractionRefusal(const MCVideoTrack &track)
{
    const QString &type = track.trackType;
    if (type != QStringLiteral("Video") && type != QStringLiteral("Audio") && type != QStringLiteral("Subtitle"))
        return QStringLiteral("mkvextract cannot write a track of the kind \"%1\"; only video, audio and subtitle "
                              "tracks of the MKV file itself")
            .arg(type);
    return {};
}

QString MCMkvJobChecks::conversionRefusal(const MCSelection &selection)
{
    for (const MCVideoTrackPtr &track : selection.trackList) {
        const QString &type = track->trackType;
        if (type == QStringLiteral("Video") || type == QStringLiteral("Audio"))
            continue;
        const bool subtitle = type == QStringLiteral("Subtitle") || type == QStringLiteral("External Subtitle");
        if (subtitle && track->userCodec.toLower() == QStringLiteral("mux"))
            continue;
        return QStringLiteral("the track \"%1\" (%2, \"%3\") has no place in an MKV conversion, which muxes "
                              "subtitles as they are or leaves them out")
            .arg(track->trackTitle, type, track->userCodec);
    }
    return {};
}
