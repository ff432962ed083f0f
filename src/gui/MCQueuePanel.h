#pragma once

#include "MCJobMenu.h"

#include <QDockWidget>

class MCJob;
class MCQueueController;
class MCToolTipBinder;
class QLabel;
class QPushButton;
class QTableView;

// The queue beside the main window: the job table with its delete column
// and a line of details on the chosen job (why it failed, where its result
// is), the running job's step progress, Pause/Resume and Clear. A job's
// context menu shows its folder or opens its log. The panel opens and
// closes when the queue asks.
class MCQueuePanel : public QDockWidget
{
    Q_OBJECT
public:
    MCQueuePanel(MCQueueController *queue, MCToolTipBinder *toolTips, QWidget *parent = nullptr);

    QTableView *jobTable() const { return m_jobTable; }
    QTableView *progressTable() const { return m_progressTable; }
    QPushButton *pauseButton() const { return m_pauseButton; }
    QLabel *detailsLabel() const { return m_details; }

    // The context menu of a job row (the caller's to delete).
    MCJobMenu *jobMenu(int row);
    // How folders and logs are opened; the desktop's own handler by default.
    void setOpener(MCJobMenu::Opener open) { m_open = std::move(open); }

private:
    void buildJobTable(QWidget *content);
    void buildProgressTable(QWidget *content);
    void showDetails();
    void jobEnded(MCJob *job);

    MCQueueController *m_queue;
    MCJobMenu::Opener m_open;
    QTableView *m_jobTable;
    QLabel *m_details;
    QTableView *m_progressTable;
    QPushButton *m_pauseButton;
    QPushButton *m_clearButton;
};
