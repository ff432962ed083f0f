#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QStringList>

class MCJob;

// The queue's job table: one row per job, in queue order. Adding and
// removing rows here is how the queue list changes. The jobs belong to the
// queue; the model only lists them.
//
// Beside the columns a view shows, each row answers what a front end needs
// to explain a job without opening anything: whether it failed, a one-line
// account of it, and where its results and logs are.
class MCQueueJobModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { DeleteColumn, FileNameColumn, JobTypeColumn, StatusColumn, OutputColumn, ColumnCount };
    enum Role {
        FailedRole = Qt::UserRole + 1, // bool
        DetailsRole,                   // QString: status, and the reason or the result
        FolderRole,                    // QString: the results' folder, or the kept log's
        LogPathsRole,                  // QStringList: the failed step's log, or the kept logs
    };

    explicit MCQueueJobModel(QObject *parent = nullptr);

    const QList<MCJob *> &jobs() const { return m_jobs; }
    void appendJob(MCJob *job);
    // Removes the row and answers its job (now the caller's), or null.
    MCJob *takeJob(int row);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The word a user reads for a job status: a queued job is "Waiting".
    static QString statusLabel(const QString &jobStatus);
    static QString outputText(const MCJob &job);
    static QString detailsText(const MCJob &job);
    // The logs a user can open for an ended job.
    static QStringList logPaths(const MCJob &job);

private:
    void jobStatusChanged(MCJob *job);
    QVariant displayData(const MCJob &job, int column) const;
    QVariant toolTipData(const MCJob &job, int column) const;

    QList<MCJob *> m_jobs;
};
