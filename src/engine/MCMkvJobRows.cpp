#include "MCMkvJobRows.h"

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
        {QStringLiteral("MKV Conversion"), QStringLiteral("MCConvertToMkvJob"), QStringLiteral("AVI Conversion")},
        {QStringLiteral("MKV Track Extraction"), QStringLiteral("MCEditMkvJob"), QStringLiteral("AVI Track Extraction")},
        {QStringLiteral("MKV Track Removal"), QStringLiteral("MCEditMkvJob"), QStringLiteral("AVI Track Removal")},
        {QStringLiteral("MKV Joining"), QStringLiteral("MCEditMkvJob"), QStringLiteral("AVI Joining")},
        {QStringLiteral("MKV Splitting"), QStringLiteral("MCEditMkvJob"), QStringLiteral("AVI Splitting")},
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
    return jobType == QStringLiteral("MKV Splitting");
}

void MCMkvJobRows::prepareJobSelection(MCSelection &selection)
{
    if (selection.jobType != QStringLiteral("MKV Conversion"))
        return;
    selection.trackList += selection.addedAudioTrackList;
    selection.trackList.removeIf([](const MCVideoTrackPtr &track) {
        return isSubtitle(*track) && track->userCodec.toLower() != QStringLiteral("mux");
    });
}
