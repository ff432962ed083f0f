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
    theTracks = jobSelection->trackList;
    setStepPIDList({});
    setProgressList({});
    // Steps pair with tracks by position: a track without an entry would
    // send every later stream to the wrong track.
    if (const QString refusal = MCMkvJobChecks::conversionRefusal(*jobSelection); !refusal.isEmpty()) {
        setStepConverterList({});
        refuseJob(refusal);
        return;
    }
    QList<MCConverterPtr> steps;
    for (int i = 0; i < theTracks.size(); ++i) {
        theTracks.at(i)->initializeForMuxing();
        steps.append(stepForTrack(i));
    }
    setStepConverterList(steps);
    startEncoding(steps);
    pointTracksAtEncodedFiles(steps);
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
        // Its selection holds the video track alone (see startEncoding).
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

void MCConvertToMkvJob::startEncoding(const QList<MCConverterPtr> &steps)
{
    for (qsizetype k = 0; k < steps.size(); ++k) {
        const MCConverterPtr &step = steps.at(k);
        if (!step)
            continue;
        if (!dynamic_cast<MCMencoderVideo *>(step.get())) {
            startStep(step, true);
            continue;
        }
        // The video step would encode the first audio track into its AVI as
        // well; here every audio track has a step of its own (and MEncoder
        // cannot put AAC into an AVI), so it sees the video track alone.
        auto pictureOnly = std::make_shared<MCSelection>(*jobSelection);
        pictureOnly->trackList = {theTracks.at(k)};
        startStep(step, true, pictureOnly);
    }
}

void MCConvertToMkvJob::pointTracksAtEncodedFiles(const QList<MCConverterPtr> &steps)
{
    const MCTrackList &tracks = jobSelection->trackList;
    for (qsizetype k = 0; k < steps.size() && k < tracks.size(); ++k) {
        const MCConverterPtr &step = steps.at(k);
        if (!step)
            continue;
        const MCVideoTrackPtr &track = tracks.at(k);
        track->muxingTrackFileURL = step->outputFileURL;
        track->muxingTrackMp4boxID = QStringLiteral("one track");
        track->muxingTrackMencoderID = QStringLiteral("one track");
        track->muxingTrackExtension = QFileInfo(step->outputFileURL.toLocalFile()).suffix();
        track->muxingTrackFileExtension = QFileInfo(track->muxingTrackFileURL.toLocalFile()).suffix();
        track->trackMkvmergeID = QStringLiteral("0");
    }
}

void MCConvertToMkvJob::monitorStartJob()
{
    addMonitorLoop(MCMonitorPolicy::start(), [this] { muxStep(); });
}
