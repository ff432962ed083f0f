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
    return jobType == MCWords::jobMkvSplitting;
}

void MCMkvJobRows::prepareJobSelection(MCSelection &selection)
{
    if (selection.jobType != MCWords::jobMkvConversion)
        return;
    selection.trackList += selection.addedAudioTrackList;
    selection.trackList.removeIf([](const MCVideoTrackPtr &track) {
        return isSubtitle(*track) && track->userCodec.toLower() != QStringLiteral("mux");
    });
}
