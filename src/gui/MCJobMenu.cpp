#include "MCJobMenu.h"

#include "MCQueueJobModel.h"

MCJobMenu::MCJobMenu(const QModelIndex &row, const Opener &open, QWidget *parent)
    : QMenu(parent)
{
    const QString folder = row.data(MCQueueJobModel::FolderRole).toString();
    const QStringList logs = row.data(MCQueueJobModel::LogPathsRole).toStringList();
    showInFolderAction = addAction(QStringLiteral("Show in folder"), this,
                                   [open, folder] { open(QUrl::fromLocalFile(folder)); });
    showInFolderAction->setEnabled(!folder.isEmpty());
    openLogAction = addAction(QStringLiteral("Open log"), this, [open, logs] {
        for (const QString &log : logs)
            open(QUrl::fromLocalFile(log));
    });
    openLogAction->setEnabled(!logs.isEmpty());
}
