#include "MCReMuxMkvJob.h"

#include "MCJobFactory.h"
#include "MCMkvReMuxer.h"

#include <QTimer>

MCReMuxMkvJob::MCReMuxMkvJob(QObject *parent)
    : MCJob(parent)
{
}

void MCReMuxMkvJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCReMuxMkvJob"),
                                             [](QObject *parent) { return new MCReMuxMkvJob(parent); });
}

void MCReMuxMkvJob::startJob()
{
    auto remuxer = std::make_shared<MCMkvReMuxer>();
    remuxer->inititializeForTrack(0, QStringLiteral("Re-Muxing MKV"), true);
    // The copy holds what the source holds, for as long.
    remuxer->expectedResult.media = true;
    remuxer->expectedResult.durationSources = {jobSelection->videoTrackFileURL.toLocalFile()};
    setStepConverterList({remuxer});
    setStepPIDList({});
    setProgressList({});
    startStep(remuxer, true);
    QTimer::singleShot(100, this, &MCReMuxMkvJob::monitorStartJob);
}

void MCReMuxMkvJob::monitorStartJob()
{
    addMonitorLoop(MCMonitorPolicy::start());
}
