#pragma once

#include "MCConverter.h"
#include "MCHelpers.h"
#include "MCJobStaging.h"
#include "MCMonitorPolicy.h"
#include "MCProgressRows.h"
#include "MCSelection.h"
#include "MCSourceSummaries.h"

#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <QVariantList>
#include <QVariantMap>
#include <QWaitCondition>

#include <atomic>
#include <functional>

class MCPreferences;

// One queued piece of work on one input: an ordered list of steps, a monitor
// loop on the job's own thread that reads their progress every half second
// (sooner when a tool ends), the progress rows, and the cleanup of logs and
// intermediate files.
//
// Everything a job writes goes first into a private folder inside the save
// folder; the results move to their final names only once every tool
// succeeded and the results check out. A job that fails says why, keeps the
// log of the step that failed, and leaves no partial result behind.
//
// The job object lives on the main thread. Its monitor loops run one after
// another on monitorQueue (a pool of one thread). The lists the two threads
// share are behind one mutex; phase changes go back to the main thread.
class MCJob : public QObject, public MCHelpers
{
    Q_OBJECT
    Q_PROPERTY(QString jobStatus READ jobStatus WRITE setJobStatus NOTIFY jobStatusChanged)

public:
    explicit MCJob(QObject *parent = nullptr);
    ~MCJob() override;

    QString jobFileName;
    QString jobType;
    MCSelectionPtr jobSelection;
    MCPreferences *appPreferences = nullptr;
    // Main thread only.
    QStringList tempFilesToDeleteList;
    QStringList logFilesToDeleteList;

    QString jobStatus() const;
    void setJobStatus(const QString &status);

    // Shared with the monitor thread; each call takes a consistent copy.
    // A null entry in stepConverterList stands for a track that needs no
    // step ("none") and counts as finished.
    QList<MCConverterPtr> stepConverterList() const;
    void setStepConverterList(const QList<MCConverterPtr> &steps);
    QStringList stepPIDList() const;
    void setStepPIDList(const QStringList &pids);
    void appendStepPID(const QString &pid);
    QVariantList progressList() const;
    void setProgressList(const QVariantList &rows);
    QVariantList oldProgressList() const;
    bool jobIsCancelled() const { return m_jobIsCancelled.load(); }

    // Identifies the job's notifications (userInfo "job").
    quint64 jobSerial() const { return m_jobSerial; }
    // The job's private folder while it runs ("" before and after).
    QString stagingFolderPath() const { return m_staging.path(); }
    // The job's entry in the queue kept on disk ("" when not kept).
    QString journalId;
    // What happens when a result's name is already taken in the save folder:
    // the new result takes a numbered name, replaces the file (never one of
    // the job's own sources), or the user is asked.
    enum class ExistingResults { KeepBoth, Replace, Ask };
    ExistingResults existingResults = ExistingResults::KeepBoth;

    // Once the job has ended: why it failed ("" when it did not), the log
    // kept for the user when it failed, and where its results now are.
    QString failureReason() const;
    QString failedLogPath() const;
    QStringList resultPaths() const;
    bool hasFailed() const { return !failureReason().isEmpty(); }

    // The intake's reports, where the check of a result finds its sources.
    void useIntakeReports(std::shared_ptr<const MCReportCache> reports) { m_sourceSummaries.useReports(std::move(reports)); }
    // Builds and starts the steps and the first monitor loop. The base does nothing.
    virtual void startJob();
    // Why the job cannot start ("" when it can): its save folder has less
    // room than its sources take, which a result of it needs about as well.
    QString spaceShortage() const;
    // Ends a job that never started as failed (main thread).
    void refuseToStart(const QString &reason);
    // End of a job: cleanup (unless logs are kept), "jobDone", free-space check.
    void jobDone();
    // Pause and resume reach every tool of the job that still runs.
    void pauseJob();
    void resumeJob();
    // Cancels the monitor, ends every tool, removes logs, intermediates and
    // whatever the job had begun to write.
    void stopJob();

    static QVariantMap progressRow(const QString &step, const QString &progress);
    // How much free space after a job still counts as "almost out".
    static constexpr qint64 lowFreeSpaceBytes = 999999;

signals:
    void jobStatusChanged();

protected:
    QThreadPool monitorQueue;

    // Starts a step for the job's selection (or the one given) inside the
    // job's private folder: its id joins stepPIDList, its log and
    // intermediate file the deletion lists; with addStartRow a row
    // (stepName, "0%") is added.
    void startStep(const MCConverterPtr &step, bool addStartRow, const MCSelectionPtr &selection = nullptr);

    // Puts a monitor loop on monitorQueue: every tick asks each step for its
    // status and builds the rows as the policy says, posts them, and waits
    // half a second (or until a tool ends). When every step is finished the
    // loop ends; unless cancelled, a step that failed ends the job as failed,
    // otherwise nextPhase runs on the main thread. Without a nextPhase the
    // job ends here: its results are checked and put in place.
    void addMonitorLoop(const MCMonitorPolicy &policy, std::function<void()> nextPhase = {});
    // The counter and last percentage of the counted monitors, reset for a
    // new phase (main thread, before the loop starts).
    void resetMonitorCounters();
    int monitorStepCounter() const;
    int monitorLastValue() const;

    // Checks the results of a job whose steps all succeeded (monitor thread,
    // results still in the private folder): "" when they are right, else
    // what is wrong. The base wants every result to be a non-empty file.
    virtual QString checkResults() const;
    // The save folder of the job: the preferences' folder, else the folder
    // of the job's source (or first file).
    QString saveFolderPath() const;

    // Runs work on the main thread and waits for it; gives up waiting when
    // the job is cancelled, so a stop can never dead-lock with the monitor.
    void handOffAndWait(const std::function<void()> &work);
    // Starts the second pass of a two-pass step (main thread).
    virtual void startPass2SelectorFor(const MCConverterPtr &step);
    // Ends the job as failed (main thread): its results are removed, the
    // failed step's log is kept, and the queue reads "Failed".
    void failJob(const QString &reason, const MCConverterPtr &failedStep);
    // Ends a job that cannot run as failed, without a step, a moment after
    // its start (so the queue's bookkeeping of the start comes first).
    void refuseJob(const QString &reason);
    // A job that knows a way around a step's failure takes over here (main
    // thread, after the loop that saw it): true when it does, and the job
    // does not end. The base knows none.
    virtual bool recoverFromStepFailure(const MCConverterPtr &failedStep);
    // Creates the job's private folder when it has none yet; false (and the
    // job's failure reason set) when the save folder takes no files.
    bool ensureStaging();
    // Whether "keep logs" keeps only the logs: the job's intermediates are
    // streams a watched folder would take up as movies of their own.
    bool keepsOnlyLogs = false;

private:
    bool monitorTick(const MCMonitorPolicy &policy);
    QString firstStepFailure(MCConverterPtr *failedStep) const;
    void finishJob(const QString &reason, const MCConverterPtr &failedStep);
    QStringList stagedResults() const;
    void askAboutExistingResults(const QStringList &taken);
    void publishResults(bool replacing);

    void beginTick();
    void appendRow(const QVariantMap &row);
    void postProgressUpdate(const QVariantList &rows);
    void sleepOneTick();
    void wakeMonitor();
    void stopMonitorThread();
    void removeFiles(const QStringList &paths);
    QStringList jobInputPaths() const;
    void warnIfSaveVolumeIsAlmostFull();
    void rememberSourceSummaries();

    QString m_jobStatus = QStringLiteral("Queued");
    const quint64 m_jobSerial;
    MCJobStaging m_staging;
    mutable MCSourceSummaries m_sourceSummaries;

    mutable QMutex m_mutex;
    QList<MCConverterPtr> m_stepConverterList;
    QStringList m_stepPIDList;
    QVariantList m_progressList;
    QString m_failureReason;
    QString m_failedLogPath;
    QStringList m_resultPaths;
    MCProgressRows m_rows;

    std::atomic<bool> m_jobIsCancelled{false};
    QMutex m_sleepMutex;
    QWaitCondition m_wake;
    bool m_wakePending = false;
};
