#include "MCAppDelegate.h"

#include "AppTestSettings.h"

#include "MCIntakeProbe.h"
#include "MCJob.h"
#include "MCPreferences.h"
#include "MCPresetsController.h"
#include "MCQueueController.h"
#include "MCSelectionController.h"
#include "MCVideoFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <QEventLoop>

using namespace Qt::StringLiterals;

namespace {

QString writeFile(const QString &name, const QByteArray &bytes)
{
    QFile file(appMedia(name));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return file.fileName();
}

QString avi(const QString &name = u"clip.avi"_s)
{
    return appClip(name);
}

QUrl url(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

class AppDelegateTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        alerts = testsupport::recordAlerts();
        const QString settings = settingsWithCopyPreset(settingsDir.path());
        app = std::make_unique<MCAppDelegate>(settings);
        app->applicationDidFinishLaunching();
        app->queueSelection = [this](const MCSelectionPtr &selection) { queued << selection->copy(); };
    }

    void open(const QString &tab, const QString &mode, const QStringList &paths)
    {
        app->selectionController->setCurrentTab(tab);
        app->setOpeningFileMode(mode);
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls << url(path);
        app->openedFileHubForFiles(urls);
    }

    QStringList alertTexts() const
    {
        QStringList texts;
        for (const MCAlert &alert : alerts->alerts)
            texts << alert.message + u" / "_s + alert.informativeText;
        return texts;
    }

    QTemporaryDir settingsDir;
    std::shared_ptr<RecordingAlertPresenter> alerts;
    std::unique_ptr<MCAppDelegate> app;
    QList<MCSelectionPtr> queued;
};

} // namespace

TEST_F(AppDelegateTest, ConversionTabIntakeAlertsAndKeepsTheLoadedFile)
{
    const QString notes = writeFile(u"notes.txt"_s, "just text\n");
    open(u"AVI"_s, u"open"_s, {notes});
    open(u"AVI"_s, u"open"_s, {avi()});
    EXPECT_EQ(app->fileTextField(), avi());
    open(u"AVI"_s, u"drag"_s, {notes});
    open(u"AVI"_s, u"add"_s, {appClip(u"other.mkv"_s, u"-c:v libx264 -c:a aac"_s)});
    open(u"AVI"_s, u"drag"_s, {writeFile(u"broken.sup"_s, "garbage")});
    EXPECT_EQ(alertTexts(), (QStringList{
                                u"Error Opening: notes.txt / Kestrane could not identify this file as a video!!!!!!!!!."_s,
                                u"Error Opening: notes.txt / Kestrane can't open this file."_s,
                                u"Error Opening: other.mkv / Kestrane can't add the track from this file."_s,
                                u"Error Opening: broken.sup / Kestrane can't add this track to the current video."_s,
                            }));
    EXPECT_DOUBLE_EQ(alerts->alerts.first().timeoutSeconds, 5.0);
    EXPECT_EQ(app->currentVideoFile->theFilePath, avi());
    EXPECT_EQ(app->currentVideoFile->trackList.size(), 2);

    // A dropped subtitle becomes a track of the loaded file; watched, it is ignored.
    const QString srt = writeFile(u"good.srt"_s, "1\n00:00:00,000 --> 00:00:01,000\nHi\n\n");
    open(u"AVI"_s, u"watch"_s, {srt});
    EXPECT_EQ(app->currentVideoFile->trackList.size(), 2);
    open(u"AVI"_s, u"drag"_s, {srt});
    ASSERT_EQ(app->currentVideoFile->trackList.size(), 3);
    EXPECT_EQ(app->currentVideoFile->trackList.last()->trackType, u"External Subtitle"_s);
    EXPECT_TRUE(queued.isEmpty());
}

TEST_F(AppDelegateTest, AFileThatDoesNotLoadNeverStartsTheEarlierOneAgain)
{
    // A video whose picture Kestrane cannot identify.
    const QString unknown = appClip(u"unknown.mkv"_s, u"-c:v ffv1 -c:a ac3"_s);
    open(u"AVI"_s, u"open"_s, {avi()});
    app->setOpeningFileMode(u"watch"_s);
    EXPECT_EQ(app->testNewFileURL(url(unknown), false), QString());
    EXPECT_EQ(app->currentVideoFile->theFilePath, avi());
    // The watch folder's hub starts nothing for it.
    open(u"AVI"_s, u"watch"_s, {unknown});
    EXPECT_FALSE(testsupport::waitUntil([&] { return !queued.isEmpty(); }, 2500));
    // A batch whose first file fails queues only the files that load.
    const QString second = avi(u"second.avi"_s);
    app->presetsController->setSelectionMethodIndex(1);
    app->presetsController->setSettingMethodIndex(2);
    open(u"AVI"_s, u"drag"_s, {unknown, second});
    app->startJob();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !queued.isEmpty(); }, 3000)) << alertTexts().join(u'\n').toStdString();
    testsupport::waitUntil([] { return false; }, 300);
    ASSERT_EQ(queued.size(), 1);
    EXPECT_EQ(queued.first()->videoTrackFilePath, second);
}

TEST_F(AppDelegateTest, EditTabsTakeOnlyAviMkvAndMp4Files)
{
    const QString notes = writeFile(u"list.txt"_s, "text\n");
    open(u"Edit Files"_s, u"drag"_s, {avi(), notes, avi(u"second.avi"_s)});
    EXPECT_EQ(app->editFilesPathsArray(), (QStringList{avi(), avi(u"second.avi"_s)}));
    EXPECT_EQ(app->currentSelection->editFilesURLsList.size(), 2);
    open(u"Edit Files"_s, u"add"_s, {notes});
    EXPECT_EQ(app->editFilesPathsArray().size(), 2);

    const QString mov = appClip(u"tracks.mov"_s, u"-c:v libx264 -c:a aac"_s);
    open(u"Edit Tracks"_s, u"open"_s, {mov});
    EXPECT_EQ(alertTexts(), (QStringList{
                                u"Error Opening: list.txt / Kestrane can only edit AVI, MKV and MP4 files."_s,
                                u"Error Opening: list.txt / Kestrane can't add the track from this file."_s,
                                u"Error Opening: tracks.mov / Kestrane can only edit the tracks of AVI, MKV and MP4 files."_s,
                            }));
    EXPECT_TRUE(app->currentVideoFile->trackList.isEmpty());
    for (const char *name : {"tracks.mkv", "tracks.m4v"}) {
        const QString file = appClip(QString::fromLatin1(name), u"-c:v libx264 -c:a aac"_s);
        open(u"Edit Tracks"_s, u"open"_s, {file});
        EXPECT_EQ(app->currentVideoFile->trackList.size(), 2) << name;
    }
}

TEST_F(AppDelegateTest, HeaderRemovalOfferQueuesARemuxOnOk)
{
    const QString plain = appClip(u"hr-source.avi"_s, u"-c:v mpeg4 -c:a ac3"_s);
    const QString mkv = appMedia(u"header-removal.mkv"_s);
    ASSERT_EQ(testsupport::run(u"mkvmerge -q -o '%1' --compression 0:mpeg4_p2 '%2'"_s.arg(mkv, plain)), 0);
    alerts->answer = MCAlertSecondButtonReturn;
    open(u"AVI"_s, u"open"_s, {mkv});
    ASSERT_EQ(alerts->alerts.size(), 1);
    const MCAlert offer = alerts->alerts.first();
    EXPECT_EQ(offer.message, QStringLiteral("This video appears to have header removal compression.  This may cause issues "
                                            "when you convert or play the video."));
    EXPECT_EQ(offer.informativeText, u"Would you like Kestrane to create a copy of this video with this feature turned off."_s);
    EXPECT_EQ(offer.buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
    EXPECT_TRUE(queued.isEmpty());
    alerts->answer = MCAlertFirstButtonReturn;
    open(u"AVI"_s, u"open"_s, {mkv});
    ASSERT_EQ(queued.size(), 1);
    EXPECT_EQ(queued.first()->jobType, u"MKV Remux"_s);
}

TEST_F(AppDelegateTest, StartChecksTheSaveFolderAndBatchesNeedPresets)
{
    const QString second = avi(u"batch-2.avi"_s);
    const QString notes = writeFile(u"batch.txt"_s, "text\n");
    open(u"AVI"_s, u"drag"_s, {avi(), notes, second});
    alerts->alerts.clear();
    app->startJob();
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.first().message,
              QStringLiteral("You must use a preset other than \"Manual\" for both the settings pop up and the track selections pop up "
                             "to convert the batch of files you dragged to the application."));
    EXPECT_TRUE(queued.isEmpty());

    // With presets: the first file at once, the rest 0.4 s later; the text file silently skipped.
    app->presetsController->setSelectionMethodIndex(1);
    app->presetsController->setSettingMethodIndex(2);
    QList<QUrl> skipped;
    QObject::connect(app.get(), &MCAppDelegate::batchFileSkipped, [&](const QUrl &file, const QString &) { skipped << file; });
    alerts->alerts.clear();
    app->startJob();
    EXPECT_EQ(queued.size(), 1);
    EXPECT_TRUE(testsupport::waitUntil([&] { return !app->takingInBatch(); }, 5000));
    EXPECT_EQ(queued.size(), 2);
    EXPECT_EQ(queued.last()->videoTrackFilePath, second);
    EXPECT_EQ(skipped, QList<QUrl>{url(notes)});
    EXPECT_TRUE(alerts->alerts.isEmpty());

    // A missing save folder stops the start before anything is queued, and
    // is called missing: a permission problem would send the user astray.
    queued.clear();
    app->appPreferences->saveDirectoryURL = url(settingsDir.path() + u"/missing"_s);
    app->startJob();
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.first().message, u"The save folder for this job does not exist."_s);
    EXPECT_EQ(alerts->alerts.first().informativeText,
              u"Create the folder or change the save location: %1/missing"_s.arg(settingsDir.path()));
    EXPECT_DOUBLE_EQ(alerts->alerts.first().timeoutSeconds, 10.0);
    testsupport::waitUntil([] { return false; }, 600);
    EXPECT_TRUE(queued.isEmpty());
}

TEST_F(AppDelegateTest, QuitWithARunningJobPausesAndCancelKeepsItPaused)
{
    app->queueSelection = [this](const MCSelectionPtr &selection) { app->queueController->addToQueue(selection); };
    const QString longer = appClip(u"quit.mkv"_s, u"-c:v libx264 -preset ultrafast -c:a aac"_s, 60,
                                u"640x480"_s);
    app->appPreferences->saveDirectoryURL = url(settingsDir.path());
    app->presetsController->setSelectionMethodIndex(1);
    open(u"AVI"_s, u"open"_s, {longer});
    app->selectionController->setVideoMatrixIndex(2);
    app->selectionController->setEnteredUserVideoBitRate(u"800"_s);
    app->selectionController->updateTabs();
    app->startJob();
    MCQueueController *queue = app->queueController;
    ASSERT_TRUE(testsupport::waitUntil([&] { return queue->currentJob() && !queue->currentJob()->stepPIDList().isEmpty(); }, 20000));
    const QString pid = queue->currentJob()->stepPIDList().first();

    alerts->answer = MCAlertSecondButtonReturn;
    std::optional<bool> quit;
    app->applicationShouldTerminate([&](bool answer) { quit = answer; });
    ASSERT_TRUE(quit.has_value());
    EXPECT_FALSE(*quit);
    EXPECT_EQ(alerts->alerts.last().message, u"Videos are still being processed.  Quit anyways?"_s);
    QString state;
    testsupport::run(u"ps -o stat= -p %1"_s.arg(pid), &state);
    EXPECT_TRUE(state.trimmed().startsWith(QLatin1Char('T'))) << state.toStdString();
    EXPECT_TRUE(queue->qJobIsRunning());

    alerts->answer = MCAlertFirstButtonReturn;
    app->applicationShouldTerminate([&](bool answer) { quit = answer; });
    EXPECT_TRUE(*quit);
    EXPECT_TRUE(queue->qJobList().isEmpty());
    EXPECT_FALSE(MCHelpers::processIsRunning(pid));
}

namespace {

// Points the tools at a resource folder whose mediainfo notes each run in
// a file (and takes its time first), for as long as it lives.
class CountingMediainfo
{
public:
    explicit CountingMediainfo(int delaySeconds = 0)
        : m_real(qgetenv("KESTRANE_RESOURCES"))
    {
        testsupport::resourcesWithout(m_resources.path(), u"mediainfo"_s);
        QFile counting(m_resources.filePath(u"mediainfo"_s));
        counting.open(QIODevice::WriteOnly);
        counting.write(u"#!/bin/sh\nsleep %1\necho run >> '%2'\nexec '%3' \"$@\"\n"_s
                           .arg(delaySeconds)
                           .arg(m_resources.filePath(u"runs"_s),
                                QDir(QString::fromUtf8(m_real)).filePath(u"mediainfo"_s))
                           .toUtf8());
        counting.close();
        counting.setPermissions(counting.permissions() | QFileDevice::ExeOwner);
        qputenv("KESTRANE_RESOURCES", m_resources.path().toUtf8());
    }
    ~CountingMediainfo() { qputenv("KESTRANE_RESOURCES", m_real); }

    int runs() const
    {
        QFile runs(m_resources.filePath(u"runs"_s));
        return runs.open(QIODevice::ReadOnly) ? static_cast<int>(runs.readAll().count("run")) : 0;
    }

private:
    QTemporaryDir m_resources;
    QByteArray m_real;
};

} // namespace

TEST(AppDelegateIntake, ADroppedFileIsInspectedOnce)
{
    const CountingMediainfo mediainfo;
    QTemporaryDir settingsDir;
    const auto alerts = testsupport::recordAlerts();
    MCAppDelegate app(settingsWithCopyPreset(settingsDir.path()));
    app.applicationDidFinishLaunching();
    app.queueSelection = [](const MCSelectionPtr &) {};
    app.openFiles(u"AVI"_s, {url(avi())});
    app.openFiles(u"AVI"_s, {url(avi(u"second.avi"_s))});
    EXPECT_EQ(app.currentVideoFile->theFilePath, avi(u"second.avi"_s));
    EXPECT_EQ(mediainfo.runs(), 2);
}

TEST(AppDelegateIntake, TheWindowsIntakeInspectsOffItsThreadOnceAndInTurn)
{
    const QString first = avi();
    const QString second = avi(u"second.avi"_s);
    const CountingMediainfo mediainfo(1);
    QTemporaryDir settingsDir;
    const auto alerts = testsupport::recordAlerts();
    MCAppDelegate app(settingsWithCopyPreset(settingsDir.path()));
    app.applicationDidFinishLaunching();
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

    EXPECT_EQ(loaded, (QStringList{first, second}));
    EXPECT_EQ(busy, (QList<bool>{true, false}));
    // Two one-second inspections: the window's thread ticked all along.
    EXPECT_GE(ticks, 20);
    EXPECT_EQ(mediainfo.runs(), 2);
}
