#include "MCEditJob.h"

#include "MCSplitRange.h"
#include "MCWords.h"

namespace {

// How far a cut by time may stray at each end: to the next key frame.
constexpr double kKeyFrameSlackSeconds = 12.0;

} // namespace

MCEditJob::MCEditJob(QObject *parent)
    : MCJob(parent)
{
}

QString MCEditJob::extractionLabelFor(const QString &trackType)
{
    if (trackType == QStringLiteral("Video"))
        return QStringLiteral("Extracting Video Track");
    if (trackType == QStringLiteral("Audio"))
        return QStringLiteral("Extracting Audio Track");
    if (trackType == QStringLiteral("Subtitle"))
        return QStringLiteral("Extracting Subtitle Track");
    return QStringLiteral("Extracting");
}

void MCEditJob::beginEditing()
{
    setStepPIDList({});
    setProgressList({});
    theTracks = jobSelection->trackList;
    setStepConverterList({});
    resetMonitorCounters();
}

void MCEditJob::startExtraction(const std::function<MCConverterPtr()> &newStep)
{
    QList<MCConverterPtr> steps;
    for (int i = 0; i < theTracks.size(); ++i) {
        MCConverterPtr step = newStep();
        step->inititializeForTrack(i, extractionLabelFor(theTracks.at(i)->trackType), true);
        // mediainfo misses some subtitle files (an ASS file as mkvextract
        // writes it, for one); those need only be there and not be empty.
        step->expectedResult.media = theTracks.at(i)->trackType != QStringLiteral("Subtitle");
        steps.append(step);
    }
    setStepConverterList(steps);
    for (const MCConverterPtr &step : steps) {
        startStep(step, false);
        // The extracted tracks are what the user asked for: they outlive the
        // job, even where a step marks its output as an intermediate.
        if (!step->isTemporaryOutput)
            tempFilesToDeleteList.removeAll(step->outputFileURL.toLocalFile());
    }
}

void MCEditJob::startSingleStep(const MCConverterPtr &step, const QString &label, const MCResultExpectation &expected)
{
    // Track addition takes its audio file from the first track of the list.
    step->inititializeForTrack(0, label, true);
    step->expectedResult = expected;
    setStepConverterList({step});
    startStep(step, true);
}

MCResultExpectation MCEditJob::expectedEditResult(bool lateCuts) const
{
    MCResultExpectation result;
    result.media = true;
    const QString &type = jobSelection->jobType;
    const QString source = jobSelection->videoTrackFileURL.toLocalFile();
    if (type == MCWords::jobAviJoining) {
        // A file the tool could not append would leave the join short.
        for (const QUrl &file : jobSelection->editFilesURLsList)
            result.durationSources << file.toLocalFile();
    } else if (type == MCWords::jobAviSplitting && jobSelection->splitType == QStringLiteral("time")) {
        result.durationSources = {source};
        result.rangeStart = MCSplitRange::secondsOfTimeText(jobSelection->splitStartTimeText);
        result.rangeEnd = MCSplitRange::secondsOfTimeText(jobSelection->splitEndTimeText);
        result.cutSlackSeconds = kKeyFrameSlackSeconds;
        result.cutLateSeconds = lateCuts ? kKeyFrameSlackSeconds : 0.0;
    } else if (type == MCWords::jobAviTrackAddition) {
        // The source's own audio tracks and one more for every added file.
        result.durationSources = {source};
        result.addedAudioTracks = 0;
        for (const MCVideoTrackPtr &track : jobSelection->trackList) {
            if (track && track->trackType == QStringLiteral("Audio") && track->trackFilePath != source)
                ++result.addedAudioTracks;
        }
    } else if (type == MCWords::jobMkvRemux) {
        result.durationSources = {source};
    }
    return result;
}

void MCEditJob::monitorStartJobWithMultipleSteps()
{
    addMonitorLoop(MCMonitorPolicy::numberedSteps());
}

void MCEditJob::monitorMuxStep()
{
    addMonitorLoop(MCMonitorPolicy::muxSteps());
}
