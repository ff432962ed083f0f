#include "MCEditMp4Job.h"

#include "MCAlertCenter.h"
#include "MCJobFactory.h"
#include "MCMediaSummary.h"
#include "MCMp4Extractor.h"
#include "MCMp4FileEditor.h"
#include "MCMp4Muxer.h"
#include "MCNotificationCenter.h"
#include "MCWords.h"

#include <QFileInfo>
#include <QPointer>
#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;
// The MP4 splitter cuts from the key frame shown at or before the start.
constexpr double kKeyFrameSlackSeconds = 12.0;

const QString kRemovingTracks = QStringLiteral("Removing Tracks");

QStringList pathsOf(const QList<QUrl> &urls)
{
    QStringList paths;
    for (const QUrl &url : urls)
        paths << url.toLocalFile();
    return paths;
}

} // namespace

MCEditMp4Job::MCEditMp4Job(QObject *parent)
    : MCEditJob(parent)
{
}

void MCEditMp4Job::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCEditMp4Job"),
                                             [](QObject *parent) { return new MCEditMp4Job(parent); });
}

void MCEditMp4Job::startJob()
{
    beginEditing();
    m_joinErrorCount = 0;
    const QString &type = jobSelection->jobType;
    if (type == MCWords::jobMp4TrackExtraction) {
        startTrackExtraction();
    } else if (type == MCWords::jobMp4TrackRemoval) {
        const QVariantList rows{progressRow(kRemovingTracks, QStringLiteral("Copying Original"))};
        setProgressList(rows);
        MCNotificationCenter::defaultCenter().post(MCNotificationName::progressUpdate, rows,
                                                   {{QStringLiteral("job"), jobSerial()}});
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::continueTrackRemoval);
    } else if (type == MCWords::jobMp4TrackAddition) {
        startTrackAddition();
    } else if (type == MCWords::jobMp4Joining) {
        startSingleStep(std::make_shared<MCMp4FileEditor>(), QStringLiteral("Joining Videos"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorStartJobWithMultipleSteps);
    } else if (type == MCWords::jobMp4Splitting) {
        startSingleStep(std::make_shared<MCMp4FileEditor>(), QStringLiteral("Splitting Videos"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorStartJobWithMultipleSteps);
    } else if (type == MCWords::jobParEditing) {
        startSingleStep(std::make_shared<MCMp4FileEditor>(), QStringLiteral("Editing PAR"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorStartJobWithMultipleSteps);
    } else {
        refuseJob(QStringLiteral("Kestrane has no steps for \"%1\" in an MP4 file").arg(type));
    }
}

void MCEditMp4Job::startTrackExtraction()
{
    const QString source = jobSelection->videoTrackFileURL.toLocalFile();
    // MP4Box extracts the file's own video, audio and subtitle tracks only;
    // one it cannot stops the job before any track is written.
    for (const MCVideoTrackPtr &track : std::as_const(theTracks)) {
        const bool ownTrack = track->trackFileURL.toLocalFile() == source;
        const bool kindServed = track->trackType == MCWords::trackVideo || track->trackType == MCWords::trackAudio
                                || track->trackType == MCWords::trackSubtitle;
        if (!ownTrack || !kindServed || !isStringInteger(track->trackMp4boxID)) {
            refuseJob(QStringLiteral("MP4Box cannot extract the %1 track \"%2\" from %3")
                          .arg(track->trackType, track->trackFileName, jobSelection->videoTrackFileURL.fileName()));
            return;
        }
    }
    startExtraction([] {
        auto step = std::make_shared<MCMp4Extractor>();
        step->readsThroughStagedLink = true;
        return step;
    });
    QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorStartJob);
}

void MCEditMp4Job::startTrackAddition()
{
    // The file is muxed again with the added tracks; MP4Box's muxing takes
    // one picture, AAC and AC-3 audio and SRT or SUB subtitle files, and a
    // track it would leave out stops the job before anything runs.
    int videoTracks = 0;
    for (const MCVideoTrackPtr &track : std::as_const(theTracks)) {
        track->initializeForMuxing();
        if (const QString refusal = additionRefusal(*track); !refusal.isEmpty()) {
            refuseJob(refusal);
            return;
        }
        videoTracks += track->trackType == MCWords::trackVideo ? 1 : 0;
        // Every listed subtitle belongs in the new file.
        if (track->trackType != MCWords::trackVideo && track->trackType != MCWords::trackAudio)
            track->userCodec = QStringLiteral("mux");
    }
    if (videoTracks > 1) {
        refuseJob(QStringLiteral("MP4Box adds one picture track only"));
        return;
    }
    MCResultExpectation expected = MCResultExpectation::holding(theTracks, jobSelection->videoTrackFileURL.toLocalFile());
    startSingleStep(std::make_shared<MCMp4Muxer>(), QStringLiteral("Adding Tracks"), expected);
    QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorMuxStep);
}

QString MCEditMp4Job::additionRefusal(const MCVideoTrack &track)
{
    const QString name = track.trackFileURL.fileName();
    if (track.trackType == MCWords::trackAudio) {
        const QString codec = track.muxingTrackCodec.toLower();
        if (codec != QStringLiteral("aac") && codec != QStringLiteral("ac3"))
            return QStringLiteral("MP4Box adds AAC and AC-3 audio only; the %1 track of %2 would be lost").arg(track.trackCodec, name);
    } else if (track.trackType != MCWords::trackVideo) {
        const QString extension = QFileInfo(track.muxingTrackFileURL.toLocalFile()).suffix().toLower();
        if (extension != QStringLiteral("srt") && extension != QStringLiteral("sub"))
            return QStringLiteral("MP4Box adds subtitles from SRT and SUB files only; the subtitle of %1 would be lost").arg(name);
    }
    return {};
}

void MCEditMp4Job::continueTrackRemoval()
{
    if (jobIsCancelled())
        return;
    startSingleStep(std::make_shared<MCMp4FileEditor>(), kRemovingTracks, expectedRemoval());
    QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorStartJob);
}

void MCEditMp4Job::monitorStartJob()
{
    addMonitorLoop(MCMonitorPolicy::start());
}

MCResultExpectation MCEditMp4Job::expectedResult() const
{
    MCResultExpectation result;
    result.media = true;
    const QString &type = jobSelection->jobType;
    const QString source = jobSelection->videoTrackFileURL.toLocalFile();
    if (type == MCWords::jobMp4Joining) {
        // A file MP4Box could not append would leave the join short.
        result.durationSources = pathsOf(jobSelection->editFilesURLsList);
    } else if (type == MCWords::jobMp4Splitting && jobSelection->splitType == QStringLiteral("time")) {
        result.durationSources = {source};
        result.rangeStart = jobSelection->splitStartTimeSeconds.toDouble();
        result.rangeEnd = jobSelection->splitEndTimeSeconds.toDouble();
        result.cutSlackSeconds = kKeyFrameSlackSeconds;
    } else if (type == MCWords::jobParEditing) {
        result.durationSources = {source};
    }
    return result;
}

MCResultExpectation MCEditMp4Job::expectedRemoval() const
{
    // What the source holds, less the tracks removed.
    const QString source = jobSelection->videoTrackFileURL.toLocalFile();
    const MCMediaSummary summary = MCMediaSummary::of(source);
    MCResultExpectation result;
    result.media = true;
    if (!summary.readable)
        return result;
    int video = static_cast<int>(summary.videoCount());
    int audio = static_cast<int>(summary.audioCount());
    for (const MCVideoTrackPtr &track : std::as_const(theTracks)) {
        video -= track->trackType == MCWords::trackVideo ? 1 : 0;
        audio -= track->trackType == MCWords::trackAudio ? 1 : 0;
    }
    result.videoTracks = qMax(0, video);
    result.audioTracks = qMax(0, audio);
    if (video > 0 || audio > 0)
        result.durationSources = {source};
    return result;
}

bool MCEditMp4Job::recoverFromStepFailure(const MCConverterPtr &failedStep)
{
    // Only MP4Box's refusal to join the files has a way around it.
    if (jobSelection->jobType != MCWords::jobMp4Joining || !dynamic_cast<MCMp4FileEditor *>(failedStep.get())
        || !failedStep->stringFoundInLog(QStringLiteral("Bad Parameter")))
        return false;
    m_refusedJoin = failedStep;
    m_refusedJoinReason = QStringLiteral("%1: %2").arg(failedStep->stepName, failedStep->failureReason());
    joinErrorAlert();
    return true;
}

void MCEditMp4Job::joinErrorAlert()
{
    ++m_joinErrorCount;
    MCAlert alert;
    alert.message = QStringLiteral("Bad Parameter Error");
    alert.style = MCAlert::Style::Warning;
    if (m_joinErrorCount == 1) {
        alert.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
        alert.informativeText = QStringLiteral("Kestrane might be able to fix this by making temporary, modified copies of "
                                               "the original files and attempting to join these copies.");
    } else {
        alert.informativeText = QStringLiteral("Retrying the join seems to have failed.");
    }
    MCAlertCenter::instance().present(alert, [job = QPointer<MCEditMp4Job>(this)](int code) {
        if (job)
            job->joinErrorAlertClosed(code);
    });
}

void MCEditMp4Job::joinErrorAlertClosed(int returnCode)
{
    if (jobIsCancelled())
        return;
    if (m_joinErrorCount < 2 && returnCode == MCAlertFirstButtonReturn) {
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::retryJoinRemoveSysTracks);
        return;
    }
    // No join was made: the job ends as failed, in MP4Box's words.
    failJob(m_refusedJoinReason, m_refusedJoin);
}

void MCEditMp4Job::retryJoinRemoveSysTracks()
{
    if (jobIsCancelled())
        return;
    setStepPIDList({});
    setProgressList({});
    retryJoinURLsList.clear();
    QList<MCConverterPtr> steps;
    for (const QUrl &file : std::as_const(jobSelection->editFilesURLsList)) {
        auto step = std::make_shared<MCMp4FileEditor>();
        step->stepName = QStringLiteral("Editing for Joining");
        step->fileToClean = file;
        steps << step;
    }
    setStepConverterList(steps);
    for (const MCConverterPtr &step : std::as_const(steps)) {
        startStep(step, true);
        retryJoinURLsList << step->outputFileURL;
    }
    QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorRemoveSysTrack);
}

void MCEditMp4Job::monitorRemoveSysTrack()
{
    addMonitorLoop(MCMonitorPolicy::start(), [this] { retryJoin(); });
}

void MCEditMp4Job::retryJoin()
{
    setStepPIDList({});
    setProgressList({});
    resetMonitorCounters();
    // The retry joins the copies; the job's own record keeps naming the
    // user's files, which stay protected.
    MCSelectionPtr copies = jobSelection->copy();
    copies->editFilesURLsList = retryJoinURLsList;
    auto step = std::make_shared<MCMp4FileEditor>();
    step->inititializeForTrack(0, QStringLiteral("Retrying Join"), true);
    step->expectedResult = expectedResult();
    setStepConverterList({step});
    startStep(step, true, copies);
    QTimer::singleShot(kMonitorDelayMs, this, &MCEditMp4Job::monitorStartJobWithMultipleSteps);
}
