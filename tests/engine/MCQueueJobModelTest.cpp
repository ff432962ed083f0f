// What the queue's job table tells a user about each job, from waiting to
// its end, without opening anything.
#include "EngineTestSupport.h"
#include "MCJobFactory.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "TestSupport.h"

#include <QFileInfo>

#include <deque>

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using Model = MCQueueJobModel;

// Each job created runs the next of these shell scripts (OUT: its result).
std::deque<QString> scripts;

MCJob *makeShellJob(QObject *parent)
{
    auto *job = new StepsJob(parent);
    const QString script = scripts.empty() ? u"printf film > OUT"_s : scripts.front();
    if (!scripts.empty())
        scripts.pop_front();
    job->steps = {std::make_shared<ShellStep>(script, u"result.avi"_s)};
    return job;
}

class QueueJobModelTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        scripts.clear();
        MCJobFactory::instance().registerJobType(u"MCConvertToAviJob"_s, makeShellJob);
    }

    void add(const QString &name) { queue.addToQueue(selectionFor(prefs.dir.filePath(name))); }
    QVariant cell(int row, int column, int role = Qt::DisplayRole) const
    {
        return model()->index(row, column).data(role);
    }
    QVariant rowData(int row, int role) const { return cell(row, Model::FileNameColumn, role); }
    QString status(int row) const { return cell(row, Model::StatusColumn).toString(); }
    Model *model() const { return queue.qJobArrayController(); }

    PrivatePreferences prefs;
    MCQueueController queue;
};

TEST_F(QueueJobModelTest, StatusesReadAsAUserSaysThemAndTheRowRedrawsOnEachChange)
{
    scripts = {u"sleep 30"_s};
    add(u"first.avi"_s);
    add(u"second.avi"_s);
    ASSERT_TRUE(testsupport::waitUntil([&] { return status(0) == u"Running"_s; }, 10000));
    EXPECT_EQ(status(1), u"Waiting"_s);
    EXPECT_EQ(queue.qJobList().at(1)->jobStatus(), u"Queued"_s); // the queue's own word is kept
    EXPECT_TRUE(rowData(1, Model::DetailsRole).toString().startsWith(u"Waiting: AVI Conversion of "_s));

    // The whole row is redrawn, the status and what follows from it.
    int from = -1, to = -1;
    QObject::connect(model(), &QAbstractItemModel::dataChanged, model(),
                     [&](const QModelIndex &first, const QModelIndex &last) {
                         from = first.column();
                         to = last.column();
                     });
    queue.pauseCurrentJob();
    EXPECT_EQ(status(0), u"Paused"_s);
    EXPECT_LE(from, int(Model::StatusColumn));
    EXPECT_GE(to, int(Model::OutputColumn));
    queue.resumeCurrentJob();
    EXPECT_EQ(status(0), u"Running"_s);
    EXPECT_EQ(cell(0, Model::OutputColumn).toString(), QString()); // nothing written yet
    EXPECT_TRUE(rowData(0, Model::FolderRole).toString().isEmpty());
    EXPECT_FALSE(rowData(0, Model::FailedRole).toBool());
}

TEST_F(QueueJobModelTest, ACompletedJobNamesItsResultAndAFailedOneItsReasonAndLog)
{
    scripts = {u"printf film > OUT"_s, u"echo 'Pos: 1.0s'; echo 'Exiting... (no sound card)'; exit 1"_s};
    add(u"good.avi"_s);
    add(u"bad.avi"_s);
    ASSERT_TRUE(testsupport::waitUntil([&] { return status(1) == u"Failed"_s; }, 20000));

    EXPECT_EQ(status(0), u"Completed"_s);
    const QString result = queue.qJobList().at(0)->resultPaths().value(0);
    ASSERT_FALSE(result.isEmpty());
    EXPECT_EQ(cell(0, Model::OutputColumn).toString(), QFileInfo(result).fileName());
    EXPECT_EQ(rowData(0, Model::DetailsRole).toString(), u"Completed: "_s + result);
    EXPECT_EQ(rowData(0, Model::FolderRole).toString(), prefs.saveFolder);
    EXPECT_TRUE(rowData(0, Model::LogPathsRole).toStringList().isEmpty()) << "logs are not kept here";

    // The reason is in the row itself, not only behind a tooltip.
    const MCJob *failed = queue.qJobList().at(1);
    ASSERT_FALSE(failed->failedLogPath().isEmpty());
    EXPECT_TRUE(rowData(1, Model::FailedRole).toBool());
    const QString details = rowData(1, Model::DetailsRole).toString();
    EXPECT_TRUE(details.startsWith(u"Failed: "_s + failed->failureReason())) << details.toStdString();
    EXPECT_TRUE(details.contains(u"Exiting... (no sound card)"_s)) << details.toStdString();
    EXPECT_TRUE(details.endsWith(u"Log: "_s + failed->failedLogPath())) << details.toStdString();
    EXPECT_EQ(cell(1, Model::OutputColumn).toString(), u"Log: "_s + QFileInfo(failed->failedLogPath()).fileName());
    EXPECT_EQ(rowData(1, Model::LogPathsRole).toStringList(), QStringList{failed->failedLogPath()});
    EXPECT_EQ(rowData(1, Model::FolderRole).toString(), QFileInfo(failed->failedLogPath()).absolutePath());
}

TEST_F(QueueJobModelTest, KeptLogsCanBeOpenedFromACompletedJob)
{
    prefs.preferences->keepLogsFlag = true;
    scripts = {u"echo 'Pos: 1.0s'; printf film > OUT"_s};
    add(u"kept.avi"_s);
    ASSERT_TRUE(testsupport::waitUntil([&] { return status(0) == u"Completed"_s; }, 20000));
    const QStringList logs = rowData(0, Model::LogPathsRole).toStringList();
    ASSERT_EQ(logs.size(), 1);
    EXPECT_EQ(QFileInfo(logs.first()).absolutePath(), prefs.saveFolder);
    EXPECT_TRUE(QFileInfo::exists(logs.first()));
}

TEST_F(QueueJobModelTest, AFileEditIsNamedAfterItsFirstFileWithEveryFileInTheTooltip)
{
    MCSelectionPtr join = selectionFor(u"none"_s, u"AVI Joining"_s);
    join->videoTrackFileName = u"none"_s;
    join->videoTrackFileURL = QUrl();
    join->editFilesURLsList = {QUrl::fromLocalFile(u"/videos/part one.avi"_s), QUrl::fromLocalFile(u"/videos/part two.avi"_s)};
    MCJobFactory::instance().registerJobType(u"MCEditAviJob"_s, makeShellJob);
    scripts = {u"sleep 30"_s};
    queue.addToQueue(join);
    ASSERT_EQ(model()->rowCount(), 1);
    EXPECT_EQ(rowData(0, Qt::DisplayRole).toString(), u"part one.avi"_s);
    EXPECT_EQ(rowData(0, Qt::ToolTipRole).toString(), u"/videos/part one.avi\n/videos/part two.avi"_s);
}

} // namespace
