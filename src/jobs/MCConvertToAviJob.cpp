#include "MCConvertToAviJob.h"

#include "MCJobFactory.h"
#include "MCMencoderVideo.h"
#include "MCMkvExtractor.h"
#include "MCMp4Extractor.h"
#include "MCTrackDumper.h"

#include <QTimer>

#include <algorithm>

namespace {

const QString kSubtitleLabel = QStringLiteral("Extracting Subtitle");

bool isSrt(const MCVideoTrackPtr &track)
{
    return track->trackCodec.toLower() == QStringLiteral("srt");
}

} // namespace

MCConvertToAviJob::MCConvertToAviJob(QObject *parent)
    : MCConversionJob(parent)
{
}

void MCConvertToAviJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCConvertToAviJob"),
                                             [](QObject *parent) { return new MCConvertToAviJob(parent); });
}

void MCConvertToAviJob::startJob()
{
    theTracks = jobSelection->trackList;
    auto video = std::make_shared<MCMencoderVideo>();
    video->inititializeForTrack(0, QStringLiteral("Video Conversion"), true);
    video->expectedResult = expectedAvi();
    QList<MCConverterPtr> steps{video};

    if (jobSelection->subCount.toInt() > 0) {
        for (int i = 0; i < theTracks.size(); ++i) {
            const MCVideoTrackPtr &track = theTracks.at(i);
            const bool subtitle = track->trackType == QStringLiteral("Subtitle");
            if ((!subtitle && track->trackType != QStringLiteral("External Subtitle"))
                || track->userCodec.toLower() != QStringLiteral("extract"))
                continue;
            if (!subtitle) {
                steps.append(nullptr); // an external file is already a file of its own
                track->convertSubFlag = !isSrt(track);
                continue;
            }
            const QString container = track->trackFileExtension.toLower();
            MCConverterPtr step;
            if (container == QStringLiteral("mkv")) {
                step = std::make_shared<MCMkvExtractor>();
                track->convertSubFlag = !isSrt(track);
            } else if (container == QStringLiteral("mp4") || container == QStringLiteral("m4v")) {
                step = std::make_shared<MCMp4Extractor>();
            } else {
                step = std::make_shared<MCTrackDumper>();
                track->convertSubFlag = !isSrt(track);
            }
            step->inititializeForTrack(i, kSubtitleLabel, true);
            steps.append(step);
        }
    }

    setStepConverterList(steps);
    setStepPIDList({});
    setProgressList({});
    for (const MCConverterPtr &step : steps) {
        if (step)
            startStep(step, true);
    }
    QTimer::singleShot(100, this, &MCConvertToAviJob::monitorStartJob);
}

MCResultExpectation MCConvertToAviJob::expectedAvi() const
{
    MCResultExpectation avi;
    avi.media = true;
    avi.videoTracks = 1;
    const bool withAudio = std::any_of(theTracks.cbegin(), theTracks.cend(), [](const MCVideoTrackPtr &track) {
        return track->trackType == QStringLiteral("Audio");
    });
    avi.audioTracks = withAudio ? 1 : 0;
    avi.durationSources = {jobSelection->videoTrackFileURL.toLocalFile()};
    return avi;
}

void MCConvertToAviJob::monitorStartJob()
{
    addMonitorLoop(MCMonitorPolicy::start());
}
