#include "MCDropTableView.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>

MCDropTableView::MCDropTableView(QWidget *parent)
    : QTableView(parent)
{
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    setDropIndicatorShown(false);
}

QList<QUrl> MCDropTableView::localFilesIn(const QMimeData *data)
{
    QList<QUrl> files;
    if (!data || !data->hasUrls())
        return files;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile())
            files << url;
    }
    return files;
}

void MCDropTableView::dragEnterEvent(QDragEnterEvent *event)
{
    if (localFilesIn(event->mimeData()).isEmpty())
        event->ignore();
    else
        event->acceptProposedAction();
}

void MCDropTableView::dragMoveEvent(QDragMoveEvent *event)
{
    if (localFilesIn(event->mimeData()).isEmpty())
        event->ignore();
    else
        event->acceptProposedAction();
}

void MCDropTableView::dropEvent(QDropEvent *event)
{
    const QList<QUrl> files = localFilesIn(event->mimeData());
    if (files.isEmpty()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    emit filesDropped(files);
}
