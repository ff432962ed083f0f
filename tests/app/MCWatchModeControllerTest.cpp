#include "MCWatchModeController.h"

#include "AppTestSettings.h"

#include "MCAppDelegate.h"
#include "MCJob.h"
#include "MCPreferences.h"
#include "MCPresetsController.h"
#include "MCQueueController.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

class WatchFolder
{
public:
    QString path(const QString &name) const { return root.path() + QLatin1Char('/') + name; }
    QUrl url(const QString &name) const { return QUrl::fromLocalFile(path(name)); }

    // Appends bytes, as a copy in progress would.
    void grow(const QString &name, int bytes) const
    {
        QDir().mkpath(QFileInfo(path(name)).absolutePath());
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(QByteArray(bytes, 'x'));
    }

    QTemporaryDir root;
};

class WatchLoopTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QObject::connect(&watch, &MCWatchModeController::moviesTakenUp, &watch,
                         [this](const QList<QUrl> &files) { takenUp << files; });
    }

    void start()
    {
        watch.watchFolderURL = QUrl::fromLocalFile(folder.root.path());
        watch.startWatchMode(false);
    }

    // One scan; answers what it took up.
    QList<QUrl> scan()
    {
        takenUp.clear();
        watch.watchLoop();
        return takenUp;
    }

    WatchFolder folder;
    MCWatchModeController watch;
    QList<QUrl> takenUp;
};

} // namespace

TEST_F(WatchLoopTest, TakesUpNewMoviesOnceTheirSizeHoldsAndNothingElse)
{
    folder.grow(QStringLiteral("already.avi"), 10);
    start();
    EXPECT_TRUE(watch.isScanning());
    folder.grow(QStringLiteral("sub/growing.mkv"), 100);
    folder.grow(QStringLiteral("MOVIE.MKV"), 50);
    folder.grow(QStringLiteral("empty.avi"), 0);
    folder.grow(QStringLiteral(".hidden.avi"), 10);
    folder.grow(QStringLiteral(".hiddenfolder/inside.avi"), 10);
    folder.grow(QStringLiteral("notes.txt"), 10);
    QDir().mkpath(folder.path(QStringLiteral("folder.mkv")));
    QFile::link(folder.root.path(), folder.path(QStringLiteral("sub/loop")));

    EXPECT_TRUE(scan().isEmpty()); // first seen: sizes noted
    folder.grow(QStringLiteral("sub/growing.mkv"), 100);
    EXPECT_EQ(scan(), QList<QUrl>{folder.url(QStringLiteral("MOVIE.MKV"))});
    folder.grow(QStringLiteral("sub/growing.mkv"), 100);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(scan(), QList<QUrl>{folder.url(QStringLiteral("sub/growing.mkv"))});
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(scan().isEmpty());
    EXPECT_TRUE(watch.monitorWatchFolderMovieList.size() == 1) << "only the empty file still waits";
}

TEST_F(WatchLoopTest, FilesThatLeaveAreForgotten)
{
    folder.grow(QStringLiteral("already.avi"), 10);
    start();
    folder.grow(QStringLiteral("done.avi"), 10);
    scan();
    ASSERT_EQ(scan().size(), 1);

    // Taken out and put back: a new file again.
    QFile::remove(folder.path(QStringLiteral("done.avi")));
    EXPECT_TRUE(scan().isEmpty());
    folder.grow(QStringLiteral("done.avi"), 10);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(scan().size(), 1);

    // Deleted while growing, then a new copy that happens to be caught at
    // the old size: it starts over instead of passing as complete.
    folder.grow(QStringLiteral("copy.mkv"), 300);
    scan();
    QFile::remove(folder.path(QStringLiteral("copy.mkv")));
    scan();
    folder.grow(QStringLiteral("copy.mkv"), 300);
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_EQ(scan().size(), 1);
}

TEST_F(WatchLoopTest, KestranesOwnResultsAreNeverTakenUpButTheUsersLookalikesAre)
{
    start();
    watch.appendToBaseWatchFolderMovieList(folder.path(QStringLiteral("clip.avi.avi")));
    watch.appendToBaseWatchFolderMovieList(folder.path(QStringLiteral("clip.avi.split-0000.avi")));
    scan(); // announced before the file stands there
    for (int i = 0; i < 3; ++i) {
        folder.grow(QStringLiteral("clip.avi.avi"), 100);
        folder.grow(QStringLiteral("clip.avi.split-0000.avi"), 10);
        EXPECT_TRUE(scan().isEmpty());
    }
    EXPECT_TRUE(scan().isEmpty());

    // The user's "clip-2.avi" beside our "clip.avi.avi" is a new movie.
    folder.grow(QStringLiteral("clip-2.avi"), 10);
    scan();
    EXPECT_EQ(scan(), QList<QUrl>{folder.url(QStringLiteral("clip-2.avi"))});

    // Once gone, the name is the user's again.
    QFile::remove(folder.path(QStringLiteral("clip.avi.avi")));
    scan();
    folder.grow(QStringLiteral("clip.avi.avi"), 10);
    scan();
    EXPECT_EQ(scan(), QList<QUrl>{folder.url(QStringLiteral("clip.avi.avi"))});
}

TEST_F(WatchLoopTest, AFolderThatGoesAwayKeepsWhatItKnew)
{
    folder.grow(QStringLiteral("already.avi"), 10);
    start();
    const QString moved = folder.root.path() + QStringLiteral(".away");
    ASSERT_TRUE(QDir().rename(folder.root.path(), moved));
    EXPECT_TRUE(scan().isEmpty());
    ASSERT_TRUE(QDir().rename(moved, folder.root.path()));
    EXPECT_TRUE(scan().isEmpty());
    EXPECT_TRUE(scan().isEmpty());
}

TEST_F(WatchLoopTest, NoUsableFolderMeansNoScan)
{
    folder.grow(QStringLiteral("file.avi"), 10);
    for (const QString &name : {QStringLiteral("missing"), QStringLiteral("file.avi")}) {
        watch.watchFolderURL = folder.url(name);
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
    EXPECT_EQ(MCWatchModeController::frameLevelWithTopOf(QRect(100, 50, 1000, 700), QSize(501, 120)),
              QRect(349, 50, 501, 120));
}

namespace {

// Watches a folder with the "Copy" preset into target, drops a clip in and
// checks what comes out under resultName.
void convertsADroppedFileAndIgnoresItsResult(const QString &target, const QString &resultName)
{
    auto alerts = testsupport::recordAlerts();
    QTemporaryDir settingsDir;
    WatchFolder folder;
    const QString settings = settingsWithCopyPreset(settingsDir.path(), target);
    MCAppDelegate app(settings);
    app.applicationDidFinishLaunching();
    MCPresetsController *presets = app.presetsController;
    presets->setSelectionMethodIndex(presets->presetSelectionsNamesList.indexOf(QStringLiteral("First Track")));
    presets->setSettingMethodIndex(presets->presetSettingsNamesList.indexOf(QStringLiteral("Copy")));
    app.appPreferences->watchFolderURL = QUrl::fromLocalFile(folder.root.path());
    MCWatchModeController *watch = app.watchModeController;
    watch->startWatchMode(true);
    ASSERT_TRUE(watch->appIsInWatchMode());

    // Written elsewhere, then dropped in as a whole.
    QTemporaryDir source;
    const QString made = testsupport::ffmpeg(
        source.path(), QStringLiteral("clip.avi"),
        QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2:r=48000 -ac 2 -c:v mpeg4 -c:a ac3"));
    ASSERT_TRUE(QFile::rename(made, folder.path(QStringLiteral("clip.avi"))));
    watch->watchLoop();
    watch->watchLoop();

    MCQueueController *queue = app.queueController;
    ASSERT_TRUE(testsupport::waitUntil([&] { return !queue->qJobList().isEmpty(); }, 20000));
    ASSERT_TRUE(testsupport::waitUntil(
        [&] {
            watch->watchLoop(); // the result appears and grows meanwhile
            return queue->qJobList().first()->jobStatus() != QStringLiteral("Queued") && !queue->qJobIsRunning();
        },
        120000));
    EXPECT_EQ(queue->qJobList().first()->jobStatus(), QStringLiteral("Completed"));
    const QString result = folder.path(resultName);
    EXPECT_EQ(testsupport::mediaInfo(result, QStringLiteral("Video"), QStringLiteral("Format")),
              QStringLiteral("MPEG-4 Visual"));
    EXPECT_EQ(testsupport::mediaInfo(result, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("AC-3"));
    for (int i = 0; i < 3; ++i)
        watch->watchLoop();
    // A file taken up is started two seconds later.
    EXPECT_FALSE(testsupport::waitUntil([&] { return queue->qJobList().size() > 1; }, 3000))
        << "the result was taken up as a new movie: " << queue->qJobList().last()->jobFileName.toStdString();
    EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().message.toStdString();
}

} // namespace

TEST(WatchModeEndToEnd, ADroppedFileIsConvertedWithThePresetsAndItsResultIgnored)
{
    convertsADroppedFileAndIgnoresItsResult({}, QStringLiteral("clip.avi.avi"));
}

TEST(WatchModeEndToEnd, APresetIntoMkvConvertsWatchedFilesIntoMkv)
{
    convertsADroppedFileAndIgnoresItsResult(QStringLiteral("MKV"), QStringLiteral("clip.avi.muxed.mkv"));
}

// The copied AC-3 track makes the MP4 an M4V.
TEST(WatchModeEndToEnd, APresetIntoMp4ConvertsWatchedFilesIntoMp4)
{
    convertsADroppedFileAndIgnoresItsResult(QStringLiteral("MP4"), QStringLiteral("clip.avi.m4v"));
}
