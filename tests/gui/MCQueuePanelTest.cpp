// The queue panel as a user reads it: each job's status in words, a failed
// job in red with its reason on show, and the way to its folder and log.
#include "GuiTestSupport.h"
#include "MCDropTableView.h"
#include "MCJob.h"
#include "MCJobMenu.h"
#include "MCMainWindow.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCQueuePanel.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QStringListModel>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

namespace {

using Model = MCQueueJobModel;

class QueuePanelTest : public guitest::WindowTest
{
protected:
    QAbstractItemModel *rows() const { return w->queuePanel->jobTable()->model(); }
    QVariant cell(int row, int column, int role = Qt::DisplayRole) const
    {
        return rows()->index(row, column).data(role);
    }
    QString status(int row) const { return cell(row, Model::StatusColumn).toString(); }
};

TEST_F(QueuePanelTest, PauseAndResumeReadOnTheRowAndTheButton)
{
    ASSERT_FALSE(loadAndTick(QStringLiteral("long.avi"), 40, QStringLiteral("640x480")).isEmpty());
    w->videoMatrix->button(2)->click(); // two passes: long enough to catch running
    ASSERT_TRUE(w->convertButton->isEnabled());
    w->convertButton->click();
    ASSERT_TRUE(testsupport::waitUntil([&] { return runningJob() != nullptr; }, 20000));
    EXPECT_EQ(status(0), QStringLiteral("Running"));

    QPushButton *pause = w->queuePanel->pauseButton();
    pause->click();
    EXPECT_EQ(status(0), QStringLiteral("Paused"));
    EXPECT_EQ(pause->text(), QStringLiteral("Resume"));
    pause->click();
    EXPECT_EQ(status(0), QStringLiteral("Running"));
    EXPECT_EQ(pause->text(), QStringLiteral("Pause"));
}

TEST_F(QueuePanelTest, AFailedJobIsRedWithItsReasonShownAndItsLogAtHand)
{
    // The source goes away between loading and converting: the tool fails.
    const QString source = loadAndTick(QStringLiteral("gone.avi"));
    ASSERT_FALSE(source.isEmpty());
    ASSERT_TRUE(QFile::remove(source));
    w->convertButton->click();
    ASSERT_TRUE(testsupport::waitUntil([&] { return status(0) == QStringLiteral("Failed"); }, 30000)) << status(0).toStdString();
    const MCJob *job = app->queue()->qJobList().first();

    const QColor red = MCMainWindow::colorFor(QStringLiteral("red"), QApplication::palette());
    for (const int column : {Model::FileNameColumn, Model::StatusColumn, Model::OutputColumn})
        EXPECT_EQ(cell(0, column, Qt::ForegroundRole).value<QColor>(), red) << column;
    EXPECT_EQ(cell(0, Model::StatusColumn, Qt::ToolTipRole).toString(), job->failureReason());

    // Nothing else was chosen, so the failure is on show without a click.
    QLabel *details = w->queuePanel->detailsLabel();
    EXPECT_TRUE(details->isVisible());
    EXPECT_TRUE(details->text().contains(job->failureReason())) << details->text().toStdString();
    EXPECT_EQ(details->palette().color(QPalette::WindowText), red);

    QList<QUrl> opened;
    w->queuePanel->setOpener([&](const QUrl &url) { opened << url; });
    std::unique_ptr<MCJobMenu> menu(w->queuePanel->jobMenu(0));
    ASSERT_FALSE(job->failedLogPath().isEmpty());
    ASSERT_TRUE(menu->openLogAction->isEnabled());
    menu->openLogAction->trigger();
    ASSERT_TRUE(menu->showInFolderAction->isEnabled());
    menu->showInFolderAction->trigger();
    EXPECT_EQ(opened, (QList<QUrl>{QUrl::fromLocalFile(job->failedLogPath()),
                                   QUrl::fromLocalFile(QFileInfo(job->failedLogPath()).absolutePath())}));

    // Clear takes failed jobs away too.
    app->queue()->clearQueueButton();
    EXPECT_EQ(rows()->rowCount(), 0);
    EXPECT_FALSE(details->isVisible());
}

TEST_F(QueuePanelTest, AJoinIsNamedAfterItsFirstFile)
{
    w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(QStringLiteral("Edit Files")));
    const QList<QUrl> files{QUrl::fromLocalFile(guitest::makeAvi(dir.path(), QStringLiteral("part 1.avi"))),
                            QUrl::fromLocalFile(guitest::makeAvi(dir.path(), QStringLiteral("part 2.avi")))};
    guitest::dropOn(w->fileTable->viewport(), files);
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->fileModel->rowCount() == 2; }, 20000));
    ASSERT_TRUE(w->joinButton->isEnabled());
    w->joinButton->click();
    ASSERT_EQ(rows()->rowCount(), 1);
    EXPECT_EQ(cell(0, Model::FileNameColumn).toString(), QStringLiteral("part 1.avi"));
    EXPECT_EQ(cell(0, Model::FileNameColumn, Qt::ToolTipRole).toString(),
              files.at(0).toLocalFile() + QLatin1Char('\n') + files.at(1).toLocalFile());
    // A name too long for its column keeps both ends.
    EXPECT_EQ(w->queuePanel->jobTable()->textElideMode(), Qt::ElideMiddle);
}

} // namespace
