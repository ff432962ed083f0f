#include "MCAppDelegate.h"

#include "AppTestSettings.h"

#include "MCIntakeProbe.h"
#include "MCJob.h"
#include "MCQueueController.h"
#include "MCSelectionController.h"
#include "MCVideoFile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QEventLoop>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

QUrl url(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

class AppDelegateTest : public ::testing::Test, protected LaunchedApp
{
protected:
    void SetUp() override
    {
        app.queueSelection = [this](const MCSelectionPtr &selection) { queued << selection->copy(); };
    }

    void open(const QString &tab, const QString &mode, const QStringList &paths) { openOn(app, tab, mode, paths); }

    QString writeFile(const QString &name, const QByteArray &bytes) const
    {
        QFile file(settingsDir.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
        return file.fileName();
    }

    QStringList alertTexts() const
    {
        QStringList texts;
        for (const MCAlert &alert : alerts->alerts)
            texts << alert.message + u" / "_s + alert.informativeText;
        return texts;
    }

    void usePresets()
    {
        app.presetsController->setSelectionMethodIndex(1);
        app.presetsController->setSettingMethodIndex(2);
    }

    QList<MCSelectionPtr> queued;
};

} // namespace

TEST_F(AppDelegateTest, IntakeAlertsForEachModeAndKeepsTheLoadedFile)
{
    const QString avi = appClip(u"clip.avi"_s), notes = writeFile(u"notes.txt"_s, "just text\n");
    open(u"AVI"_s, u"open"_s, {notes});
    open(u"AVI"_s, u"open"_s, {avi});
    open(u"AVI"_s, u"drag"_s, {notes});
    open(u"AVI"_s, u"add"_s, {appClip(u"other.mkv"_s, u"-c:v libx264 -c:a aac"_s)});
    open(u"AVI"_s, u"drag"_s, {writeFile(u"broken.sup"_s, "garbage")});
    EXPECT_EQ(app.fileTextField(), avi);
    EXPECT_EQ(app.currentVideoFile->trackList.size(), 2);
    open(u"Edit Files"_s, u"add"_s, {notes});
    open(u"Edit Tracks"_s, u"open"_s, {appClip(u"tracks.mov"_s, u"-c:v libx264 -c:a aac"_s)});
    EXPECT_EQ(alertTexts(), (QStringList{
                                u"Error Opening: notes.txt / Kestrane could not identify this file as a video!!!!!!!!!."_s,
                                u"Error Opening: notes.txt / Kestrane can't open this file."_s,
                                u"Error Opening: other.mkv / Kestrane can't add the track from this file."_s,
                                u"Error Opening: broken.sup / Kestrane can't add this track to the current video."_s,
                                u"Error Opening: notes.txt / Kestrane can't add the track from this file."_s,
                                u"Error Opening: tracks.mov / Kestrane can only edit the tracks of AVI, MKV and MP4 files."_s,
                            }));
    open(u"AVI"_s, u"open"_s, {avi});

    // A dropped subtitle becomes a track of the loaded file; watched, it is ignored.
    const QString srt = writeFile(u"good.srt"_s, "1\n00:00:00,000 --> 00:00:01,000\nHi\n\n");
    open(u"AVI"_s, u"watch"_s, {srt});
    EXPECT_EQ(app.currentVideoFile->trackList.size(), 2);
    open(u"AVI"_s, u"drag"_s, {srt});
    ASSERT_EQ(app.currentVideoFile->trackList.size(), 3);
    EXPECT_EQ(app.currentVideoFile->trackList.last()->trackType, u"External Subtitle"_s);
    EXPECT_TRUE(queued.isEmpty());
}

TEST_F(AppDelegateTest, AFileThatDoesNotLoadNeverStartsTheEarlierOneAgain)
{
    const QString avi = appClip(u"clip.avi"_s), unknown = appClip(u"unknown.mkv"_s, u"-c:v ffv1 -c:a ac3"_s);
    open(u"AVI"_s, u"open"_s, {avi});
    app.setOpeningFileMode(u"watch"_s);
    EXPECT_EQ(app.testNewFileURL(url(unknown), false), QString());
    EXPECT_EQ(app.currentVideoFile->theFilePath, avi);
    // The watch folder's hub starts nothing for it.
    open(u"AVI"_s, u"watch"_s, {unknown});
    EXPECT_FALSE(testsupport::waitUntil([&] { return !queued.isEmpty(); }, 2500));
    // A batch whose first file fails queues only the files that load.
    const QString second = appClip(u"second.avi"_s);
    usePresets();
    open(u"AVI"_s, u"drag"_s, {unknown, second});
    app.startJob();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !queued.isEmpty(); }, 3000)) << alertTexts().join(u'\n').toStdString();
    testsupport::waitUntil([] { return false; }, 300);
    ASSERT_EQ(queued.size(), 1);
    EXPECT_EQ(queued.first()->videoTrackFilePath, second);
}

TEST_F(AppDelegateTest, HeaderRemovalOfferQueuesARemuxOnOkOnly)
{
    const QString mkv = settingsDir.filePath(u"header-removal.mkv"_s);
    ASSERT_EQ(testsupport::run(u"mkvmerge -q -o '%1' --compression 0:mpeg4_p2 '%2'"_s.arg(mkv, appClip(u"clip.avi"_s))), 0);
    alerts->answer = MCAlertSecondButtonReturn;
    open(u"AVI"_s, u"open"_s, {mkv});
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_TRUE(alerts->alerts.first().message.startsWith(u"This video appears to have header removal compression."_s));
    EXPECT_TRUE(queued.isEmpty());
    alerts->answer = MCAlertFirstButtonReturn;
    open(u"AVI"_s, u"open"_s, {mkv});
    ASSERT_EQ(queued.size(), 1);
    EXPECT_EQ(queued.first()->jobType, u"MKV Remux"_s);
}

TEST_F(AppDelegateTest, BatchesNeedPresetsAndQueueOneFileAfterAnother)
{
    const QString second = appClip(u"batch-2.avi"_s), notes = writeFile(u"batch.txt"_s, "text\n");
    open(u"AVI"_s, u"drag"_s, {appClip(u"clip.avi"_s), notes, second});
    alerts->alerts.clear();
    app.startJob();
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_TRUE(alerts->alerts.first().message.startsWith(u"You must use a preset other than \"Manual\""_s));
    EXPECT_TRUE(queued.isEmpty());

    // With presets: the first file at once, the rest 0.4 s later; the text file silently skipped.
    usePresets();
    QList<QUrl> skipped;
    QObject::connect(&app, &MCAppDelegate::batchFileSkipped, [&](const QUrl &file, const QString &) { skipped << file; });
    alerts->alerts.clear();
    app.startJob();
    EXPECT_EQ(queued.size(), 1);
    EXPECT_TRUE(testsupport::waitUntil([&] { return queued.size() == 2 && !app.takingInBatch(); }, 5000));
    EXPECT_EQ(queued.size(), 2);
    EXPECT_EQ(queued.last()->videoTrackFilePath, second);
    EXPECT_EQ(skipped, QList<QUrl>{url(notes)});
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

TEST_F(AppDelegateTest, QuitWithARunningJobAsksAndOkEndsItsTools)
{
    app.queueSelection = [this](const MCSelectionPtr &selection) { app.queueController->addToQueue(selection); };
    app.appPreferences->saveDirectoryURL = url(settingsDir.path());
    app.presetsController->setSelectionMethodIndex(1);
    open(u"AVI"_s, u"open"_s, {appClip(u"quit.mkv"_s, u"-c:v libx264 -preset ultrafast -c:a aac"_s, 60, u"640x480"_s)});
    app.selectionController->setVideoMatrixIndex(2);
    app.selectionController->setEnteredUserVideoBitRate(u"800"_s);
    app.selectionController->updateTabs();
    app.startJob();
    MCQueueController *queue = app.queueController;
    ASSERT_TRUE(testsupport::waitUntil([&] { return queue->currentJob() && !queue->currentJob()->stepPIDList().isEmpty(); }, 20000));
    const QString pid = queue->currentJob()->stepPIDList().first();

    std::optional<bool> quit;
    alerts->answer = MCAlertSecondButtonReturn;
    app.applicationShouldTerminate([&](bool answer) { quit = answer; });
    ASSERT_TRUE(quit.has_value());
    EXPECT_FALSE(*quit);
    EXPECT_EQ(alerts->alerts.last().message, u"Videos are still being processed.  Quit anyways?"_s);
    EXPECT_TRUE(queue->qJobIsRunning());
    alerts->answer = MCAlertFirstButtonReturn;
    app.applicationShouldTerminate([&](bool answer) { quit = answer; });
    EXPECT_TRUE(*quit);
    EXPECT_TRUE(queue->qJobList().isEmpty());
    EXPECT_FALSE(MCHelpers::processIsRunning(pid));
}

// The window's intake inspects off its thread, once per file and in turn:
// a mediainfo that notes each run and takes a second over it.
TEST(AppDelegateIntake, TheWindowsIntakeInspectsOffItsThreadOnceAndInTurn)
{
    const QString first = appClip(u"clip.avi"_s), second = appClip(u"second.avi"_s);
    QTemporaryDir resources;
    const QByteArray real = qgetenv("KESTRANE_RESOURCES");
    testsupport::resourcesWithout(resources.path(), u"mediainfo"_s);
    QFile counting(resources.filePath(u"mediainfo"_s));
    ASSERT_TRUE(counting.open(QIODevice::WriteOnly));
    counting.write(u"#!/bin/sh\nsleep 1\necho run >> '%1/runs'\nexec '%2/mediainfo' \"$@\"\n"_s.arg(resources.path(), QString::fromUtf8(real)).toUtf8());
    counting.close();
    counting.setPermissions(counting.permissions() | QFileDevice::ExeOwner);
    qputenv("KESTRANE_RESOURCES", resources.path().toUtf8());

    LaunchedApp launched;
    MCAppDelegate &app = launched.app;
    app.queueSelection = [](const MCSelectionPtr &) {};
    app.selectionController->setCurrentTab(u"AVI"_s);
    QList<bool> busy;
    QObject::connect(app.intakeProbe, &MCIntakeProbe::busyChanged, [&busy](bool now) { busy << now; });
    int ticks = 0;
    QTimer ticking;
    QObject::connect(&ticking, &QTimer::timeout, [&ticks] { ++ticks; });
    ticking.start(50);
    QStringList loaded;
    QEventLoop loop;
    // The second drop comes while the first is still being looked at.
    app.takeInFilesAfterInspection({url(first)}, u"drag"_s, [&] { loaded << app.currentVideoFile->theFilePath; });
    app.takeInFilesAfterInspection({url(second)}, u"drag"_s, [&] {
        loaded << app.currentVideoFile->theFilePath;
        loop.quit();
    });
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    qputenv("KESTRANE_RESOURCES", real);

    EXPECT_EQ(loaded, (QStringList{first, second}));
    EXPECT_EQ(busy, (QList<bool>{true, false}));
    EXPECT_GE(ticks, 20); // two one-second inspections: the window's thread ticked all along
    QFile runs(resources.filePath(u"runs"_s));
    ASSERT_TRUE(runs.open(QIODevice::ReadOnly));
    EXPECT_EQ(runs.readAll().count("run"), 2);
}
