#pragma once

#include <QAbstractTableModel>
#include <QList>

class MCJob;

// The queue's job table: one row per job, in queue order. Adding and
// removing rows here is how the queue list changes. The jobs belong to the
// queue; the model only lists them.
class MCQueueJobModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { DeleteColumn, FileNameColumn, JobTypeColumn, StatusColumn, ColumnCount };

    explicit MCQueueJobModel(QObject *parent = nullptr);

    const QList<MCJob *> &jobs() const { return m_jobs; }
    void appendJob(MCJob *job);
    // Removes the row and answers its job (now the caller's), or null.
    MCJob *takeJob(int row);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    void jobStatusChanged(MCJob *job);

    QList<MCJob *> m_jobs;
};
