#include "MCMkvEditRules.h"

#include "MCMp4EditRules.h"
#include "MCWords.h"

#include <QFileInfo>

#include <algorithm>

namespace {

bool isAviPath(const QUrl &url)
{
    return QFileInfo(url.toLocalFile()).suffix().compare(QStringLiteral("avi"), Qt::CaseInsensitive) == 0;
}

bool anyAdded(const MCTrackList &tracks)
{
    return std::any_of(tracks.cbegin(), tracks.cend(), [](const MCVideoTrackPtr &track) { return track->externalTrackFlag; });
}

} // namespace

bool MCMkvEditRules::isMatroska(const QString &pathOrExtension)
{
    const QString extension = pathOrExtension.contains(QLatin1Char('.')) ? QFileInfo(pathOrExtension).suffix() : pathOrExtension;
    return extension.compare(QStringLiteral("mkv"), Qt::CaseInsensitive) == 0;
}

bool MCMkvEditRules::allMatroska(const QList<QUrl> &files)
{
    return !files.isEmpty()
           && std::all_of(files.cbegin(), files.cend(), [](const QUrl &url) { return isMatroska(url.toLocalFile()); });
}

bool MCMkvEditRules::mixesContainers(const QList<QUrl> &files)
{
    const auto any = [&files](bool (*isOfKind)(const QUrl &)) { return std::any_of(files.cbegin(), files.cend(), isOfKind); };
    const int kinds = int(any(isAviPath)) + int(any([](const QUrl &url) { return isMatroska(url.toLocalFile()); }))
                      + int(any([](const QUrl &url) { return MCMp4EditRules::isMp4(url.toLocalFile()); }));
    return kinds > 1;
}

QString MCMkvEditRules::fileEditJobType(const QString &aviJobType, const QList<QUrl> &files)
{
    if (!allMatroska(files))
        return MCMp4EditRules::fileEditJobType(aviJobType, files);
    if (aviJobType == MCWords::jobAviJoining)
        return MCWords::jobMkvJoining;
    if (aviJobType == MCWords::jobAviSplitting)
        return MCWords::jobMkvSplitting;
    return aviJobType;
}

bool MCMkvEditRules::decideTrackEdit(MCSelection &selection, int editTrackRow)
{
    // Added tracks live in other files: the MKV tools see only the file's own.
    if (selection.trackList.isEmpty() || anyAdded(selection.trackList))
        return false;
    if (editTrackRow == 0) {
        selection.jobType = MCWords::jobMkvTrackExtraction;
        return true;
    }
    if (editTrackRow == removeTracksRow) {
        selection.jobType = MCWords::jobMkvTrackRemoval;
        return !selection.keepTracksList.isEmpty() && !anyAdded(selection.keepTracksList);
    }
    return false;
}

QString MCMkvEditRules::removalLabel()
{
    return QStringLiteral("Kestrane will create a copy of the video file without the tracks selected above.  "
                          "At least one track must stay.");
}
