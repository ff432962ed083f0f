#include "MCJobWatcher.h"

#include "MCJob.h"
#include "MCNotificationCenter.h"
#include "MCProgressPrinter.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

QStringList inputPathsOf(const MCJob &job)
{
    QStringList inputs;
    if (!job.jobSelection)
        return inputs;
    inputs << QFileInfo(job.jobSelection->videoTrackFileURL.toLocalFile()).absoluteFilePath();
    for (const QUrl &url : job.jobSelection->editFilesURLsList)
        inputs << QFileInfo(url.toLocalFile()).absoluteFilePath();
    for (const MCVideoTrackPtr &track : job.jobSelection->trackList) {
        if (track)
            inputs << QFileInfo(track->trackFileURL.toLocalFile()).absoluteFilePath();
    }
    return inputs;
}

// Files in the output's folder named after it (pieces of a split), written
// since the job started.
QStringList piecesOf(const QFileInfo &output, const QDateTime &since)
{
    QStringList pieces;
    const QString stem = output.completeBaseName();
    if (stem.isEmpty() || output.suffix().isEmpty())
        return pieces;
    const QFileInfoList candidates =
        QDir(output.absolutePath()).entryInfoList({stem + QStringLiteral("*.") + output.suffix()}, QDir::Files);
    for (const QFileInfo &candidate : candidates) {
        if (candidate.lastModified() >= since && candidate.size() > 0)
            pieces << candidate.absoluteFilePath();
    }
    return pieces;
}

} // namespace

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
        if (job->jobStatus() != QStringLiteral("Completed"))
            return false;
    }
    return true;
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
        // A second's slack: file times have whole-second precision on some systems.
        m_startTimes.insert(job, QDateTime::currentDateTime().addSecs(-1));
        m_printer->jobStarted(displayName(*job), job->jobType, ++m_started, static_cast<int>(m_queue->qJobList().size()));
        return;
    }
    if (job->jobStatus() != QStringLiteral("Completed"))
        return;
    bool complete = false;
    const QStringList outputs = outputsOf(*job, m_startTimes.value(job), &complete);
    if (complete) {
        ++m_succeeded;
        m_printer->jobFinished(displayName(*job), true, outputs.join(QStringLiteral(", ")));
    } else {
        ++m_failed;
        m_printer->jobFinished(displayName(*job), false, QStringLiteral("no output written"));
    }
}

QStringList MCJobWatcher::outputsOf(const MCJob &job, const QDateTime &startedAt, bool *complete)
{
    QStringList outputs;
    bool everyStepWrote = true;
    int finalSteps = 0;
    const QStringList inputs = inputPathsOf(job);
    for (const MCConverterPtr &step : job.stepConverterList()) {
        if (!step || step->isTemporaryOutput || step->outputFileURL.isEmpty())
            continue;
        ++finalSteps;
        const QFileInfo output(step->outputFileURL.toLocalFile());
        QStringList written;
        if (output.exists() && output.size() > 0 && !inputs.contains(output.absoluteFilePath()))
            written << output.absoluteFilePath();
        else
            written = piecesOf(output, startedAt);
        for (const QString &path : std::as_const(inputs))
            written.removeAll(path);
        everyStepWrote = everyStepWrote && !written.isEmpty();
        outputs << written;
    }
    if (complete)
        *complete = finalSteps > 0 && everyStepWrote;
    outputs.removeDuplicates();
    return outputs;
}

void MCJobWatcher::stopAll(const std::function<void()> &stopAndEmptyQueue)
{
    MCJob *running = m_queue->qJobIsRunning() ? m_queue->currentJob() : nullptr;
    const QString runningName = running ? displayName(*running) : QString();
    QStringList partial;
    if (running) {
        const QDateTime since = m_startTimes.value(running);
        partial = outputsOf(*running, since);
        for (const MCConverterPtr &step : running->stepConverterList()) {
            if (step && !step->outputFileURL.isEmpty())
                partial << step->outputFileURL.toLocalFile();
        }
        const QStringList inputs = inputPathsOf(*running);
        for (const QString &path : inputs)
            partial.removeAll(path);
    }
    stopAndEmptyQueue();
    if (running)
        m_printer->jobFinished(runningName, false, QStringLiteral("stopped"));
    // The stop ends the tools and removes logs and intermediates; what the
    // job had begun to write as its result is half a file and goes too.
    for (const QString &path : std::as_const(partial)) {
        if (QFileInfo(path).isFile())
            QFile::remove(path);
    }
}
