#include "MCConversionJob.h"

#include "MCMencoderAudio.h"
#include "MCMencoderVideo.h"
#include "MCMkvMuxer.h"
#include "MCWords.h"

#include <QFileInfo>
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

bool MCConversionJob::startTrackSteps(const QString &refusal, const std::function<MCConverterPtr(int)> &stepForTrack)
{
    theTracks = jobSelection->trackList;
    setStepPIDList({});
    setProgressList({});
    // Steps pair with tracks by position: a track without an entry would
    // send every later stream to the wrong track.
    if (!refusal.isEmpty()) {
        setStepConverterList({});
        refuseJob(refusal);
        return false;
    }
    QList<MCConverterPtr> steps;
    for (int i = 0; i < theTracks.size(); ++i) {
        theTracks.at(i)->initializeForMuxing();
        steps.append(stepForTrack(i));
    }
    setStepConverterList(steps);
    for (qsizetype k = 0; k < steps.size(); ++k) {
        const MCConverterPtr &step = steps.at(k);
        if (!step)
            continue;
        if (!dynamic_cast<MCMencoderVideo *>(step.get())) {
            startStep(step, true);
            continue;
        }
        // The video step would encode the first audio track into its AVI as
        // well; here every audio track has a step of its own, so it sees the
        // video track alone.
        auto pictureOnly = std::make_shared<MCSelection>(*jobSelection);
        pictureOnly->trackList = {theTracks.at(k)};
        startStep(step, true, pictureOnly);
    }
    for (qsizetype k = 0; k < steps.size() && k < theTracks.size(); ++k) {
        const MCConverterPtr &step = steps.at(k);
        if (!step)
            continue;
        const MCVideoTrackPtr &track = theTracks.at(k);
        const QString extension = QFileInfo(step->outputFileURL.toLocalFile()).suffix();
        track->muxingTrackFileURL = step->outputFileURL;
        track->muxingTrackMp4boxID = QStringLiteral("one track");
        track->muxingTrackMencoderID = QStringLiteral("one track");
        track->muxingTrackExtension = extension;
        track->muxingTrackFileExtension = extension.toLower();
        track->trackMkvmergeID = QStringLiteral("0");
    }
    return true;
}

MCConverterPtr MCConversionJob::encodingStepFor(int i)
{
    const MCVideoTrackPtr &track = theTracks.at(i);
    MCConverterPtr step;
    if (track->trackType == MCWords::trackVideo) {
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
