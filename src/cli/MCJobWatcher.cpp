#include "MCJobWatcher.h"

#include "MCJob.h"
#include "MCNotificationCenter.h"
#include "MCProgressPrinter.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"


MCJobWatcher::MCJobWatcher(MCQueueController *queue, MCProgressPrinter *printer, QObject *parent)
    : QObject(parent)
    , m_queue(queue)
    , m_printer(printer)
{
    connect(m_queue->qJobArrayController(), &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex &, int first, int last) { watchNewRows(first, last); });
    MCNotificationCenter::defaultCenter().addObserver(this, MCNotificationName::progressUpdate, [this](const MCNotification &n) {
        const MCJob *job = m_queue->currentJob();
        if (!job || !m_queue->qJobIsRunning() || job->jobStatus() != QStringLiteral("Running"))
            return;
        if (n.userInfo.value(QStringLiteral("job")).toULongLong() == job->jobSerial())
            m_printer->progress(n.object.toList());
    });
}

bool MCJobWatcher::queueIsIdle() const
{
    for (const MCJob *job : m_queue->qJobList()) {
        if (!hasEnded(*job))
            return false;
    }
    return true;
}

bool MCJobWatcher::hasEnded(const MCJob &job)
{
    return job.jobStatus() == QStringLiteral("Completed") || job.jobStatus() == QStringLiteral("Failed");
}

void MCJobWatcher::watchNewRows(int first, int last)
{
    const QList<MCJob *> &jobs = m_queue->qJobList();
    for (int row = first; row <= last && row < jobs.size(); ++row) {
        MCJob *job = jobs.at(row);
        connect(job, &MCJob::jobStatusChanged, this, [this, job] { jobStatusChanged(job); });
    }
}

QString MCJobWatcher::displayName(const MCJob &job)
{
    const bool named = !job.jobFileName.isEmpty() && job.jobFileName != QStringLiteral("none");
    if (named || !job.jobSelection || job.jobSelection->editFilesURLsList.isEmpty())
        return job.jobFileName;
    // File-level edits carry no source track; their first file names them.
    return job.jobSelection->editFilesURLsList.first().fileName();
}

void MCJobWatcher::jobStatusChanged(MCJob *job)
{
    if (job->jobStatus() == QStringLiteral("Running")) {
        if (m_announced.contains(job))
            return; // resumed after a pause
        m_announced.insert(job);
        m_printer->jobStarted(displayName(*job), job->jobType, ++m_started, static_cast<int>(m_queue->qJobList().size()));
        return;
    }
    if (!hasEnded(*job))
        return;
    if (job->hasFailed()) {
        ++m_failed;
        const QString log = job->failedLogPath();
        m_printer->jobFailed(displayName(*job), job->failureReason(), log);
        return;
    }
    ++m_succeeded;
    m_printer->jobCompleted(displayName(*job), job->resultPaths().join(QStringLiteral(", ")));
}

void MCJobWatcher::stopAll(const std::function<void()> &stopAndEmptyQueue)
{
    MCJob *running = m_queue->qJobIsRunning() ? m_queue->currentJob() : nullptr;
    const QString runningName = running ? displayName(*running) : QString();
    // The stop ends the tools and removes everything the job had written.
    stopAndEmptyQueue();
    if (running)
        m_printer->jobFailed(runningName, QStringLiteral("stopped"), QString());
}
