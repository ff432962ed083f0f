#pragma once

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>

class MCJob;
class MCProgressPrinter;
class MCQueueController;

// Follows the queue for the command line: announces each job as it starts,
// hands the running job's progress rows to the printer, and judges each
// finished job by its output files.
class MCJobWatcher : public QObject
{
    Q_OBJECT
public:
    MCJobWatcher(MCQueueController *queue, MCProgressPrinter *printer, QObject *parent = nullptr);

    // No job is queued or running.
    bool queueIsIdle() const;
    int succeededCount() const { return m_succeeded; }
    int failedCount() const { return m_failed; }

    // Stops the running job as the queue's stop does, empties the queue and
    // removes what the stopped job had written so far.
    void stopAll(const std::function<void()> &stopAndEmptyQueue);

    // The files a job wrote: each final step's output, or for a step that
    // writes numbered pieces, the files named after it written since start.
    static QStringList outputsOf(const MCJob &job, const QDateTime &startedAt, bool *complete = nullptr);

    static QString displayName(const MCJob &job);

private:
    void watchNewRows(int first, int last);
    void jobStatusChanged(MCJob *job);

    MCQueueController *m_queue;
    MCProgressPrinter *m_printer;
    QHash<MCJob *, QDateTime> m_startTimes;
    int m_started = 0;
    int m_succeeded = 0;
    int m_failed = 0;
};
