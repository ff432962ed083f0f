#pragma once

#include <QDockWidget>

class MCQueueController;
class MCToolTipBinder;
class QPushButton;
class QTableView;

// The queue beside the main window: the job table with its delete column,
// the running job's step progress, Pause/Resume and Clear. It opens and
// closes when the queue asks.
class MCQueuePanel : public QDockWidget
{
    Q_OBJECT
public:
    MCQueuePanel(MCQueueController *queue, MCToolTipBinder *toolTips, QWidget *parent = nullptr);

    QTableView *jobTable() const { return m_jobTable; }
    QTableView *progressTable() const { return m_progressTable; }
    QPushButton *pauseButton() const { return m_pauseButton; }

private:
    MCQueueController *m_queue;
    QTableView *m_jobTable;
    QTableView *m_progressTable;
    QPushButton *m_pauseButton;
    QPushButton *m_clearButton;
};
