#include "MCConversionJob.h"

#include "MCMkvMuxer.h"

#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;

} // namespace

MCConversionJob::MCConversionJob(QObject *parent)
    : MCJob(parent)
{
}

void MCConversionJob::muxStep()
{
    auto muxer = std::make_shared<MCMkvMuxer>();
    muxer->inititializeForTrack(0, QStringLiteral("Muxing Tracks"), true);
    // Whatever the job type says, the converted tracks are the ones to mux.
    muxer->tracksToMux = jobSelection->trackList;
    muxer->expectedResult
        = MCResultExpectation::holding(jobSelection->trackList, jobSelection->videoTrackFileURL.toLocalFile());
    setStepConverterList({muxer});
    setStepPIDList({});
    setProgressList({});
    startStep(muxer, true);
    resetMonitorCounters();
    QTimer::singleShot(kMonitorDelayMs, this, &MCConversionJob::monitorMuxStep);
}

void MCConversionJob::monitorMuxStep()
{
    addMonitorLoop(MCMonitorPolicy::muxSteps());
}
