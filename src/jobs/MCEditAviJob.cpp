#include "MCEditAviJob.h"

#include "MCAviEditor.h"
#include "MCJobFactory.h"
#include "MCLog.h"
#include "MCMkvReMuxer.h"
#include "MCSplitRange.h"
#include "MCTrackDumper.h"

#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;

QString extractionLabelFor(const QString &trackType)
{
    if (trackType == QStringLiteral("Video"))
        return QStringLiteral("Extracting Video Track");
    if (trackType == QStringLiteral("Audio"))
        return QStringLiteral("Extracting Audio Track");
    if (trackType == QStringLiteral("Subtitle"))
        return QStringLiteral("Extracting Subtitle Track");
    return QStringLiteral("Extracting");
}

// How much earlier than asked a cut by time may start: avisplit begins at
// the key frame before the start.
constexpr double kKeyFrameSlackSeconds = 12.0;

} // namespace

MCEditAviJob::MCEditAviJob(QObject *parent)
    : MCJob(parent)
{
}

void MCEditAviJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCEditAviJob"),
                                             [](QObject *parent) { return new MCEditAviJob(parent); });
}

void MCEditAviJob::startJob()
{
    setStepPIDList({});
    setProgressList({});
    theTracks = jobSelection->trackList;
    setStepConverterList({});
    resetMonitorCounters();

    const QString &type = jobSelection->jobType;
    if (type == QStringLiteral("AVI Track Extraction")) {
        startExtraction();
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == QStringLiteral("AVI Track Addition")) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Adding Tracks"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == QStringLiteral("AVI Joining")) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Joining Videos"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJobWithMultipleSteps);
    } else if (type == QStringLiteral("AVI Splitting")) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Splitting Videos"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == QStringLiteral("MKV Remux")) {
        startSingleStep(std::make_shared<MCMkvReMuxer>(), QStringLiteral("Re-Muxing MKV"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorMuxStep);
    } else {
        // Nothing to do; ending at once keeps the queue moving.
        QTimer::singleShot(kMonitorDelayMs, this, [this, type] {
            failJob(QStringLiteral("Kestrane has no steps for \"%1\"").arg(type), nullptr);
        });
    }
}

void MCEditAviJob::startExtraction()
{
    QList<MCConverterPtr> steps;
    for (int i = 0; i < theTracks.size(); ++i) {
        auto step = std::make_shared<MCTrackDumper>();
        step->inititializeForTrack(i, extractionLabelFor(theTracks.at(i)->trackType), true);
        step->expectedResult.media = true;
        steps.append(step);
    }
    setStepConverterList(steps);
    for (const MCConverterPtr &step : steps) {
        startStep(step, false);
        // The extracted tracks are what the user asked for: they outlive the job.
        if (!step->isTemporaryOutput)
            tempFilesToDeleteList.removeAll(step->outputFileURL.toLocalFile());
    }
}

void MCEditAviJob::startSingleStep(const MCConverterPtr &step, const QString &label)
{
    // Track addition takes its audio file from the first track of the list.
    step->inititializeForTrack(0, label, true);
    step->expectedResult = expectedResult();
    setStepConverterList({step});
    startStep(step, true);
}

MCResultExpectation MCEditAviJob::expectedResult() const
{
    MCResultExpectation result;
    result.media = true;
    result.videoTracks = 1;
    const QString &type = jobSelection->jobType;
    const QString source = jobSelection->videoTrackFileURL.toLocalFile();
    if (type == QStringLiteral("AVI Joining")) {
        // A join lasts as long as its files together: a file it could not
        // read would leave it short.
        for (const QUrl &file : jobSelection->editFilesURLsList)
            result.durationSources << file.toLocalFile();
    } else if (type == QStringLiteral("AVI Splitting") && jobSelection->splitType == QStringLiteral("time")) {
        result.durationSources = {source};
        result.rangeStart = MCSplitRange::secondsOfTimeText(jobSelection->splitStartTimeText);
        result.rangeEnd = MCSplitRange::secondsOfTimeText(jobSelection->splitEndTimeText);
        // The cut starts at the key frame before the start.
        result.cutSlackSeconds = kKeyFrameSlackSeconds;
    } else if (type == QStringLiteral("AVI Track Addition")) {
        // The source's own audio tracks and one more for every added file.
        result.durationSources = {source};
        result.addedAudioTracks = 0;
        for (const MCVideoTrackPtr &track : jobSelection->trackList) {
            if (track && track->trackType == QStringLiteral("Audio") && track->trackFilePath != source)
                ++result.addedAudioTracks;
        }
    } else if (type == QStringLiteral("MKV Remux")) {
        result.durationSources = {source};
    }
    return result;
}

void MCEditAviJob::monitorStartJob()
{
    MCMonitorPolicy policy;
    policy.errorShowsLastPercentage = true;
    policy.heartbeatRows = {
        {QStringLiteral("avimerge 1"), progressRow(QStringLiteral("Adding Audio"), QStringLiteral("Muxing"))},
        {QStringLiteral("avimerge 2"), progressRow(QStringLiteral("Adding Audio"), QString())},
        {QStringLiteral("splitting 1"), progressRow(QStringLiteral("Splitting AVI"), QStringLiteral("Splitting"))},
        {QStringLiteral("splitting 2"), progressRow(QStringLiteral("Splitting AVI"), QString())},
    };
    addMonitorLoop(policy);
}

void MCEditAviJob::monitorStartJobWithMultipleSteps()
{
    addMonitorLoop(MCMonitorPolicy::counted(
        [](const QString &stepName, int counter) { return QStringLiteral("%1 Step #%2").arg(stepName).arg(counter); }));
}

void MCEditAviJob::monitorMuxStep()
{
    addMonitorLoop(MCMonitorPolicy::counted(
        [](const QString &, int counter) { return QStringLiteral("Muxing Step #%1").arg(counter); }));
}
