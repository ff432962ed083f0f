#include "MCQueueController.h"

#include "MCAlertCenter.h"
#include "MCJob.h"
#include "MCJobFactory.h"
#include "MCJobJournal.h"
#include "MCJobStaging.h"
#include "MCLog.h"
#include "MCMkvJobRows.h"
#include "MCPreferences.h"
#include "MCProgressTableModel.h"
#include "MCQueueJobModel.h"
#include "MCWatchModeLink.h"
#include "MCWords.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString kQueued = QStringLiteral("Queued");
const QString kRunning = QStringLiteral("Running");
const QString kCompleted = QStringLiteral("Completed");
const QString kFailed = QStringLiteral("Failed");
const QString kPaused = QStringLiteral("Paused");
const QString kPause = QStringLiteral("Pause");
const QString kResume = QStringLiteral("Resume");

} // namespace

MCQueueController::MCQueueController(QObject *parent, MCPreferences *preferences)
    : QObject(parent)
    , m_jobModel(new MCQueueJobModel(this))
    , m_progressModel(new MCProgressTableModel(this))
{
    appPreferences = preferences ? preferences : MCPreferences::applicationPreferences();
    m_qTimer.setInterval(1000);
    connect(&m_qTimer, &QTimer::timeout, this, &MCQueueController::theQueueLoop);
    initialize();
}

MCQueueController::~MCQueueController()
{
    m_qTimer.stop();
    if (m_qJobIsRunning && m_currentJob)
        m_currentJob->stopJob();
}

void MCQueueController::initialize()
{
    m_progressModel->setRows({});
    m_qJobIsRunning = false;
    if (!m_hubConnection)
        m_hubConnection = MCNotificationCenter::defaultCenter().addObserver(
            this, QString(), [this](const MCNotification &notification) { notificationHub(notification); });
}

const QList<MCJob *> &MCQueueController::qJobList() const
{
    return m_jobModel->jobs();
}

const QVariantList &MCQueueController::jobProgressList() const
{
    return m_progressModel->rows();
}

void MCQueueController::setWatchModeController(MCWatchModeLink *watchModeController)
{
    m_watchModeController = watchModeController;
}

QString MCQueueController::jobClassForType(const QString &jobType)
{
    if (jobType == MCWords::jobAviConversion)
        return QStringLiteral("MCConvertToAviJob");
    if (jobType == MCWords::jobAviTrackExtraction || jobType == MCWords::jobAviTrackAddition
        || jobType == MCWords::jobAviJoining || jobType == MCWords::jobAviSplitting)
        return QStringLiteral("MCEditAviJob");
    if (jobType == MCWords::jobMkvRemux)
        return QStringLiteral("MCReMuxMkvJob");
    // Kestrane's own rows beside those four: Matroska conversion and editing.
    return MCMkvJobRows::jobClassFor(jobType);
}

void MCQueueController::addToQueue(const MCSelectionPtr &selection)
{
    if (!selection)
        return;
    const QString className = jobClassForType(selection->jobType);
    if (className.isEmpty())
        return;
    if (!MCJobFactory::instance().hasJobType(className)) {
        MCLog::line(QStringLiteral("No job class %1 for \"%2\"; not queued").arg(className, selection->jobType));
        return;
    }
    if (qJobList().isEmpty()) {
        emit drawerOpenRequested();
        m_qTimer.start();
    }
    // An idle queue starts the job at once instead of on the next tick.
    QTimer::singleShot(0, this, &MCQueueController::manageQueue);
    const auto makeJob = [&](const MCSelectionPtr &jobSelection, const QString &fileName) {
        MCJob *job = MCJobFactory::instance().create(className, this);
        job->jobType = selection->jobType;
        job->setJobStatus(kQueued);
        job->jobFileName = fileName;
        job->jobSelection = jobSelection;
        job->appPreferences = appPreferences;
        job->existingResults = existingResults;
        job->useIntakeReports(intakeReports);
        if (m_journal)
            job->journalId = m_journal->record(job->jobType, fileName, *jobSelection);
        // Recorded under the type the user chose, so a run again queues the same job.
        jobSelection->jobType = MCMkvJobRows::branchTypeFor(jobSelection->jobType);
        appendJob(job);
    };
    if (selection->jobType == MCWords::jobAviSplitting || MCMkvJobRows::oneJobPerFile(selection->jobType)) {
        for (const QUrl &url : selection->editFilesURLsList) {
            MCSelectionPtr copy = selection->copy();
            copy->videoTrackFileURL = url;
            makeJob(copy, url.fileName());
        }
        return;
    }
    MCSelectionPtr copy = selection->copy();
    if (selection->jobType == MCWords::jobAviConversion || selection->jobType == MCWords::jobMkvRemux)
        copy->trackList += copy->addedAudioTrackList;
    MCMkvJobRows::prepareJobSelection(*copy);
    makeJob(copy, jobFileNameFor(*selection));
}

QString MCQueueController::jobFileNameFor(const MCSelection &selection)
{
    // File-level edits are named after their first file, whatever file the
    // track table holds.
    const bool named = !selection.videoTrackFileName.isEmpty() && selection.videoTrackFileName != QStringLiteral("none");
    if ((selection.editsFiles() || !named) && !selection.editFilesURLsList.isEmpty())
        return selection.editFilesURLsList.first().fileName();
    return selection.videoTrackFileName;
}

void MCQueueController::appendJob(MCJob *job)
{
    m_jobModel->appendJob(job);
}

void MCQueueController::removeJobAt(int row)
{
    MCJob *job = m_jobModel->takeJob(row);
    if (!job)
        return;
    if (m_journal)
        m_journal->forget(job->journalId);
    if (m_currentJob && m_currentJob != job)
        m_currentJobRowIndex = qJobList().indexOf(m_currentJob.data());
    job->deleteLater();
}

void MCQueueController::theQueueLoop()
{
    if (qJobList().isEmpty()) {
        emit drawerCloseRequested();
        m_qTimer.stop();
        return;
    }
    if (!(m_watchModeController && m_watchModeController->appIsInWatchMode()))
        emit drawerOpenRequested();
    manageQueue();
}

void MCQueueController::manageQueue()
{
    if (m_qJobIsRunning)
        return;
    const QList<MCJob *> jobs = qJobList();
    for (qsizetype row = 0; row < jobs.size(); ++row) {
        MCJob *job = jobs.at(row);
        if (job->jobStatus() != kQueued)
            continue;
        setPauseButtonTitle(kPause);
        m_pausedByUser = false;
        m_currentJob = job;
        m_currentJobRowIndex = row;
        setJobIsRunning(true);
        job->setJobStatus(kRunning);
        // A kept log then tells what the job was asked to do.
        if (job->jobSelection)
            job->jobSelection->logSelectionProperties();
        if (const QString shortage = job->spaceShortage(); !shortage.isEmpty()) {
            job->refuseToStart(shortage);
            return;
        }
        job->startJob();
        if (m_journal)
            m_journal->noteStarted(job->journalId, job->stagingFolderPath());
        return;
    }
}

void MCQueueController::startJobThread()
{
    if (m_currentJob)
        m_currentJob->startJob();
}

bool MCQueueController::isFromCurrentJob(const MCNotification &notification) const
{
    if (!m_currentJob)
        return false;
    const QVariant serial = notification.userInfo.value(QStringLiteral("job"));
    return !serial.isValid() || serial.toULongLong() == m_currentJob->jobSerial();
}

void MCQueueController::notificationHub(const MCNotification &notification)
{
    if (notification.name == MCNotificationName::progressUpdate) {
        // A stopped job's last tick may still be on its way; only the running job draws.
        if (m_qJobIsRunning && isFromCurrentJob(notification))
            m_progressModel->setRows(notification.object.toList());
    } else if (notification.name == MCNotificationName::jobDone) {
        if (!isFromCurrentJob(notification))
            return;
        setJobIsRunning(false);
        m_pausedByUser = false;
        setPauseButtonTitle(kPause);
        m_progressModel->setRows(notification.object.toList());
        m_currentJob->setJobStatus(m_currentJob->hasFailed() ? kFailed : kCompleted);
        if (m_journal)
            m_journal->forget(m_currentJob->journalId);
        emit jobEnded(m_currentJob);
        // The next job starts as soon as this one has ended.
        QTimer::singleShot(0, this, &MCQueueController::manageQueue);
    } else if (notification.name == MCNotificationName::conversionStarted) {
        noteOwnOutput(notification.object);
    }
}

void MCQueueController::noteOwnOutput(const QVariant &object)
{
    if (!m_watchModeController || !m_watchModeController->appIsInWatchMode())
        return;
    const QString path = object.typeId() == QMetaType::QUrl ? object.toUrl().toLocalFile() : object.toString();
    // A job's private folder is hidden and never scanned; only the results
    // it puts in place are announced for the watch folder.
    if (QFileInfo(path).absoluteDir().dirName().startsWith(MCJobStaging::folderPrefix()))
        return;
    const QString extension = QFileInfo(path).suffix().toLower();
    if (m_watchModeController->movieExtensionsList().contains(extension))
        m_watchModeController->appendToBaseWatchFolderMovieList(path);
}

void MCQueueController::pauseQueueButton()
{
    if (!m_qJobIsRunning || !m_currentJob)
        return;
    if (m_pausedByUser)
        resumeCurrentJob();
    else
        pauseCurrentJob();
}

void MCQueueController::pauseCurrentJob()
{
    if (!m_qJobIsRunning || !m_currentJob)
        return;
    m_pausedByUser = true;
    m_currentJob->pauseJob();
    m_currentJob->setJobStatus(kPaused);
    setPauseButtonTitle(kResume);
}

void MCQueueController::resumeCurrentJob()
{
    if (!m_qJobIsRunning || !m_currentJob)
        return;
    m_pausedByUser = false;
    m_currentJob->resumeJob();
    m_currentJob->setJobStatus(kRunning);
    setPauseButtonTitle(kPause);
}

void MCQueueController::clearQueueButton()
{
    // Ended jobs go, failed ones too: their logs were kept outside the queue.
    for (int row = static_cast<int>(qJobList().size()) - 1; row >= 0; --row) {
        const QString status = qJobList().at(row)->jobStatus();
        if (status == kCompleted || status == kFailed)
            removeJobAt(row);
    }
}

void MCQueueController::deleteJobRow(int row, int column)
{
    if (column == 0)
        removeJob(row);
}

void MCQueueController::removeJob(int row)
{
    if (row < 0 || row >= qJobList().size())
        return;
    if (!m_qJobIsRunning || !m_currentJob) {
        removeJobAt(row);
        return;
    }
    m_currentJob->pauseJob();
    if (row == m_currentJobRowIndex) {
        MCAlert alert;
        alert.message = QStringLiteral("Stop the currently running job?");
        alert.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
        alert.attachedToDrawer = true;
        MCAlertCenter::instance().present(alert, [self = QPointer<MCQueueController>(this)](int code) {
            if (self)
                self->quitJobAlertClosed(code);
        });
        return;
    }
    removeJobAt(row);
    resumeUnlessPausedByUser();
}

void MCQueueController::quitJobAlertClosed(int returnCode)
{
    if (!m_currentJob || !m_qJobIsRunning)
        return;
    if (returnCode != MCAlertFirstButtonReturn) {
        resumeUnlessPausedByUser();
        return;
    }
    MCJob *job = m_currentJob;
    job->stopJob();
    m_currentJob = nullptr;
    m_pausedByUser = false;
    setJobIsRunning(false);
    setPauseButtonTitle(kPause);
    removeJobAt(static_cast<int>(qJobList().indexOf(job)));
}

void MCQueueController::resumeUnlessPausedByUser()
{
    // A job the user paused stays paused.
    if (!m_pausedByUser && m_currentJob)
        m_currentJob->resumeJob();
}

void MCQueueController::setJobIsRunning(bool running)
{
    if (m_qJobIsRunning == running)
        return;
    m_qJobIsRunning = running;
    emit qJobIsRunningChanged();
}

void MCQueueController::setPauseButtonTitle(const QString &title)
{
    if (m_pauseButtonTitle == title)
        return;
    m_pauseButtonTitle = title;
    emit pauseButtonTitleChanged();
}
