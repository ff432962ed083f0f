#pragma once

#include <QMenu>
#include <QUrl>

#include <functional>

// The context menu of a job row: "Show in folder" opens the folder of the
// job's results (or of its kept log when it failed), "Open log" the failed
// step's log or the logs kept by preference. Either is greyed out when
// the job has nothing of the kind yet.
class MCJobMenu : public QMenu
{
    Q_OBJECT
public:
    using Opener = std::function<void(const QUrl &)>;

    // row: an index of the queue's job model (any column).
    MCJobMenu(const QModelIndex &row, const Opener &open, QWidget *parent = nullptr);

    QAction *showInFolderAction = nullptr;
    QAction *openLogAction = nullptr;
};
