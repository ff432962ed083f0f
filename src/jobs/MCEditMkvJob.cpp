#include "MCEditMkvJob.h"

#include "MCJobFactory.h"
#include "MCMkvEditor.h"
#include "MCMkvExtractor.h"
#include "MCMkvJobChecks.h"
#include "MCMkvMuxer.h"
#include "MCMkvReMuxer.h"
#include "MCWords.h"

#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;

} // namespace

MCEditMkvJob::MCEditMkvJob(QObject *parent)
    : MCEditJob(parent)
{
}

void MCEditMkvJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCEditMkvJob"),
                                             [](QObject *parent) { return new MCEditMkvJob(parent); });
}

void MCEditMkvJob::startJob()
{
    beginEditing();
    const QString &type = jobSelection->jobType;
    if (type == MCWords::jobAviTrackExtraction) {
        startTrackExtraction();
    } else if (type == MCWords::jobAviTrackRemoval) {
        startSingleStep(std::make_shared<MCMkvMuxer>(), QStringLiteral("Removing Tracks"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMkvJob::monitorMuxStep);
    } else if (type == MCWords::jobAviJoining) {
        startSingleStep(std::make_shared<MCMkvEditor>(), QStringLiteral("Joining Videos"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMkvJob::monitorStartJob);
    } else if (type == MCWords::jobAviSplitting) {
        startSingleStep(std::make_shared<MCMkvEditor>(), QStringLiteral("Splitting Videos"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMkvJob::monitorMuxStep);
    } else if (type == MCWords::jobMkvRemux) {
        startSingleStep(std::make_shared<MCMkvReMuxer>(), QStringLiteral("Re-Muxing MKV"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMkvJob::monitorMuxStep);
    } else {
        refuseJob(QStringLiteral("Kestrane has no steps for \"%1\" in an MKV file").arg(type));
    }
}

void MCEditMkvJob::startTrackExtraction()
{
    // A track that cannot be written stops the job before any track is.
    for (const MCVideoTrackPtr &track : std::as_const(theTracks)) {
        if (const QString refusal = MCMkvJobChecks::extractionRefusal(*track); !refusal.isEmpty()) {
            refuseJob(refusal);
            return;
        }
    }
    startExtraction([] { return std::make_shared<MCMkvExtractor>(); });
    QTimer::singleShot(kMonitorDelayMs, this, &MCEditMkvJob::monitorStartJob);
}

MCResultExpectation MCEditMkvJob::expectedResult() const
{
    if (jobSelection->jobType == MCWords::jobAviTrackRemoval)
        return MCResultExpectation::holding(jobSelection->keepTracksList, jobSelection->videoTrackFileURL.toLocalFile());
    // mkvmerge cuts at key frames: from the first one in the range to the
    // first one after it.
    return expectedEditResult(true);
}

void MCEditMkvJob::monitorStartJob()
{
    MCMonitorPolicy policy = MCMonitorPolicy::start();
    policy.errorShowsLastPercentage = true;
    addMonitorLoop(policy);
}
