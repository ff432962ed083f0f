#pragma once

#include <QSet>
#include <QObject>
#include <QPointer>
#include <QStringList>

class MCJob;
class MCProgressPrinter;
class MCQueueController;

// Follows the queue for the command line: announces each job as it starts,
// hands the running job's progress rows to the printer, and reports each
// job's end with its results or the reason it failed.
class MCJobWatcher : public QObject
{
    Q_OBJECT
public:
    MCJobWatcher(MCQueueController *queue, MCProgressPrinter *printer, QObject *parent = nullptr);

    // No job is queued or running.
    bool queueIsIdle() const;
    int succeededCount() const { return m_succeeded; }
    int failedCount() const { return m_failed; }

    // Stops the running job as the queue's stop does (which removes all it
    // had written) and empties the queue.
    void stopAll(const std::function<void()> &stopAndEmptyQueue);

    // "Completed" or "Failed".
    static bool hasEnded(const MCJob &job);

    static QString displayName(const MCJob &job);

private:
    void watchNewRows(int first, int last);
    void jobStatusChanged(MCJob *job);

    MCQueueController *m_queue;
    MCProgressPrinter *m_printer;
    QSet<const MCJob *> m_announced;
    int m_started = 0;
    int m_succeeded = 0;
    int m_failed = 0;
};
