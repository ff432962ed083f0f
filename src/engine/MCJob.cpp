#include "MCJob.h"

#include "MCAlertCenter.h"
#include "MCLog.h"
#include "MCMencoderVideo.h"
#include "MCNotificationCenter.h"
#include "MCPreferences.h"
#include "MCSaveVolume.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSet>
#include <QSemaphore>
#include <QTimer>

#include <csignal>

namespace {

std::atomic<quint64> nextJobSerial{1};

constexpr int kTickMilliseconds = 500;
constexpr int kRefusalDelayMilliseconds = 100;
// A tool that ignores the polite stop is ended for good after this long.
constexpr int kStopGraceMilliseconds = 3000;

const QString kComplete = QStringLiteral("Complete");
const QString kError = QStringLiteral("error");
const QString kPass1Complete = QStringLiteral("Pass 1 Complete");
QString folderOf(const QUrl &file)
{
    const QString path = file.toLocalFile();
    return path.isEmpty() ? QString() : QFileInfo(path).absolutePath();
}

void announceOwnFile(const QString &path)
{
    MCNotificationCenter::defaultCenter().post(MCNotificationName::conversionStarted, QUrl::fromLocalFile(path));
}

} // namespace

MCJob::MCJob(QObject *parent)
    : QObject(parent)
    , m_jobSerial(nextJobSerial.fetch_add(1))
{
    appPreferences = MCPreferences::applicationPreferences();
    monitorQueue.setMaxThreadCount(1);
    tempFilesToDeleteList.reserve(200);
    logFilesToDeleteList.reserve(200);
    m_progressList.reserve(200);
}

MCJob::~MCJob()
{
    stopMonitorThread();
}

void MCJob::stopMonitorThread()
{
    monitorQueue.clear();
    {
        QMutexLocker lock(&m_sleepMutex);
        m_jobIsCancelled = true;
        m_wake.wakeAll();
    }
    monitorQueue.waitForDone();
}

QString MCJob::jobStatus() const
{
    return m_jobStatus;
}

void MCJob::setJobStatus(const QString &status)
{
    if (status == m_jobStatus)
        return;
    m_jobStatus = status;
    if (jobSelection)
        jobSelection->jobStatus = status; // the job's own copy travels with it
    emit jobStatusChanged();
}

QList<MCConverterPtr> MCJob::stepConverterList() const
{
    QMutexLocker lock(&m_mutex);
    return m_stepConverterList;
}

void MCJob::setStepConverterList(const QList<MCConverterPtr> &steps)
{
    QMutexLocker lock(&m_mutex);
    m_stepConverterList = steps;
}

QStringList MCJob::stepPIDList() const
{
    QMutexLocker lock(&m_mutex);
    return m_stepPIDList;
}

void MCJob::setStepPIDList(const QStringList &pids)
{
    QMutexLocker lock(&m_mutex);
    m_stepPIDList = pids;
}

void MCJob::appendStepPID(const QString &pid)
{
    QMutexLocker lock(&m_mutex);
    m_stepPIDList.append(pid);
}

QVariantList MCJob::progressList() const
{
    QMutexLocker lock(&m_mutex);
    return m_progressList;
}

void MCJob::setProgressList(const QVariantList &rows)
{
    QMutexLocker lock(&m_mutex);
    m_progressList = rows;
}

QVariantList MCJob::oldProgressList() const
{
    return m_rows.previousRows();
}

QString MCJob::failureReason() const
{
    QMutexLocker lock(&m_mutex);
    return m_failureReason;
}

QString MCJob::failedLogPath() const
{
    QMutexLocker lock(&m_mutex);
    return m_failedLogPath;
}

QStringList MCJob::resultPaths() const
{
    QMutexLocker lock(&m_mutex);
    return m_resultPaths;
}

QVariantMap MCJob::progressRow(const QString &step, const QString &progress)
{
    return MCProgressRows::row(step, progress);
}

void MCJob::startJob()
{
}

QString MCJob::spaceShortage() const
{
    return MCSaveVolume(saveFolderPath(), lowFreeSpaceBytes).shortageFor(jobInputPaths());
}

void MCJob::refuseToStart(const QString &reason)
{
    failJob(reason, nullptr);
}

QString MCJob::saveFolderPath() const
{
    if (appPreferences && !appPreferences->saveDirectoryURL.toLocalFile().isEmpty())
        return appPreferences->saveDirectoryURL.toLocalFile();
    if (!jobSelection)
        return {};
    const QString videoFolder = folderOf(jobSelection->videoTrackFileURL);
    if (!videoFolder.isEmpty())
        return videoFolder;
    return jobSelection->editFilesURLsList.isEmpty() ? QString() : folderOf(jobSelection->editFilesURLsList.first());
}

bool MCJob::ensureStaging()
{
    if (m_staging.exists())
        return true;
    if (!m_failureReason.isEmpty())
        return false;
    const QString folder = saveFolderPath();
    if (!m_staging.create(folder)) {
        QMutexLocker lock(&m_mutex);
        m_failureReason = QStringLiteral("Kestrane cannot write into the save folder %1 (%2)").arg(folder, m_staging.errorText());
        return false;
    }
    return true;
}

void MCJob::startStep(const MCConverterPtr &step, bool addStartRow, const MCSelectionPtr &selection)
{
    // A dry run composes commands only and writes nothing, not even a folder.
    if (!MCConverter::isRecordingCommands() && !ensureStaging()) {
        appendStepPID(kError);
        return;
    }
    step->stagingFolder = m_staging.path();
    step->appPreferences = appPreferences;
    step->onToolEnded = [job = QPointer<MCJob>(this)] {
        if (job)
            job->wakeMonitor();
    };
    const QString pid = step->startConversionFor(selection ? selection : jobSelection);
    appendStepPID(pid);
    if (addStartRow) {
        QMutexLocker lock(&m_mutex);
        m_progressList.append(progressRow(step->stepName, QStringLiteral("0%")));
    }
    if (pid == kError || pid.isEmpty())
        return;
    if (!step->tempFileToDeleteURL.isEmpty())
        tempFilesToDeleteList.append(step->tempFileToDeleteURL.toLocalFile());
    if (!step->logFileURL.isEmpty())
        logFilesToDeleteList.append(step->logFileURL.toLocalFile());
}

void MCJob::resetMonitorCounters()
{
    m_rows.resetCounters();
}

int MCJob::monitorStepCounter() const
{
    return m_rows.stepCounter();
}

int MCJob::monitorLastValue() const
{
    return m_rows.lastValue();
}

void MCJob::addMonitorLoop(const MCMonitorPolicy &policy, std::function<void()> nextPhase)
{
    if (jobIsCancelled())
        return;
    monitorQueue.start([this, policy, nextPhase = std::move(nextPhase)] {
        rememberSourceSummaries();
        bool finished = false;
        while (!finished && !jobIsCancelled()) {
            finished = monitorTick(policy);
            if (!jobIsCancelled())
                postProgressUpdate(progressList());
            // No need to wait half a second before the next phase.
            if (!finished)
                sleepOneTick();
        }
        if (jobIsCancelled())
            return;
        MCConverterPtr failedStep;
        QString reason = firstStepFailure(&failedStep);
        if (reason.isEmpty() && !nextPhase)
            reason = checkResults();
        QMetaObject::invokeMethod(
            this,
            [this, reason, failedStep, nextPhase] {
                if (jobIsCancelled())
                    return;
                if (!reason.isEmpty() && failedStep && recoverFromStepFailure(failedStep))
                    return;
                if (!reason.isEmpty())
                    failJob(reason, failedStep);
                else if (nextPhase)
                    nextPhase();
                else
                    finishJob({}, nullptr);
            },
            Qt::QueuedConnection);
    });
}

void MCJob::beginTick()
{
    QMutexLocker lock(&m_mutex);
    m_rows.beginTick(m_progressList);
    m_progressList = QVariantList();
}

void MCJob::appendRow(const QVariantMap &row)
{
    QMutexLocker lock(&m_mutex);
    m_progressList.append(row);
}

bool MCJob::monitorTick(const MCMonitorPolicy &policy)
{
    beginTick();
    const QList<MCConverterPtr> steps = stepConverterList();
    qsizetype finished = 0;
    for (const MCConverterPtr &step : steps) {
        if (!step) {
            ++finished;
            continue;
        }
        const QString status = step->monitorConversion();
        if (status == kComplete)
            ++finished;
        if (status == kPass1Complete) {
            handOffAndWait([this, step] { startPass2SelectorFor(step); });
            if (!policy.keepFinishedRows)
                continue;
        }
        const QVariantMap row = m_rows.rowFor(policy, step->stepName, status, progressList().size());
        if (!row.isEmpty())
            appendRow(row);
    }
    return finished >= steps.size();
}

QString MCJob::firstStepFailure(MCConverterPtr *failedStep) const
{
    {
        QMutexLocker lock(&m_mutex);
        if (!m_failureReason.isEmpty())
            return m_failureReason;
    }
    for (const MCConverterPtr &step : stepConverterList()) {
        if (!step)
            continue;
        const QString reason = step->failureReason();
        if (!reason.isEmpty()) {
            *failedStep = step;
            return step->stepName.isEmpty() ? reason : QStringLiteral("%1: %2").arg(step->stepName, reason);
        }
    }
    return {};
}

QString MCJob::checkResults() const
{
    for (const MCConverterPtr &step : stepConverterList()) {
        if (!step)
            continue;
        for (const QString &path : step->resultPaths()) {
            const QString problem = MCResultCheck::check(path, step->expectedResult,
                                                         [this](const QString &source) { return m_sourceSummaries.of(source); });
            if (!problem.isEmpty())
                return QStringLiteral("The result %1 is not right: %2").arg(QFileInfo(path).fileName(), problem);
        }
    }
    return {};
}

void MCJob::finishJob(const QString &reason, const MCConverterPtr &failedStep)
{
    if (!reason.isEmpty()) {
        failJob(reason, failedStep);
        return;
    }
    QStringList taken;
    for (const QString &path : stagedResults()) {
        if (m_staging.nameIsTaken(path))
            taken << QFileInfo(path).fileName();
    }
    if (!taken.isEmpty() && existingResults == ExistingResults::Ask) {
        askAboutExistingResults(taken);
        return;
    }
    publishResults(existingResults == ExistingResults::Replace);
}

// The sources are read while the tools run, on the monitor's thread: the
// check at the end then waits for mediainfo on the result only.
void MCJob::rememberSourceSummaries()
{
    QStringList sources;
    for (const MCConverterPtr &step : stepConverterList()) {
        if (step)
            sources << step->expectedResult.durationSources;
    }
    m_sourceSummaries.remember(sources);
}

QStringList MCJob::stagedResults() const
{
    QStringList staged;
    for (const MCConverterPtr &step : stepConverterList()) {
        if (!step)
            continue;
        for (const QString &path : step->resultPaths()) {
            if (m_staging.contains(path))
                staged << path;
        }
    }
    return staged;
}

void MCJob::askAboutExistingResults(const QStringList &taken)
{
    MCAlert alert;
    alert.message = taken.size() == 1
                        ? QStringLiteral("\"%1\" already exists in the save folder.").arg(taken.first())
                        : QStringLiteral("\"%1\" and %2 more files already exist in the save folder.").arg(taken.first()).arg(taken.size() - 1);
    alert.informativeText = QStringLiteral("Keep both (the new result takes a numbered name), or replace the existing file "
                                           "with the new result?");
    alert.buttons = {QStringLiteral("Keep Both"), QStringLiteral("Replace")};
    MCAlertCenter::instance().present(alert, [job = QPointer<MCJob>(this)](int code) {
        if (job && !job->jobIsCancelled())
            job->publishResults(code == MCAlertSecondButtonReturn);
    });
}

void MCJob::publishResults(bool replacing)
{
    QStringList published;
    const QStringList inputs = jobInputPaths();
    for (const MCConverterPtr &step : stepConverterList()) {
        if (!step)
            continue;
        for (const QString &path : step->resultPaths()) {
            if (!m_staging.contains(path)) {
                published << path; // a tool that writes beside its source
                continue;
            }
            const QString finalPath = replacing ? m_staging.publishReplacing(path, inputs) : m_staging.publish(path);
            if (finalPath.isEmpty()) {
                failJob(QStringLiteral("The result %1 could not be put in place: %2")
                            .arg(QFileInfo(path).fileName(), m_staging.errorText()),
                        nullptr);
                return;
            }
            // A watched folder must not take the result up as a new movie.
            announceOwnFile(finalPath);
            published << finalPath;
        }
    }
    {
        QMutexLocker lock(&m_mutex);
        m_resultPaths = published;
    }
    jobDone();
}

void MCJob::failJob(const QString &reason, const MCConverterPtr &failedStep)
{
    // Half-written results never stand where a result would.
    for (const MCConverterPtr &step : stepConverterList()) {
        if (!step)
            continue;
        for (const QString &path : step->resultPaths()) {
            if (m_staging.contains(path))
                QFile::remove(path);
        }
    }
    QString keptLog;
    if (failedStep && m_staging.contains(failedStep->logFileURL.toLocalFile())
        && QFileInfo::exists(failedStep->logFileURL.toLocalFile())) {
        keptLog = m_staging.publish(failedStep->logFileURL.toLocalFile());
        logFilesToDeleteList.removeAll(failedStep->logFileURL.toLocalFile());
    }
    {
        QMutexLocker lock(&m_mutex);
        m_failureReason = reason;
        m_failedLogPath = keptLog;
    }
    MCLog::line(QStringLiteral("Failed: %1: %2%3")
                    .arg(jobFileName, reason, keptLog.isEmpty() ? QString() : QStringLiteral(" (log: %1)").arg(keptLog)));
    jobDone();
}

void MCJob::refuseJob(const QString &reason)
{
    QTimer::singleShot(kRefusalDelayMilliseconds, this, [this, reason] { failJob(reason, nullptr); });
}

bool MCJob::recoverFromStepFailure(const MCConverterPtr &)
{
    return false;
}

void MCJob::handOffAndWait(const std::function<void()> &work)
{
    auto done = std::make_shared<QSemaphore>();
    QMetaObject::invokeMethod(
        this,
        [this, work, done] {
            if (!jobIsCancelled())
                work();
            done->release();
        },
        Qt::QueuedConnection);
    while (!done->tryAcquire(1, 50)) {
        if (jobIsCancelled())
            return;
    }
}

void MCJob::startPass2SelectorFor(const MCConverterPtr &step)
{
    if (auto *video = dynamic_cast<MCMencoderVideo *>(step.get()))
        appendStepPID(video->startPass2());
}

void MCJob::postProgressUpdate(const QVariantList &rows)
{
    MCNotificationCenter::defaultCenter().post(MCNotificationName::progressUpdate, rows,
                                               {{QStringLiteral("job"), m_jobSerial}});
}

void MCJob::sleepOneTick()
{
    QMutexLocker lock(&m_sleepMutex);
    if (!m_wakePending && !jobIsCancelled())
        m_wake.wait(&m_sleepMutex, kTickMilliseconds);
    m_wakePending = false;
}

void MCJob::wakeMonitor()
{
    QMutexLocker lock(&m_sleepMutex);
    m_wakePending = true;
    m_wake.wakeAll();
}

QStringList MCJob::jobInputPaths() const
{
    return jobSelection ? jobSelection->sourcePaths() : QStringList();
}

void MCJob::removeFiles(const QStringList &paths)
{
    const QStringList inputs = jobInputPaths();
    for (const QString &path : paths) {
        // The user's own files are never removed, whatever a step recorded.
        if (path.isEmpty() || inputs.contains(QFileInfo(path).absoluteFilePath()))
            continue;
        if (QFileInfo::exists(path))
            QFile::remove(path);
    }
}

void MCJob::jobDone()
{
    if (!(appPreferences && appPreferences->keepLogsFlag)) {
        removeFiles(logFilesToDeleteList);
        removeFiles(tempFilesToDeleteList);
    } else {
        // A watched folder must not take a kept stream up as a new movie.
        for (const QString &kept : m_staging.publishKept(logFilesToDeleteList, keepsOnlyLogs))
            announceOwnFile(kept);
    }
    m_staging.remove();
    QVariantList emptyRows;
    emptyRows.reserve(200);
    setProgressList(emptyRows);
    MCNotificationCenter::defaultCenter().post(MCNotificationName::jobDone, emptyRows,
                                               {{QStringLiteral("job"), m_jobSerial},
                                                {QStringLiteral("failed"), failureReason()}});
    warnIfSaveVolumeIsAlmostFull();
}

void MCJob::warnIfSaveVolumeIsAlmostFull()
{
    if (!MCSaveVolume(saveFolderPath(), lowFreeSpaceBytes).isAlmostFull())
        return;
    MCAlert alert;
    alert.message = QStringLiteral("It appears that your save volume is almost out of free space.");
    alert.informativeText = QStringLiteral("The output of the just finished job may not be complete.");
    alert.timeoutSeconds = 10.0;
    MCAlertCenter::instance().present(alert);
}

void MCJob::pauseJob()
{
    for (const MCConverterPtr &step : stepConverterList()) {
        if (step)
            step->signalTool(SIGSTOP);
    }
}

void MCJob::resumeJob()
{
    for (const MCConverterPtr &step : stepConverterList()) {
        if (step)
            step->signalTool(SIGCONT);
    }
}

void MCJob::stopJob()
{
    stopMonitorThread();
    for (const MCConverterPtr &step : stepConverterList()) {
        if (step)
            step->stopTool(kStopGraceMilliseconds);
    }
    setProgressList({});
    postProgressUpdate({});
    removeFiles(logFilesToDeleteList);
    removeFiles(tempFilesToDeleteList);
    m_staging.remove();
}
