#include "MCDropTableView.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>

MCDropTableView::MCDropTableView(QWidget *parent)
    : QTableView(parent)
{
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    setDropIndicatorShown(false);
    setTabKeyNavigation(false);
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

bool MCDropTableView::acceptLocalFiles(QDropEvent *event)
{
    if (localFilesIn(event->mimeData()).isEmpty()) {
        event->ignore();
        return false;
    }
    event->acceptProposedAction();
    return true;
}

void MCDropTableView::dragEnterEvent(QDragEnterEvent *event)
{
    acceptLocalFiles(event);
}

void MCDropTableView::dragMoveEvent(QDragMoveEvent *event)
{
    acceptLocalFiles(event);
}

void MCDropTableView::dropEvent(QDropEvent *event)
{
    if (acceptLocalFiles(event))
        emit filesDropped(localFilesIn(event->mimeData()));
}

void MCDropTableView::keyPressEvent(QKeyEvent *event)
{
    const QModelIndex current = currentIndex();
    if (event->key() != Qt::Key_Space || m_checkColumn < 0 || !current.isValid() || !model()) {
        QTableView::keyPressEvent(event);
        return;
    }
    const QModelIndex box = model()->index(current.row(), m_checkColumn);
    if (!(model()->flags(box) & Qt::ItemIsUserCheckable) || !(model()->flags(box) & Qt::ItemIsEnabled)) {
        QTableView::keyPressEvent(event);
        return;
    }
    const bool ticked = box.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    model()->setData(box, ticked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    event->accept();
}
