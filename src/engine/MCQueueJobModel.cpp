#include "MCQueueJobModel.h"

#include "MCJob.h"

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
    const int row = static_cast<int>(m_jobs.indexOf(job));
    if (row >= 0)
        emit dataChanged(index(row, StatusColumn), index(row, StatusColumn));
}

int MCQueueJobModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_jobs.size());
}

int MCQueueJobModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MCQueueJobModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_jobs.size())
        return {};
    const MCJob *job = m_jobs.at(index.row());
    if (role == Qt::ToolTipRole && index.column() == DeleteColumn)
        return QStringLiteral("Remove this job from the queue");
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case FileNameColumn:
        return job->jobFileName;
    case JobTypeColumn:
        return job->jobType;
    case StatusColumn:
        return job->jobStatus();
    default:
        return QString();
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
    default:
        return {};
    }
}
