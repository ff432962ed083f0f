#include "EngineTestSupport.h"
#include "MCJobFactory.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCWatchModeLink.h"
#include "TestSupport.h"

#include <QFile>
#include <QFileInfo>

#include <deque>

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using Model = MCQueueJobModel;

// Each job created runs the next of these shell scripts (OUT: its result,
// named after the order the job was made in).
std::deque<QString> scripts;
int jobsMade = 0;

MCJob *makeShellJob(QObject *parent)
{
    auto *job = new StepsJob(parent);
    const QString script = scripts.empty() ? u"sleep 0.3; printf film > OUT"_s : scripts.front();
    if (!scripts.empty())
        scripts.pop_front();
    job->steps = {std::make_shared<ShellStep>(script, u"out%1.avi"_s.arg(++jobsMade))};
    return job;
}

class FakeWatchMode : public MCWatchModeLink
{
public:
    bool appIsInWatchMode() const override { return watching; }
    QStringList movieExtensionsList() const override { return {u"avi"_s, u"mkv"_s}; }
    void appendToBaseWatchFolderMovieList(const QString &path) override { known << path; }

    bool watching = true;
    QStringList known;
};

class QueueTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        scripts.clear();
        jobsMade = 0;
        for (const char *name : {"MCConvertToAviJob", "MCEditAviJob", "MCConvertToMkvJob", "MCEditMkvJob"})
            MCJobFactory::instance().registerJobType(QString::fromUtf8(name), makeShellJob);
    }
    void TearDown() override { MCAlertCenter::instance().setPresenter(nullptr); }

    void add(const QString &name, const QString &type = u"AVI Conversion"_s)
    {
        queue.addToQueue(selectionFor(prefs.dir.filePath(name), type));
    }
    MCJob *job(int row) const { return queue.qJobList().at(row); }
    Model *model() const { return queue.qJobArrayController(); }
    QVariant cell(int row, int column, int role = Qt::DisplayRole) const { return model()->index(row, column).data(role); }
    QVariant rowData(int row, int role) const { return cell(row, Model::FileNameColumn, role); }
    QString status(int row) const { return cell(row, Model::StatusColumn).toString(); }

    PrivatePreferences prefs;
    MCQueueController queue;
};

} // namespace

TEST_F(QueueTest, RowsBecomeJobsOfTheKnownTypesOnlyOnCopiesOfTheSelection)
{
    add(u"removal.avi"_s, u"AVI Track Removal"_s);
    add(u"a.mp4"_s, u"MP4 Joining"_s);
    EXPECT_TRUE(queue.qJobList().isEmpty());
    EXPECT_FALSE(queue.queueTimerIsActive());

    // One job per split file; the Matroska rows hand their steps the AVI words.
    MCSelectionPtr split = selectionFor(u"/videos/first.mkv"_s, u"MKV Splitting"_s);
    split->editFilesURLsList = {QUrl::fromLocalFile(u"/videos/one.mkv"_s), QUrl::fromLocalFile(u"/videos/two.mkv"_s)};
    queue.addToQueue(split);
    ASSERT_EQ(queue.qJobList().size(), 2);
    EXPECT_EQ(job(1)->jobType, u"MKV Splitting"_s);
    EXPECT_EQ(job(1)->jobSelection->jobType, u"AVI Splitting"_s);
    EXPECT_EQ(job(1)->jobSelection->videoTrackFileURL.toLocalFile(), u"/videos/two.mkv"_s);

    // Steps pair with tracks by position: a stereo copy joins, a dropped subtitle leaves.
    MCSelectionPtr conversion = selectionFor(u"/videos/movie.mkv"_s, u"MKV Conversion"_s);
    MCVideoTrackPtr muxed = makeTrack(u"Subtitle"_s, u"srt"_s, u"/videos/movie.mkv"_s);
    muxed->userCodec = u"mux"_s;
    MCVideoTrackPtr dropped = makeTrack(u"Subtitle"_s, u"ass"_s, u"/videos/movie.mkv"_s);
    dropped->userCodec = u"drop"_s;
    conversion->trackList = {makeTrack(u"Audio"_s, u"ac3"_s, u"/videos/movie.mkv"_s), dropped, muxed};
    conversion->addedAudioTrackList = {makeTrack(u"Audio"_s, u"aac"_s, u"/videos/movie.mkv"_s)};
    queue.addToQueue(conversion);
    ASSERT_EQ(queue.qJobList().size(), 3);
    const MCSelection &queued = *job(2)->jobSelection;
    EXPECT_EQ(queued.jobType, u"AVI Conversion"_s);
    ASSERT_EQ(queued.trackList.size(), 3);
    EXPECT_EQ(queued.trackList.at(1)->trackCodec, u"srt"_s);
    EXPECT_EQ(queued.trackList.at(2)->trackCodec, u"aac"_s);
    EXPECT_EQ(conversion->trackList.size(), 3); // the live record is left alone
    conversion->jobType = u"MKV Remuxing"_s; // not a row
    queue.addToQueue(conversion);
    EXPECT_EQ(queue.qJobList().size(), 3);

    EXPECT_TRUE(queue.queueTimerIsActive());
}

TEST_F(QueueTest, PauseResumeAndDeletingRows)
{
    prefs.preferences->keepLogsFlag = true;
    const auto alerts = testsupport::recordAlerts();
    scripts = {u"printf film > OUT"_s, u"exec sleep 30"_s, u"exec sleep 30"_s, u"exec sleep 30"_s};
    for (const char *name : {"done.avi", "running.avi", "next.avi", "last.avi"})
        add(QString::fromUtf8(name));
    ASSERT_TRUE(testsupport::waitUntil([&] { return status(1) == u"Running"_s; }, 10000));
    const QString pid = queue.currentJob()->stepPIDList().value(0);
    EXPECT_EQ(queue.currentJobRowIndex(), 1);
    EXPECT_EQ(status(2), u"Waiting"_s);
    EXPECT_EQ(job(2)->jobStatus(), u"Queued"_s); // the queue's own word is kept
    EXPECT_TRUE(rowData(2, Model::DetailsRole).toString().startsWith(u"Waiting: AVI Conversion of "_s));

    // Pausing redraws the whole row: the status and what follows from it.
    int from = -1, to = -1;
    QObject::connect(model(), &QAbstractItemModel::dataChanged, model(), [&](const QModelIndex &first, const QModelIndex &last) {
        from = first.column();
        to = last.column();
    });
    queue.pauseQueueButton();
    EXPECT_LE(from, int(Model::StatusColumn));
    EXPECT_GE(to, int(Model::OutputColumn));
    queue.pauseQueueButton();

    queue.deleteJobRow(0, 1); // not the delete column
    EXPECT_EQ(queue.qJobList().size(), 4);
    queue.deleteJobRow(0, 0); // above the running job
    EXPECT_EQ(queue.currentJobRowIndex(), 0);
    queue.deleteJobRow(2, 0); // below it
    EXPECT_EQ(queue.qJobList().size(), 2);

    alerts->answer = MCAlertSecondButtonReturn;
    queue.deleteJobRow(0, 0);
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.at(0).message, u"Stop the currently running job?"_s);
    EXPECT_TRUE(alerts->alerts.at(0).attachedToDrawer);
    EXPECT_TRUE(reachesState(pid, u"S"_s));

    // A stopped job's log goes even when logs are kept.
    alerts->answer = MCAlertFirstButtonReturn;
    queue.deleteJobRow(0, 0);
    EXPECT_EQ(processState(pid), QString());
    EXPECT_FALSE(QFile::exists(prefs.saveFolder + u"/out2.avi.log"_s));
    EXPECT_FALSE(queue.qJobIsRunning());
    EXPECT_TRUE(queue.jobProgressList().isEmpty());
    ASSERT_EQ(queue.qJobList().size(), 1);
    ASSERT_TRUE(testsupport::waitUntil([&] { return status(0) == u"Running"_s; }, 5000));
    EXPECT_EQ(queue.currentJob()->jobFileName, u"next.avi"_s);
}

TEST_F(QueueTest, ACompletedRowNamesItsResultAndAFailedOneItsReasonAndLog)
{
    prefs.preferences->keepLogsFlag = true;
    scripts = {u"echo 'Pos: 1.0s'; printf film > OUT"_s, u"echo 'Pos: 1.0s'; echo 'Exiting... (no sound card)'; exit 1"_s};
    add(u"good.avi"_s);
    add(u"bad.avi"_s);
    ASSERT_TRUE(testsupport::waitUntil([&] { return status(1) == u"Failed"_s; }, 20000));

    EXPECT_EQ(status(0), u"Completed"_s);
    const QString result = job(0)->resultPaths().value(0);
    ASSERT_FALSE(result.isEmpty());
    EXPECT_EQ(cell(0, Model::OutputColumn).toString(), QFileInfo(result).fileName());
    EXPECT_EQ(rowData(0, Model::DetailsRole).toString(), u"Completed: "_s + result);
    EXPECT_EQ(rowData(0, Model::FolderRole).toString(), prefs.saveFolder);
    const QStringList logs = rowData(0, Model::LogPathsRole).toStringList();
    ASSERT_EQ(logs.size(), 1);
    EXPECT_EQ(QFileInfo(logs.first()).absolutePath(), prefs.saveFolder);
    EXPECT_TRUE(QFileInfo::exists(logs.first()));

    // The reason and the log are in the row itself, not only behind a tooltip.
    const QString details = rowData(1, Model::DetailsRole).toString();
    EXPECT_TRUE(details.contains(u"Exiting... (no sound card)"_s) && details.endsWith(u"Log: "_s + job(1)->failedLogPath()))
        << details.toStdString();
}

TEST_F(QueueTest, OwnOutputsAreKnownToTheWatchMode)
{
    FakeWatchMode watch;
    queue.setWatchModeController(&watch);
    auto &center = MCNotificationCenter::defaultCenter();
    center.post(MCNotificationName::conversionStarted, QUrl::fromLocalFile(u"/watch/movie.mkv.AVI"_s));
    center.post(MCNotificationName::conversionStarted, QUrl::fromLocalFile(u"/watch/movie.mkv.log"_s));
    watch.watching = false;
    center.post(MCNotificationName::conversionStarted, QUrl::fromLocalFile(u"/watch/other.avi"_s));
    EXPECT_EQ(watch.known, QStringList{u"/watch/movie.mkv.AVI"_s});
}
