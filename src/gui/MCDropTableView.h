#pragma once

#include <QList>
#include <QTableView>
#include <QUrl>

// A table that takes files dropped from the desktop and hands over their
// locations; the rows themselves are not dragged. Tab leaves the table
// rather than walking its cells, and with a check column Space ticks the
// current row whichever of its cells is current.
class MCDropTableView : public QTableView
{
    Q_OBJECT
public:
    explicit MCDropTableView(QWidget *parent = nullptr);

    // Only local files count; anything else in a drop is ignored.
    static QList<QUrl> localFilesIn(const QMimeData *data);

    // Accepts a drag or drop that carries local files, ignores any other;
    // answers which. For every widget that takes files from the desktop.
    static bool acceptLocalFiles(QDropEvent *event);

    void setCheckColumn(int column) { m_checkColumn = column; }

signals:
    void filesDropped(const QList<QUrl> &urls);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int m_checkColumn = -1;
};
