#pragma once

#include <QList>
#include <QTableView>
#include <QUrl>

// A table that takes files dropped from the desktop and hands over their
// locations; the rows themselves are not dragged.
class MCDropTableView : public QTableView
{
    Q_OBJECT
public:
    explicit MCDropTableView(QWidget *parent = nullptr);

    // Only local files count; anything else in a drop is ignored.
    static QList<QUrl> localFilesIn(const QMimeData *data);

signals:
    void filesDropped(const QList<QUrl> &urls);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
};
