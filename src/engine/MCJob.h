#pragma once

#include "MCConverter.h"
#include "MCHelpers.h"
#include "MCSelection.h"

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
// loop on the job's own thread that reads their progress every half second,
// the progress rows, and the cleanup of logs and intermediate files.
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

    // Builds and starts the steps and the first monitor loop. The base does nothing.
    virtual void startJob();
    // End of a job: cleanup (unless logs are kept), "jobDone", free-space check.
    void jobDone();
    void pauseJob();
    void resumeJob();
    // Cancels the monitor, ends every tool, removes logs and intermediates.
    void stopJob();

    static QVariantMap progressRow(const QString &step, const QString &progress);
    // How much free space after a job still counts as "almost out".
    static constexpr qint64 lowFreeSpaceBytes = 999999;

signals:
    void jobStatusChanged();

protected:
    QThreadPool monitorQueue;

    // Starts a step for the job's selection: its id joins stepPIDList, its
    // log and intermediate file the deletion lists; with addStartRow a row
    // (stepName, "0%") is added.
    void startStep(const MCConverterPtr &step, bool addStartRow);

    // Puts a monitor loop on monitorQueue: tick runs, the rows are posted,
    // the loop sleeps half a second, and repeats until tick answers true or
    // the job is cancelled. Unless cancelled, nextPhase then runs on the
    // main thread (not waited for).
    void addMonitorLoop(std::function<bool()> tick, std::function<void()> nextPhase);

    // One tick of the common contract: finished steps drop out of the
    // table; "error" repeats the step's previous row.
    bool standardMonitorTick();
    // The start monitor: every step keeps its row, "Complete" included.
    bool startMonitorTick();
    // The mux and multi-step monitors: "error" shows the last percentage,
    // and the counter goes up whenever the percentage falls back.
    bool countedMonitorTick(int &counter, int &lastValue, const std::function<QString(const MCConverterPtr &, int)> &label);

    // Ends the monitor thread for good (as a stop does, without touching the
    // tools); subclasses whose ticks read their own fields call it first
    // thing in their destructor.
    void stopMonitorThread();

    // Runs work on the main thread and waits for it; gives up waiting when
    // the job is cancelled, so a stop can never dead-lock with the monitor.
    void handOffAndWait(const std::function<void()> &work);
    // Starts the second pass of a two-pass step (main thread).
    virtual void startPass2SelectorFor(const MCConverterPtr &step);

private:
    // Shared between startMonitorTick and standardMonitorTick.
    bool monitorTick(bool keepFinishedRows);
    QVariantMap errorRow(const QString &stepName, qsizetype position) const;
    void beginTick();
    void appendRow(const QVariantMap &row);
    void postProgressUpdate(const QVariantList &rows);
    void sleepOneTick();
    void removeFiles(const QStringList &paths);
    QStringList jobInputPaths() const;
    void warnIfSaveVolumeIsAlmostFull();

    QString m_jobStatus = QStringLiteral("Queued");
    const quint64 m_jobSerial;

    mutable QMutex m_mutex;
    QList<MCConverterPtr> m_stepConverterList;
    QStringList m_stepPIDList;
    QVariantList m_progressList;
    QVariantList m_oldProgressList;

    std::atomic<bool> m_jobIsCancelled{false};
    QMutex m_sleepMutex;
    QWaitCondition m_wake;
};
