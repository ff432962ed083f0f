#include "MCWatchModeController.h"

#include "AppTestSettings.h"

#include "MCJob.h"
#include "MCQueueController.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

class WatchLoopTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QObject::connect(&watch, &MCWatchModeController::moviesTakenUp, &watch, [this](const QList<QUrl> &files) { takenUp << files; });
    }

    QString path(const QString &name) const { return root.filePath(name); }
    QList<QUrl> url(const QString &name) const { return {QUrl::fromLocalFile(path(name))}; }

    // Appends bytes, as a copy in progress would.
    void grow(const QString &name, int bytes) const
    {
        QDir().mkpath(QFileInfo(path(name)).absolutePath());
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(QByteArray(bytes, 'x'));
    }

    void start()
    {
        watch.watchFolderURL = QUrl::fromLocalFile(root.path());
        watch.startWatchMode(false);
    }

    // One scan; answers what it took up.
    QList<QUrl> scan()
    {
        takenUp.clear();
        watch.watchLoop();
        return takenUp;
    }

    QTemporaryDir root;
    MCWatchModeController watch;
    QList<QUrl> takenUp;
};

} // namespace

TEST_F(WatchLoopTest, TakesUpNewMoviesOnceTheirSizeHoldsAndNothingElse)
{
    grow(QStringLiteral("already.avi"), 10);
    start();
    EXPECT_TRUE(watch.isScanning());
    for (const char *name : {"sub/growing.mkv", "MOVIE.MKV", ".hidden.avi", ".hiddenfolder/inside.avi", "notes.txt"})
        grow(QString::fromLatin1(name), 50);
    grow(QStringLiteral("empty.avi"), 0);
    QDir().mkpath(path(QStringLiteral("folder.mkv")));
    QFile::link(root.path(), path(QStringLiteral("sub/loop")));

    EXPECT_TRUE(scan().isEmpty()); // first seen: sizes noted
    grow(QStringLiteral("sub/growing.mkv"), 100);
    EXPECT_EQ(scan(), url(QStringLiteral("MOVIE.MKV")));
    grow(QStringLiteral("sub/growing.mkv"), 100);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(scan(), url(QStringLiteral("sub/growing.mkv")));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(watch.monitorWatchFolderMovieList.size(), 1) << "only the empty file still waits";
}

TEST_F(WatchLoopTest, FilesThatLeaveAreForgottenAndAFolderThatGoesAwayKeepsWhatItKnew)
{
    grow(QStringLiteral("already.avi"), 10);
    start();
    grow(QStringLiteral("done.avi"), 10);
    scan();
    ASSERT_EQ(scan().size(), 1);
    // Taken out and put back: a new file again.
    QFile::remove(path(QStringLiteral("done.avi")));
    EXPECT_TRUE(scan().isEmpty());
    grow(QStringLiteral("done.avi"), 10);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(scan().size(), 1);

    // Deleted while growing, then a new copy caught at the old size: it starts over.
    grow(QStringLiteral("copy.mkv"), 300);
    scan();
    QFile::remove(path(QStringLiteral("copy.mkv")));
    scan();
    grow(QStringLiteral("copy.mkv"), 300);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(scan().size(), 1);

    const QString moved = root.path() + QStringLiteral(".away");
    ASSERT_TRUE(QDir().rename(root.path(), moved));
    EXPECT_TRUE(scan().isEmpty());
    ASSERT_TRUE(QDir().rename(moved, root.path()));
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_TRUE(scan().isEmpty());
}

TEST_F(WatchLoopTest, KestranesOwnResultsAreNeverTakenUpButTheUsersLookalikesAre)
{
    start();
    watch.appendToBaseWatchFolderMovieList(path(QStringLiteral("clip.avi.avi"))); // announced before it stands there
    scan();
    for (int i = 0; i < 3; ++i) {
        grow(QStringLiteral("clip.avi.avi"), 100);
        grow(QStringLiteral("clip-2.avi"), i == 0 ? 10 : 0);
        EXPECT_EQ(scan(), i == 1 ? url(QStringLiteral("clip-2.avi")) : QList<QUrl>());
    }
    EXPECT_TRUE(scan().isEmpty()); // its size holds now, and it is still ours
    // Once gone, the name is the user's again.
    QFile::remove(path(QStringLiteral("clip.avi.avi")));
    scan();
    grow(QStringLiteral("clip.avi.avi"), 10);
    scan();
    EXPECT_EQ(scan(), url(QStringLiteral("clip.avi.avi")));
}

TEST_F(WatchLoopTest, NoUsableFolderMeansNoScan)
{
    grow(QStringLiteral("file.avi"), 10);
    for (const QString &name : {QStringLiteral("missing"), QStringLiteral("file.avi")}) {
        watch.watchFolderURL = QUrl::fromLocalFile(path(name));
        watch.startWatchMode(false);
        EXPECT_EQ(watch.watchFolderPath(), MCWatchModeController::invalidFolderMessage);
        EXPECT_FALSE(watch.isScanning());
    }
    watch.watchFolderURL = QUrl();
    watch.startWatchMode(false);
    EXPECT_FALSE(watch.isScanning());
}

TEST(WatchWindowPlacement, CentredOnTheOtherWindowWithTopsLevel)
{
    EXPECT_EQ(MCWatchModeController::frameLevelWithTopOf(QRect(100, 50, 1000, 700), QSize(501, 120)), QRect(349, 50, 501, 120));
}

// A clip dropped in as a whole is converted with the presets into each
// target, and its result is never taken up as a new movie.
TEST(WatchModeEndToEnd, ADroppedFileIsConvertedIntoThePresetsTargetAndItsResultIgnored)
{
    // The copied AC-3 track makes the MP4 an M4V.
    const std::pair<const char *, const char *> targets[] = {{"", "clip.avi.avi"}, {"MKV", "clip.avi.muxed.mkv"}, {"MP4", "clip.avi.m4v"}};
    for (const auto &[target, resultName] : targets) {
        SCOPED_TRACE(resultName);
        WatchingApp w(QString::fromLatin1(target));
        MCWatchModeController *watch = w.app.watchModeController;
        watch->startWatchMode(true);
        ASSERT_TRUE(watch->appIsInWatchMode());
        QTemporaryDir elsewhere;
        const QString made = elsewhere.filePath(QStringLiteral("clip.avi"));
        ASSERT_TRUE(QFile::copy(appClip(QStringLiteral("clip.avi")), made));
        ASSERT_TRUE(QFile::rename(made, w.path(QStringLiteral("clip.avi"))));
        watch->watchLoop();
        watch->watchLoop();

        MCQueueController *queue = w.app.queueController;
        ASSERT_TRUE(testsupport::waitUntil([&] { return !queue->qJobList().isEmpty(); }, 20000));
        ASSERT_TRUE(testsupport::waitUntil(
            [&] {
                watch->watchLoop(); // the result appears and grows meanwhile
                return queue->qJobList().first()->jobStatus() != QStringLiteral("Queued") && !queue->qJobIsRunning();
            },
            120000));
        EXPECT_EQ(queue->qJobList().first()->jobStatus(), QStringLiteral("Completed"));
        const QString result = w.path(QString::fromLatin1(resultName));
        EXPECT_EQ(testsupport::mediaInfo(result, QStringLiteral("Video"), QStringLiteral("Format")), QStringLiteral("MPEG-4 Visual"));
        EXPECT_EQ(testsupport::mediaInfo(result, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("AC-3"));
        for (int i = 0; i < 3; ++i)
            watch->watchLoop();
        // A file taken up is started two seconds later.
        EXPECT_FALSE(testsupport::waitUntil([&] { return queue->qJobList().size() > 1; }, 3000))
            << "the result was taken up: " << queue->qJobList().last()->jobFileName.toStdString();
        EXPECT_TRUE(w.alerts->alerts.isEmpty()) << w.alerts->alerts.first().message.toStdString();
    }
}
