#include "MCQueueJobModel.h"

#include "MCJob.h"
#include "MCPreferences.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString kQueued = QStringLiteral("Queued");
const QString kCompleted = QStringLiteral("Completed");
const QString kFailed = QStringLiteral("Failed");

bool hasFailed(const MCJob &job)
{
    return job.jobStatus() == kFailed;
}

// The files a job works on: its own source, else the files of a file edit.
QStringList sourcePaths(const MCJob &job)
{
    if (!job.jobSelection)
        return {job.jobFileName};
    const QString source = job.jobSelection->videoTrackFileURL.toLocalFile();
    if (!job.jobSelection->editsFiles() && !source.isEmpty() && QFileInfo(source).fileName() == job.jobFileName)
        return {source};
    QStringList paths;
    for (const QUrl &url : job.jobSelection->editFilesURLsList)
        paths << url.toLocalFile();
    return paths.isEmpty() ? QStringList{job.jobFileName} : paths;
}

QString folderOf(const QString &path)
{
    return path.isEmpty() ? QString() : QFileInfo(path).absolutePath();
}

} // namespace

MCQueueJobModel::MCQueueJobModel(QObject *parent)
    : QAbstractTableModel(parent)
{
    m_jobs.reserve(200);
}

void MCQueueJobModel::appendJob(MCJob *job)
{
    beginInsertRows({}, static_cast<int>(m_jobs.size()), static_cast<int>(m_jobs.size()));
    m_jobs.append(job);
    endInsertRows();
    connect(job, &MCJob::jobStatusChanged, this, [this, job] { jobStatusChanged(job); });
}

MCJob *MCQueueJobModel::takeJob(int row)
{
    if (row < 0 || row >= m_jobs.size())
        return nullptr;
    beginRemoveRows({}, row, row);
    MCJob *job = m_jobs.takeAt(row);
    endRemoveRows();
    disconnect(job, nullptr, this, nullptr);
    return job;
}

void MCQueueJobModel::jobStatusChanged(MCJob *job)
{
    // The output and the details follow the status.
    const int row = static_cast<int>(m_jobs.indexOf(job));
    if (row >= 0)
        emit dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

int MCQueueJobModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_jobs.size());
}

int MCQueueJobModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString MCQueueJobModel::statusLabel(const QString &jobStatus)
{
    return jobStatus == kQueued ? QStringLiteral("Waiting") : jobStatus;
}

QString MCQueueJobModel::outputText(const MCJob &job)
{
    if (hasFailed(job))
        return job.failedLogPath().isEmpty() ? QString() : QStringLiteral("Log: %1").arg(QFileInfo(job.failedLogPath()).fileName());
    if (job.jobStatus() != kCompleted || job.resultPaths().isEmpty())
        return {};
    const QStringList results = job.resultPaths();
    const QString first = QFileInfo(results.first()).fileName();
    return results.size() == 1 ? first : QStringLiteral("%1 (+%2 more)").arg(first).arg(results.size() - 1);
}

QString MCQueueJobModel::detailsText(const MCJob &job)
{
    const QString label = statusLabel(job.jobStatus());
    if (hasFailed(job)) {
        const QString reason = job.failureReason().isEmpty() ? QStringLiteral("the job did not end well") : job.failureReason();
        const QString log = job.failedLogPath();
        return log.isEmpty() ? QStringLiteral("%1: %2").arg(label, reason)
                             : QStringLiteral("%1: %2\nLog: %3").arg(label, reason, log);
    }
    if (job.jobStatus() == kCompleted && !job.resultPaths().isEmpty())
        return QStringLiteral("%1: %2").arg(label, job.resultPaths().join(QStringLiteral(", ")));
    return QStringLiteral("%1: %2 of %3").arg(label, job.jobType, sourcePaths(job).join(QStringLiteral(", ")));
}

QStringList MCQueueJobModel::logPaths(const MCJob &job)
{
    if (hasFailed(job))
        return job.failedLogPath().isEmpty() ? QStringList() : QStringList{job.failedLogPath()};
    // Kept logs leave the job's private folder for the results' folder under
    // their own names.
    if (job.jobStatus() != kCompleted || job.resultPaths().isEmpty() || !job.appPreferences
        || !job.appPreferences->keepLogsFlag)
        return {};
    const QDir folder(folderOf(job.resultPaths().first()));
    QStringList kept;
    for (const QString &log : job.logFilesToDeleteList) {
        const QString path = folder.filePath(QFileInfo(log).fileName());
        if (QFileInfo::exists(path) && !kept.contains(path))
            kept << path;
    }
    return kept;
}

QVariant MCQueueJobModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_jobs.size())
        return {};
    const MCJob &job = *m_jobs.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return displayData(job, index.column());
    case Qt::ToolTipRole:
        return toolTipData(job, index.column());
    case FailedRole:
        return hasFailed(job);
    case DetailsRole:
        return detailsText(job);
    case FolderRole:
        if (hasFailed(job))
            return folderOf(job.failedLogPath());
        return job.jobStatus() == kCompleted ? folderOf(job.resultPaths().value(0)) : QString();
    case LogPathsRole:
        return logPaths(job);
    default:
        return {};
    }
}

QVariant MCQueueJobModel::displayData(const MCJob &job, int column) const
{
    switch (column) {
    case FileNameColumn:
        return job.jobFileName;
    case JobTypeColumn:
        return job.jobType;
    case StatusColumn:
        return statusLabel(job.jobStatus());
    case OutputColumn:
        return outputText(job);
    default:
        return QString();
    }
}

QVariant MCQueueJobModel::toolTipData(const MCJob &job, int column) const
{
    switch (column) {
    case DeleteColumn:
        return QStringLiteral("Remove this job from the queue");
    case FileNameColumn:
        return sourcePaths(job).join(QLatin1Char('\n'));
    case StatusColumn:
        return hasFailed(job) ? job.failureReason() : QVariant();
    case OutputColumn:
        if (hasFailed(job))
            return job.failedLogPath().isEmpty() ? QVariant() : job.failedLogPath();
        return job.jobStatus() == kCompleted ? job.resultPaths().join(QLatin1Char('\n')) : QVariant();
    default:
        return {};
    }
}

QVariant MCQueueJobModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case DeleteColumn:
        return QString();
    case FileNameColumn:
        return QStringLiteral("File Name");
    case JobTypeColumn:
        return QStringLiteral("Job Type");
    case StatusColumn:
        return QStringLiteral("Status");
    case OutputColumn:
        return QStringLiteral("Output");
    default:
        return {};
    }
}
