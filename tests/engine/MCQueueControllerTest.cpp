#include "EngineTestSupport.h"
#include "MCJobFactory.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCWatchModeLink.h"
#include "TestSupport.h"

#include <QFile>

#include <deque>

#include <gtest/gtest.h>

namespace {

// Each job created sleeps for the next of these (default 0.3 s).
std::deque<QString> sleeps;

MCJob *makeSleepJob(QObject *parent)
{
    auto *job = new StepsJob(parent);
    QString seconds = QStringLiteral("0.3");
    if (!sleeps.empty()) {
        seconds = sleeps.front();
        sleeps.pop_front();
    }
    job->steps = {std::make_shared<SleepStep>(seconds)};
    return job;
}

class FakeWatchMode : public MCWatchModeLink
{
public:
    bool appIsInWatchMode() const override { return watching; }
    QStringList movieExtensionsList() const override { return {QStringLiteral("avi"), QStringLiteral("mkv")}; }
    void appendToBaseWatchFolderMovieList(const QString &path) override { known << path; }

    bool watching = true;
    QStringList known;
};

class QueueTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        sleeps.clear();
        for (const char *name : {"MCConvertToAviJob", "MCEditAviJob"})
            MCJobFactory::instance().registerJobType(QString::fromUtf8(name), makeSleepJob);
    }
    void TearDown() override { MCAlertCenter::instance().setPresenter(nullptr); }

    void add(const QString &name, const QString &type = QStringLiteral("AVI Conversion"))
    {
        queue.addToQueue(selectionFor(prefs.dir.filePath(name), type));
    }
    QString statusOf(int row) const { return queue.qJobList().at(row)->jobStatus(); }
    QString pidOf(MCJob *job) const { return job->stepPIDList().value(0); }

    PrivatePreferences prefs;
    MCQueueController queue;
};

} // namespace

TEST_F(QueueTest, DispatchCreatesJobsForTheFourTypesOnly)
{
    add(QStringLiteral("removal.avi"), QStringLiteral("AVI Track Removal"));
    add(QStringLiteral("a.mp4"), QStringLiteral("MP4 Joining"));
    EXPECT_TRUE(queue.qJobList().isEmpty());
    EXPECT_FALSE(queue.queueTimerIsActive());

    MCSelectionPtr split = selectionFor(QStringLiteral("/videos/first.avi"), QStringLiteral("AVI Splitting"));
    for (const char *name : {"/videos/one.avi", "/videos/two.avi", "/videos/three.avi"})
        split->editFilesURLsList << QUrl::fromLocalFile(QString::fromUtf8(name));
    queue.addToQueue(split);
    EXPECT_TRUE(queue.queueTimerIsActive());
    ASSERT_EQ(queue.qJobList().size(), 3);
    EXPECT_EQ(queue.qJobList().at(2)->jobFileName, QStringLiteral("three.avi"));
    EXPECT_EQ(queue.qJobList().at(2)->jobSelection->videoTrackFileURL.toLocalFile(), QStringLiteral("/videos/three.avi"));
    EXPECT_EQ(queue.qJobList().at(0)->jobStatus(), QStringLiteral("Queued"));

    MCSelectionPtr conversion = selectionFor(QStringLiteral("/videos/movie.mkv"));
    conversion->trackList = {makeTrack(QStringLiteral("Audio"), QStringLiteral("ac3"), QStringLiteral("/videos/movie.mkv"))};
    conversion->addedAudioTrackList = {makeTrack(QStringLiteral("Audio"), QStringLiteral("aac"), QStringLiteral("/videos/movie.mkv"))};
    queue.addToQueue(conversion);
    conversion->jobType = QStringLiteral("AVI Joining");
    queue.addToQueue(conversion);
    ASSERT_EQ(queue.qJobList().size(), 5);
    EXPECT_EQ(queue.qJobList().at(3)->jobSelection->trackList.size(), 2);
    EXPECT_EQ(queue.qJobList().at(3)->jobFileName, QStringLiteral("movie.mkv"));
    EXPECT_EQ(queue.qJobList().at(4)->jobSelection->trackList.size(), 1);
    EXPECT_EQ(conversion->trackList.size(), 1); // the live record is left alone
}

TEST_F(QueueTest, MatroskaRowsMakeOneJobPerSplitFileAndHandEachTheEditWordItsStepsKnow)
{
    for (const char *name : {"MCConvertToMkvJob", "MCEditMkvJob"})
        MCJobFactory::instance().registerJobType(QString::fromUtf8(name), makeSleepJob);
    MCSelectionPtr split = selectionFor(QStringLiteral("/videos/first.mkv"), QStringLiteral("MKV Splitting"));
    for (const char *name : {"/videos/one.mkv", "/videos/two.mkv"})
        split->editFilesURLsList << QUrl::fromLocalFile(QString::fromUtf8(name));
    queue.addToQueue(split);
    ASSERT_EQ(queue.qJobList().size(), 2);
    EXPECT_EQ(queue.qJobList().at(1)->jobType, QStringLiteral("MKV Splitting"));
    EXPECT_EQ(queue.qJobList().at(1)->jobSelection->jobType, QStringLiteral("AVI Splitting"));
    EXPECT_EQ(queue.qJobList().at(1)->jobSelection->videoTrackFileURL.toLocalFile(), QStringLiteral("/videos/two.mkv"));
    EXPECT_EQ(split->jobType, QStringLiteral("MKV Splitting"));

    // Steps pair with tracks by position: a stereo copy joins, a dropped subtitle leaves.
    MCSelectionPtr conversion = selectionFor(QStringLiteral("/videos/movie.mkv"), QStringLiteral("MKV Conversion"));
    const QString source = conversion->videoTrackFilePath;
    MCVideoTrackPtr muxed = makeTrack(QStringLiteral("Subtitle"), QStringLiteral("srt"), source);
    muxed->userCodec = QStringLiteral("mux");
    MCVideoTrackPtr dropped = makeTrack(QStringLiteral("Subtitle"), QStringLiteral("ass"), source);
    dropped->userCodec = QStringLiteral("drop");
    conversion->trackList = {makeTrack(QStringLiteral("Audio"), QStringLiteral("ac3"), source), dropped, muxed};
    conversion->addedAudioTrackList = {makeTrack(QStringLiteral("Audio"), QStringLiteral("aac"), source)};
    queue.addToQueue(conversion);
    ASSERT_EQ(queue.qJobList().size(), 3);
    const MCSelection &queued = *queue.qJobList().at(2)->jobSelection;
    EXPECT_EQ(queued.jobType, QStringLiteral("AVI Conversion"));
    ASSERT_EQ(queued.trackList.size(), 3);
    EXPECT_EQ(queued.trackList.at(1)->trackCodec, QStringLiteral("srt"));
    EXPECT_EQ(queued.trackList.at(2)->trackCodec, QStringLiteral("aac"));
    EXPECT_EQ(conversion->trackList.size(), 3); // the live record is left alone

    conversion->jobType = QStringLiteral("MKV Remuxing"); // not a row
    queue.addToQueue(conversion);
    EXPECT_EQ(queue.qJobList().size(), 3);
}

TEST_F(QueueTest, JobsRunOneAtATimeInListOrder)
{
    QStringList events;
    add(QStringLiteral("first.avi"));
    add(QStringLiteral("second.avi"));
    for (MCJob *job : queue.qJobList())
        QObject::connect(job, &MCJob::jobStatusChanged, job, [&events, job] { events << job->jobFileName + QLatin1Char(' ') + job->jobStatus(); });
    ASSERT_TRUE(testsupport::waitUntil([&] { return events.size() == 4; }, 15000));
    EXPECT_EQ(events, (QStringList{QStringLiteral("first.avi Running"), QStringLiteral("first.avi Completed"),
                                   QStringLiteral("second.avi Running"), QStringLiteral("second.avi Completed")}));
    EXPECT_FALSE(QFile::exists(prefs.saveFolder + QStringLiteral("/first.avi.sleep.log")));

    int closed = 0;
    QObject::connect(&queue, &MCQueueController::drawerCloseRequested, [&closed] { ++closed; });
    queue.clearQueueButton();
    EXPECT_EQ(queue.qJobArrayController()->rowCount(), 0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !queue.queueTimerIsActive(); }, 3000));
    EXPECT_EQ(closed, 1);
}

TEST_F(QueueTest, PauseResumeAndDeletingRows)
{
    prefs.preferences->keepLogsFlag = true;
    const auto alerts = testsupport::recordAlerts();
    sleeps = {QStringLiteral("0.2"), QStringLiteral("30"), QStringLiteral("30"), QStringLiteral("30")};
    for (const char *name : {"done.avi", "running.avi", "next.avi", "last.avi"})
        add(QString::fromUtf8(name));
    ASSERT_TRUE(testsupport::waitUntil([&] { return statusOf(1) == QStringLiteral("Running"); }, 10000));
    MCJob *running = queue.currentJob();
    const QString pid = pidOf(running);
    EXPECT_EQ(queue.currentJobRowIndex(), 1);

    queue.pauseQueueButton();
    EXPECT_EQ(queue.pauseButtonTitle(), QStringLiteral("Resume"));
    EXPECT_TRUE(reachesState(pid, QStringLiteral("T")));
    queue.pauseQueueButton();
    EXPECT_EQ(queue.pauseButtonTitle(), QStringLiteral("Pause"));
    EXPECT_TRUE(reachesState(pid, QStringLiteral("S")));

    queue.deleteJobRow(0, 1); // not the delete column
    EXPECT_EQ(queue.qJobList().size(), 4);
    queue.deleteJobRow(0, 0); // above the running job
    EXPECT_EQ(queue.currentJobRowIndex(), 0);
    queue.deleteJobRow(2, 0); // below it
    EXPECT_EQ(queue.qJobList().size(), 2);
    EXPECT_TRUE(reachesState(pid, QStringLiteral("S")));

    alerts->answer = MCAlertSecondButtonReturn;
    queue.deleteJobRow(0, 0);
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.at(0).message, QStringLiteral("Stop the currently running job?"));
    EXPECT_EQ(alerts->alerts.at(0).buttons, (QStringList{QStringLiteral("OK"), QStringLiteral("Cancel")}));
    EXPECT_TRUE(alerts->alerts.at(0).attachedToDrawer);
    EXPECT_TRUE(reachesState(pid, QStringLiteral("S")));

    alerts->answer = MCAlertFirstButtonReturn;
    queue.deleteJobRow(0, 0);
    EXPECT_EQ(processState(pid), QString());
    EXPECT_FALSE(QFile::exists(prefs.saveFolder + QStringLiteral("/running.avi.sleep.log")));
    EXPECT_FALSE(queue.qJobIsRunning());
    EXPECT_TRUE(queue.jobProgressList().isEmpty());
    ASSERT_EQ(queue.qJobList().size(), 1);
    ASSERT_TRUE(testsupport::waitUntil([&] { return statusOf(0) == QStringLiteral("Running"); }, 5000));
    EXPECT_EQ(queue.currentJob()->jobFileName, QStringLiteral("next.avi"));
}

TEST_F(QueueTest, OwnOutputsAreKnownToTheWatchMode)
{
    FakeWatchMode watch;
    queue.setWatchModeController(&watch);
    auto &center = MCNotificationCenter::defaultCenter();
    center.post(MCNotificationName::conversionStarted, QUrl::fromLocalFile(QStringLiteral("/watch/movie.mkv.AVI")));
    center.post(MCNotificationName::conversionStarted, QUrl::fromLocalFile(QStringLiteral("/watch/movie.mkv.log")));
    watch.watching = false;
    center.post(MCNotificationName::conversionStarted, QUrl::fromLocalFile(QStringLiteral("/watch/other.avi")));
    EXPECT_EQ(watch.known, QStringList{QStringLiteral("/watch/movie.mkv.AVI")});
}
