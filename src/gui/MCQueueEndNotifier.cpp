#include "MCQueueEndNotifier.h"

#include "MCJob.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

namespace {

const QString kCompleted = QStringLiteral("Completed");
const QString kFailed = QStringLiteral("Failed");

QString jobsText(int count)
{
    return count == 1 ? QStringLiteral("1 job") : QStringLiteral("%1 jobs").arg(count);
}

} // namespace

MCQueueEndNotifier::MCQueueEndNotifier(MCQueueController *queue, Send send, QObject *parent)
    : QObject(parent)
    , m_queue(queue)
    , m_send(std::move(send))
    , m_focused([] { return QApplication::activeWindow() != nullptr; })
{
    connect(queue->qJobArrayController(), &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex &, int first, int last) { watchJobs(first, last); });
    connect(queue, &MCQueueController::qJobIsRunningChanged, this, &MCQueueEndNotifier::checkLater);
    watchJobs(0, static_cast<int>(queue->qJobList().size()) - 1);
}

QString MCQueueEndNotifier::summary()
{
    return QStringLiteral("Kestrane: the queue is done");
}

QString MCQueueEndNotifier::bodyFor(int completed, int failed)
{
    if (failed == 0)
        return QStringLiteral("%1 completed.").arg(jobsText(completed));
    if (completed == 0)
        return QStringLiteral("%1 failed.").arg(jobsText(failed));
    return QStringLiteral("%1 completed, %2 failed.").arg(jobsText(completed)).arg(failed);
}

void MCQueueEndNotifier::watchJobs(int first, int last)
{
    const QList<MCJob *> &jobs = m_queue->qJobList();
    for (int row = first; row <= last && row < jobs.size(); ++row) {
        MCJob *job = jobs.at(row);
        connect(job, &MCJob::jobStatusChanged, this, [this, job = QPointer<MCJob>(job)] {
            if (job)
                jobStatusChanged(job->jobStatus());
        });
    }
}

void MCQueueEndNotifier::jobStatusChanged(const QString &status)
{
    if (status == kCompleted)
        ++m_completed;
    else if (status == kFailed)
        ++m_failed;
    else
        return;
    checkLater();
}

void MCQueueEndNotifier::checkLater()
{
    // The queue marks a job done just after it stops running it: look once
    // both have happened.
    if (m_checkPending)
        return;
    m_checkPending = true;
    QTimer::singleShot(0, this, &MCQueueEndNotifier::check);
}

void MCQueueEndNotifier::check()
{
    m_checkPending = false;
    if (m_queue->qJobIsRunning())
        return;
    for (const MCJob *job : m_queue->qJobList()) {
        const QString status = job->jobStatus();
        if (status == QLatin1String("Queued") || status == QLatin1String("Running"))
            return;
    }
    if (m_completed + m_failed == 0)
        return;
    const QString body = bodyFor(m_completed, m_failed);
    m_completed = m_failed = 0;
    if (!m_focused() && m_send)
        m_send(summary(), body);
}
