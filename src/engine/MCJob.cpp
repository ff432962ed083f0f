#include "MCJob.h"

#include "MCAlertCenter.h"
#include "MCLog.h"
#include "MCMencoderVideo.h"
#include "MCNotificationCenter.h"
#include "MCPreferences.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QSemaphore>
#include <QStorageInfo>
#include <QThread>

namespace {

std::atomic<quint64> nextJobSerial{1};

constexpr int kTickMilliseconds = 500;
// A tool that ignores the polite stop is ended for good after this long.
constexpr int kStopGraceMilliseconds = 3000;

const QString kComplete = QStringLiteral("Complete");
const QString kPass1Complete = QStringLiteral("Pass 1 Complete");
const QString kError = QStringLiteral("error");

int leadingInteger(const QString &status)
{
    return status.section(QLatin1Char('%'), 0, 0).trimmed().toInt();
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
    m_jobIsCancelled = true;
    m_wake.wakeAll();
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
    QMutexLocker lock(&m_mutex);
    return m_oldProgressList;
}

QVariantMap MCJob::progressRow(const QString &step, const QString &progress)
{
    return {{QStringLiteral("Step"), step}, {QStringLiteral("Progress"), progress}};
}

void MCJob::startJob()
{
}

void MCJob::startStep(const MCConverterPtr &step, bool addStartRow)
{
    const QString pid = step->startConversionFor(jobSelection);
    appendStepPID(pid);
    if (addStartRow) {
        QMutexLocker lock(&m_mutex);
        m_progressList.append(progressRow(step->stepName, QStringLiteral("0%")));
    }
    // A step that could not be built wrote nothing; its provisional names
    // may even be the input's, so they must never reach the deletion lists.
    if (pid == kError || pid.isEmpty())
        return;
    if (!step->tempFileToDeleteURL.isEmpty())
        tempFilesToDeleteList.append(step->tempFileToDeleteURL.toLocalFile());
    if (!step->logFileURL.isEmpty())
        logFilesToDeleteList.append(step->logFileURL.toLocalFile());
}

void MCJob::addMonitorLoop(std::function<bool()> tick, std::function<void()> nextPhase)
{
    if (jobIsCancelled())
        return;
    monitorQueue.start([this, tick = std::move(tick), nextPhase = std::move(nextPhase)] {
        bool finished = false;
        while (!finished && !jobIsCancelled()) {
            finished = tick();
            if (!jobIsCancelled())
                postProgressUpdate(progressList());
            // No need to wait half a second before the next phase.
            if (!finished)
                sleepOneTick();
        }
        if (!jobIsCancelled() && nextPhase)
            QMetaObject::invokeMethod(this, nextPhase, Qt::QueuedConnection);
    });
}

void MCJob::beginTick()
{
    QMutexLocker lock(&m_mutex);
    m_oldProgressList = m_progressList;
    m_progressList = QVariantList();
}

void MCJob::appendRow(const QVariantMap &row)
{
    QMutexLocker lock(&m_mutex);
    m_progressList.append(row);
}

QVariantMap MCJob::errorRow(const QString &stepName, qsizetype position) const
{
    QMutexLocker lock(&m_mutex);
    if (position < m_oldProgressList.size()) {
        const QVariantMap previous = m_oldProgressList.at(position).toMap();
        if (previous.value(QStringLiteral("Step")).toString() == stepName)
            return previous;
    }
    return progressRow(stepName, QString());
}

bool MCJob::monitorTick(bool keepFinishedRows)
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
        if (status == kComplete) {
            ++finished;
            if (keepFinishedRows)
                appendRow(progressRow(step->stepName, status));
        } else if (status == kPass1Complete) {
            handOffAndWait([this, step] { startPass2SelectorFor(step); });
            if (keepFinishedRows)
                appendRow(progressRow(step->stepName, status));
        } else if (status == kError) {
            appendRow(errorRow(step->stepName, progressList().size()));
        } else {
            appendRow(progressRow(step->stepName, status));
        }
    }
    return finished >= steps.size();
}

bool MCJob::standardMonitorTick()
{
    return monitorTick(false);
}

bool MCJob::startMonitorTick()
{
    return monitorTick(true);
}

bool MCJob::countedMonitorTick(int &counter, int &lastValue,
                               const std::function<QString(const MCConverterPtr &, int)> &label)
{
    beginTick();
    const QList<MCConverterPtr> steps = stepConverterList();
    qsizetype finished = 0;
    for (const MCConverterPtr &step : steps) {
        if (!step) {
            ++finished;
            continue;
        }
        QString status = step->monitorConversion();
        if (status == kComplete)
            ++finished;
        else if (status == kError)
            status = QStringLiteral("%1%").arg(lastValue);
        // "Complete" reads as 0, so the counter also steps once as the tool ends.
        const int value = leadingInteger(status);
        if (lastValue > value)
            ++counter;
        appendRow(progressRow(label(step, counter), status));
        lastValue = value;
    }
    return finished >= steps.size();
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
    if (!jobIsCancelled())
        m_wake.wait(&m_sleepMutex, kTickMilliseconds);
}

QStringList MCJob::jobInputPaths() const
{
    QStringList paths;
    if (!jobSelection)
        return paths;
    paths << jobSelection->videoTrackFileURL.toLocalFile() << jobSelection->videoTrackFilePath;
    for (const QUrl &url : jobSelection->editFilesURLsList)
        paths << url.toLocalFile();
    for (const MCTrackList &list : {jobSelection->trackList, jobSelection->addedAudioTrackList, jobSelection->keepTracksList}) {
        for (const MCVideoTrackPtr &track : list) {
            if (track)
                paths << track->trackFileURL.toLocalFile() << track->trackFilePath;
        }
    }
    for (QString &path : paths)
        path = QFileInfo(path).absoluteFilePath();
    return paths;
}

void MCJob::removeFiles(const QStringList &paths)
{
    const QStringList inputs = jobInputPaths();
    for (const QString &path : paths) {
        // The user's own files are never removed, whatever a step recorded.
        if (path.isEmpty() || inputs.contains(QFileInfo(path).absoluteFilePath()))
            continue;
        if (QFileInfo::exists(path))
            doUnixCommand(QStringLiteral("rm"), {QUrl::fromLocalFile(path)});
    }
}

void MCJob::jobDone()
{
    if (!(appPreferences && appPreferences->keepLogsFlag)) {
        removeFiles(logFilesToDeleteList);
        removeFiles(tempFilesToDeleteList);
    }
    QVariantList emptyRows;
    emptyRows.reserve(200);
    setProgressList(emptyRows);
    MCNotificationCenter::defaultCenter().post(MCNotificationName::jobDone, emptyRows,
                                               {{QStringLiteral("job"), m_jobSerial}});
    warnIfSaveVolumeIsAlmostFull();
}

void MCJob::warnIfSaveVolumeIsAlmostFull()
{
    QString folder = appPreferences ? appPreferences->saveDirectoryURL.toLocalFile() : QString();
    if (folder.isEmpty() && jobSelection)
        folder = QFileInfo(jobSelection->videoTrackFileURL.toLocalFile()).absolutePath();
    const QStorageInfo volume(folder);
    if (folder.isEmpty() || !volume.isValid() || !volume.isReady())
        return;
    if (volume.bytesAvailable() > lowFreeSpaceBytes)
        return;
    MCAlert alert;
    alert.message = QStringLiteral("It appears that your save volume is almost out of free space.");
    alert.informativeText = QStringLiteral("The output of the just finished job may not be complete.");
    alert.timeoutSeconds = 10.0;
    MCAlertCenter::instance().present(alert);
}

void MCJob::pauseJob()
{
    // bash's kill reads "-stop" as "-s top"; the upper-case name is the same signal.
    for (const QString &pid : stepPIDList())
        doUnixCommand(QStringLiteral("kill"), {QStringLiteral("-STOP"), pid});
}

void MCJob::resumeJob()
{
    for (const QString &pid : stepPIDList())
        doUnixCommand(QStringLiteral("kill"), {QStringLiteral("-cont"), pid});
}

void MCJob::stopJob()
{
    monitorQueue.clear();
    m_jobIsCancelled = true;
    m_wake.wakeAll();
    const QStringList pids = stepPIDList();
    for (const QString &pid : pids) {
        // A paused tool must run again to be able to end.
        doUnixCommand(QStringLiteral("kill"), {QStringLiteral("-cont"), pid});
        doUnixCommand(QStringLiteral("kill"), {QStringLiteral("KILL"), pid});
    }
    for (const QString &pid : pids) {
        QDeadlineTimer grace(kStopGraceMilliseconds);
        bool forced = false;
        while (processIsRunning(pid)) {
            if (!forced && grace.hasExpired()) {
                MCLog::line(QStringLiteral("Process %1 ignored the stop; ending it").arg(pid));
                doUnixCommand(QStringLiteral("kill"), {QStringLiteral("-KILL"), pid});
                forced = true;
            }
            QThread::msleep(50);
        }
    }
    setProgressList({});
    postProgressUpdate({});
    removeFiles(logFilesToDeleteList);
    removeFiles(tempFilesToDeleteList);
}
