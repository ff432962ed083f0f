#include "MCConvertToMkvJob.h"

#include "MCJobFactory.h"
#include "MCMencoderAudio.h"
#include "MCMencoderVideo.h"
#include "MCMkvJobChecks.h"

#include <QFileInfo>
#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;

const QString kVideo = QStringLiteral("Video");

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
    MCConverterPtr step;
    if (track->trackType == kVideo) {
        // Its selection holds the video track alone (see startTrackSteps).
        step = std::make_shared<MCMencoderVideo>();
        step->inititializeForTrack(0, QStringLiteral("Converting Video"), false);
    } else {
        step = std::make_shared<MCMencoderAudio>();
        step->inititializeForTrack(i, QStringLiteral("Converting Audio"), false);
    }
    track->muxingTrackCodec = track->userCodec;
    track->wasReEncoded = true;
    return step;
}

void MCConvertToMkvJob::monitorStartJob()
{
    addMonitorLoop(MCMonitorPolicy::start(), [this] { muxStep(); });
}
