#include "MCConvertToMkvJob.h"

#include "MCJobFactory.h"
#include "MCMkvJobChecks.h"

#include <QFileInfo>
#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;


bool isSubtitle(const MCVideoTrack &track)
{
    return track.trackType == QStringLiteral("Subtitle") || track.trackType == QStringLiteral("External Subtitle");
}

} // namespace

MCConvertToMkvJob::MCConvertToMkvJob(QObject *parent)
    : MCConversionJob(parent)
{
}

void MCConvertToMkvJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCConvertToMkvJob"),
                                             [](QObject *parent) { return new MCConvertToMkvJob(parent); });
}

void MCConvertToMkvJob::startJob()
{
    if (startTrackSteps(MCMkvJobChecks::conversionRefusal(*jobSelection), [this](int i) { return stepForTrack(i); }))
        QTimer::singleShot(kMonitorDelayMs, this, &MCConvertToMkvJob::monitorStartJob);
}

MCConverterPtr MCConvertToMkvJob::stepForTrack(int i)
{
    const MCVideoTrackPtr &track = theTracks.at(i);
    const QString codec = track->userCodec.toLower();
    if (isSubtitle(*track) || codec == QStringLiteral("passthru"))
        return nullptr;
    return encodingStepFor(i);
}

void MCConvertToMkvJob::monitorStartJob()
{
    addMonitorLoop(MCMonitorPolicy::start(), [this] { muxStep(); });
}
