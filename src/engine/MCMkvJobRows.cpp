#include "MCMkvJobRows.h"

#include "MCWords.h"

#include "MCSelection.h"

namespace {

struct Row
{
    QString jobType;
    QString jobClass;
    QString branchType;
};

const QList<Row> &rows()
{
    static const QList<Row> table{
        {MCWords::jobMkvConversion, QStringLiteral("MCConvertToMkvJob"), MCWords::jobAviConversion},
        {MCWords::jobMkvTrackExtraction, QStringLiteral("MCEditMkvJob"), MCWords::jobAviTrackExtraction},
        {MCWords::jobMkvTrackRemoval, QStringLiteral("MCEditMkvJob"), MCWords::jobAviTrackRemoval},
        {MCWords::jobMkvJoining, QStringLiteral("MCEditMkvJob"), MCWords::jobAviJoining},
        {MCWords::jobMkvSplitting, QStringLiteral("MCEditMkvJob"), MCWords::jobAviSplitting},
        // The MP4 conversion's steps branch on no job type (the muxer reads
        // the device); the MP4 editing job and its editor step branch on
        // the MP4 words themselves.
        {MCWords::jobMp4Conversion, QStringLiteral("MCConvertToMp4Job"), MCWords::jobMp4Conversion},
        {MCWords::jobMp4TrackExtraction, QStringLiteral("MCEditMp4Job"), MCWords::jobMp4TrackExtraction},
        {MCWords::jobMp4TrackRemoval, QStringLiteral("MCEditMp4Job"), MCWords::jobMp4TrackRemoval},
        {MCWords::jobMp4TrackAddition, QStringLiteral("MCEditMp4Job"), MCWords::jobMp4TrackAddition},
        {MCWords::jobMp4Joining, QStringLiteral("MCEditMp4Job"), MCWords::jobMp4Joining},
        {MCWords::jobMp4Splitting, QStringLiteral("MCEditMp4Job"), MCWords::jobMp4Splitting},
        {MCWords::jobParEditing, QStringLiteral("MCEditMp4Job"), MCWords::jobParEditing},
    };
    return table;
}

const Row *rowFor(const QString &jobType)
{
    for (const Row &row : rows()) {
        if (row.jobType == jobType)
            return &row;
    }
    return nullptr;
}

bool isSubtitle(const MCVideoTrack &track)
{
    return track.trackType == QStringLiteral("Subtitle") || track.trackType == QStringLiteral("External Subtitle");
}

} // namespace

QString MCMkvJobRows::jobClassFor(const QString &jobType)
{
    const Row *row = rowFor(jobType);
    return row ? row->jobClass : QString();
}

QString MCMkvJobRows::branchTypeFor(const QString &jobType)
{
    const Row *row = rowFor(jobType);
    return row ? row->branchType : jobType;
}

bool MCMkvJobRows::oneJobPerFile(const QString &jobType)
{
    return jobType == MCWords::jobMkvSplitting || jobType == MCWords::jobMp4Splitting || jobType == MCWords::jobParEditing;
}

void MCMkvJobRows::prepareJobSelection(MCSelection &selection)
{
    if (selection.jobType == MCWords::jobMp4TrackAddition) {
        // The MP4 is muxed again: the file's own tracks go in with the added
        // ones chosen (an added file left unselected stays out).
        MCTrackList tracks;
        for (const MCVideoTrackPtr &track : std::as_const(selection.keepTracksList)) {
            if (!track->externalTrackFlag)
                tracks << track;
        }
        selection.trackList = tracks + selection.trackList;
        return;
    }
    if (selection.jobType != MCWords::jobMkvConversion && selection.jobType != MCWords::jobMp4Conversion)
        return;
    selection.trackList += selection.addedAudioTrackList;
    selection.trackList.removeIf([](const MCVideoTrackPtr &track) {
        return isSubtitle(*track) && track->userCodec.toLower() != QStringLiteral("mux");
    });
}
