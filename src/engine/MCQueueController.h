#pragma once

#include "MCHelpers.h"
#include "MCJob.h"
#include "MCNotificationCenter.h"
#include "MCSelection.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVariantList>

class MCJobJournal;
class MCPreferences;
class MCProgressTableModel;
class MCQueueJobModel;
class MCWatchModeLink;

// The job queue: runs the queued jobs strictly one at a time, in list order,
// on a one-second timer, and publishes the job table and the running job's
// progress rows as models for the queue panel. Main thread only.
class MCQueueController : public QObject, public MCHelpers
{
    Q_OBJECT
    Q_PROPERTY(QString pauseButtonTitle READ pauseButtonTitle NOTIFY pauseButtonTitleChanged)
    Q_PROPERTY(bool qJobIsRunning READ qJobIsRunning NOTIFY qJobIsRunningChanged)

public:
    // The queue hands its preferences to every job it makes, and each job to
    // its steps; by default the application's.
    explicit MCQueueController(QObject *parent = nullptr, MCPreferences *preferences = nullptr);
    // A job still running is stopped: no tool outlives the queue.
    ~MCQueueController() override;

    void initialize();
    void addToQueue(const MCSelectionPtr &selection);
    void theQueueLoop();
    void manageQueue();
    void notificationHub(const MCNotification &notification);
    // The Pause/Resume button: acts only while a job runs.
    void pauseQueueButton();
    // Pause and resume as the user asks for them (the button, a quit that
    // was cancelled): the job reads "Paused" and the button "Resume".
    void pauseCurrentJob();
    void resumeCurrentJob();
    bool pausedByUser() const { return m_pausedByUser; }
    // Removes every completed job.
    void clearQueueButton();
    // A click in the job table; only the first (delete) column acts.
    void deleteJobRow(int row, int column);
    // Removes a job; the running one only after the user confirmed its stop.
    void removeJob(int row);
    void quitJobAlertClosed(int returnCode);
    void startJobThread();

    const QList<MCJob *> &qJobList() const;
    MCQueueJobModel *qJobArrayController() const { return m_jobModel; }
    const QVariantList &jobProgressList() const;
    MCProgressTableModel *jobProgressArrayController() const { return m_progressModel; }
    MCJob *currentJob() const { return m_currentJob; }
    qint64 currentJobRowIndex() const { return m_currentJobRowIndex; }
    bool qJobIsRunning() const { return m_qJobIsRunning; }
    QString pauseButtonTitle() const { return m_pauseButtonTitle; }
    bool queueTimerIsActive() const { return m_qTimer.isActive(); }

    MCPreferences *appPreferences = nullptr;
    void setWatchModeController(MCWatchModeLink *watchModeController);
    // What every job made from now on does with a result whose name is taken.
    MCJob::ExistingResults existingResults = MCJob::ExistingResults::KeepBoth;
    // The intake's reports, handed to every job for the check of its result.
    std::shared_ptr<const MCReportCache> intakeReports;
    // Keeps every queued job on disk until it ends, so a Kestrane that was
    // killed can offer its jobs again. Not owned; none by default.
    void setJournal(MCJobJournal *journal) { m_journal = journal; }

    // jobType -> job class; any other type is not queued.
    static QString jobClassForType(const QString &jobType);
    // The name a job shows: its source, or the first file of a file edit.
    static QString jobFileNameFor(const MCSelection &selection);

signals:
    void drawerOpenRequested();
    void drawerCloseRequested();
    void pauseButtonTitleChanged();
    void qJobIsRunningChanged();
    // A job ended ("Completed" or "Failed").
    void jobEnded(MCJob *job);

private:
    void appendJob(MCJob *job);
    void removeJobAt(int row);
    void setJobIsRunning(bool running);
    void setPauseButtonTitle(const QString &title);
    void resumeUnlessPausedByUser();
    bool isFromCurrentJob(const MCNotification &notification) const;
    void noteOwnOutput(const QVariant &object);

    MCQueueJobModel *m_jobModel;
    MCProgressTableModel *m_progressModel;
    QTimer m_qTimer;
    QPointer<MCJob> m_currentJob;
    qint64 m_currentJobRowIndex = 0;
    bool m_qJobIsRunning = false;
    bool m_pausedByUser = false;
    QString m_pauseButtonTitle = QStringLiteral("Pause");
    MCWatchModeLink *m_watchModeController = nullptr;
    MCJobJournal *m_journal = nullptr;
    QMetaObject::Connection m_hubConnection;
};
