#include "MCMp4EditRules.h"

#include "MCMkvEditRules.h"
#include "MCMp4TabRules.h"
#include "MCWords.h"

#include <QFileInfo>

#include <algorithm>

namespace {

bool anyAdded(const MCTrackList &tracks)
{
    return std::any_of(tracks.cbegin(), tracks.cend(), [](const MCVideoTrackPtr &track) { return track->externalTrackFlag; });
}

} // namespace

bool MCMp4EditRules::isMp4(const QString &pathOrExtension)
{
    const QString extension =
        (pathOrExtension.contains(QLatin1Char('.')) ? QFileInfo(pathOrExtension).suffix() : pathOrExtension).toLower();
    return extension == QStringLiteral("mp4") || extension == QStringLiteral("m4v");
}

bool MCMp4EditRules::allMp4(const QList<QUrl> &files)
{
    return !files.isEmpty() && std::all_of(files.cbegin(), files.cend(), [](const QUrl &url) { return isMp4(url.toLocalFile()); });
}

QString MCMp4EditRules::fileEditJobType(const QString &aviJobType, const QList<QUrl> &files)
{
    if (!allMp4(files))
        return aviJobType == MCWords::jobParEditing ? QStringLiteral("none") : aviJobType;
    if (aviJobType == MCWords::jobAviJoining)
        return MCWords::jobMp4Joining;
    if (aviJobType == MCWords::jobAviSplitting)
        return MCWords::jobMp4Splitting;
    return aviJobType;
}

bool MCMp4EditRules::canAdd(const MCVideoTrack &track)
{
    if (!track.externalTrackFlag)
        return false;
    const QString codec = track.trackCodec.toLower();
    if (track.trackType == MCWords::trackAudio)
        return MCMp4TabRules::isMp4Audio(codec);
    return track.trackType.endsWith(MCWords::trackSubtitle) && (codec == QStringLiteral("srt") || codec == QStringLiteral("sub"));
}

bool MCMp4EditRules::decideTrackEdit(MCSelection &selection, int editTrackRow)
{
    const MCTrackList &selected = selection.trackList;
    if (selected.isEmpty())
        return false;
    if (editTrackRow == 0) {
        selection.jobType = MCWords::jobMp4TrackExtraction;
        return !anyAdded(selected); // added tracks live in other files
    }
    if (editTrackRow == 1) {
        selection.jobType = MCWords::jobMp4TrackAddition;
        return std::all_of(selected.cbegin(), selected.cend(), [](const MCVideoTrackPtr &track) { return canAdd(*track); });
    }
    if (editTrackRow == MCMkvEditRules::removeTracksRow) {
        selection.jobType = MCWords::jobMp4TrackRemoval;
        return !anyAdded(selected) && !selection.keepTracksList.isEmpty() && !anyAdded(selection.keepTracksList);
    }
    return false;
}
