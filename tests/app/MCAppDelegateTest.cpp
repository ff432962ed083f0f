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

namespace {

QString mediaDir()
{
    static QTemporaryDir dir;
    return dir.path();
}

QString writeFile(const QString &name, const QByteArray &bytes)
{
    const QString path = mediaDir() + QLatin1Char('/') + name;
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return path;
}

QString clip(const QString &name, const QString &codecs, int seconds = 2, const QString &size = QStringLiteral("160x120"))
{
    const QString path = mediaDir() + QLatin1Char('/') + name;
    if (QFile::exists(path))
        return path;
    return testsupport::ffmpeg(mediaDir(), name,
                               QStringLiteral("-f lavfi -i testsrc2=s=%1:r=25:d=%2 -f lavfi -i sine=d=%2:r=48000 -ac 2 %3")
                                   .arg(size)
                                   .arg(seconds)
                                   .arg(codecs));
}

QString avi(const QString &name = QStringLiteral("clip.avi"))
{
    return clip(name, QStringLiteral("-c:v mpeg4 -c:a ac3"));
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
            texts << alert.message + QStringLiteral(" / ") + alert.informativeText;
        return texts;
    }

    QTemporaryDir settingsDir;
    std::shared_ptr<RecordingAlertPresenter> alerts;
    std::unique_ptr<MCAppDelegate> app;
    QList<MCSelectionPtr> queued;
};

} // namespace

TEST_F(AppDelegateTest, StartsWithTheDropTextOnTheConversionTab)
{
    EXPECT_EQ(app->fileTextField(), QStringLiteral("Drop Video File(s) in the Table Below"));
    EXPECT_EQ(app->selectionController->currentTab(), QStringLiteral("AVI"));
    EXPECT_EQ(MCPreferences::applicationPreferences(), app->appPreferences);
}

TEST_F(AppDelegateTest, ConversionTabIntakeAlertsAndKeepsTheLoadedFile)
{
    const QString notes = writeFile(QStringLiteral("notes.txt"), "just text\n");
    open(QStringLiteral("AVI"), QStringLiteral("open"), {notes});
    open(QStringLiteral("AVI"), QStringLiteral("open"), {avi()});
    EXPECT_EQ(app->fileTextField(), avi());
    open(QStringLiteral("AVI"), QStringLiteral("drag"), {notes});
    open(QStringLiteral("AVI"), QStringLiteral("add"), {clip(QStringLiteral("other.mkv"), QStringLiteral("-c:v libx264 -c:a aac"))});
    open(QStringLiteral("AVI"), QStringLiteral("drag"), {writeFile(QStringLiteral("broken.sup"), "garbage")});
    EXPECT_EQ(alertTexts(), (QStringList{
                                QStringLiteral("Error Opening: notes.txt / Kestrane could not identify this file as a video!!!!!!!!!."),
                                QStringLiteral("Error Opening: notes.txt / Kestrane can't open this file."),
                                QStringLiteral("Error Opening: other.mkv / Kestrane can't add the track from this file."),
                                QStringLiteral("Error Opening: broken.sup / Kestrane can't add this track to the current video."),
                            }));
    EXPECT_DOUBLE_EQ(alerts->alerts.first().timeoutSeconds, 5.0);
    EXPECT_EQ(app->currentVideoFile->theFilePath, avi());
    EXPECT_EQ(app->currentVideoFile->trackList.size(), 2);

    // A dropped subtitle becomes a track of the loaded file; watched, it is ignored.
    const QString srt = writeFile(QStringLiteral("good.srt"), "1\n00:00:00,000 --> 00:00:01,000\nHi\n\n");
    open(QStringLiteral("AVI"), QStringLiteral("watch"), {srt});
    EXPECT_EQ(app->currentVideoFile->trackList.size(), 2);
    open(QStringLiteral("AVI"), QStringLiteral("drag"), {srt});
    ASSERT_EQ(app->currentVideoFile->trackList.size(), 3);
    EXPECT_EQ(app->currentVideoFile->trackList.last()->trackType, QStringLiteral("External Subtitle"));
    EXPECT_TRUE(queued.isEmpty());
}

TEST_F(AppDelegateTest, AFileThatDoesNotLoadNeverStartsTheEarlierOneAgain)
{
    // A video whose picture Kestrane cannot identify.
    const QString unknown = clip(QStringLiteral("unknown.mkv"), QStringLiteral("-c:v ffv1 -c:a ac3"));
    open(QStringLiteral("AVI"), QStringLiteral("open"), {avi()});
    app->setOpeningFileMode(QStringLiteral("watch"));
    EXPECT_EQ(app->testNewFileURL(url(unknown), false), QString());
    EXPECT_EQ(app->currentVideoFile->theFilePath, avi());
    // The watch folder's hub starts nothing for it.
    open(QStringLiteral("AVI"), QStringLiteral("watch"), {unknown});
    EXPECT_FALSE(testsupport::waitUntil([&] { return !queued.isEmpty(); }, 2500));
    // A batch whose first file fails queues only the files that load.
    const QString second = avi(QStringLiteral("second.avi"));
    app->presetsController->setSelectionMethodIndex(1);
    app->presetsController->setSettingMethodIndex(2);
    open(QStringLiteral("AVI"), QStringLiteral("drag"), {unknown, second});
    app->startJob();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !queued.isEmpty(); }, 3000)) << alertTexts().join(u'\n').toStdString();
    testsupport::waitUntil([] { return false; }, 300);
    ASSERT_EQ(queued.size(), 1);
    EXPECT_EQ(queued.first()->videoTrackFilePath, second);
}

TEST_F(AppDelegateTest, EditTabsTakeOnlyAviMkvAndMp4Files)
{
    const QString notes = writeFile(QStringLiteral("list.txt"), "text\n");
    open(QStringLiteral("Edit Files"), QStringLiteral("drag"), {avi(), notes, avi(QStringLiteral("second.avi"))});
    EXPECT_EQ(app->editFilesPathsArray(), (QStringList{avi(), avi(QStringLiteral("second.avi"))}));
    EXPECT_EQ(app->currentSelection->editFilesURLsList.size(), 2);
    open(QStringLiteral("Edit Files"), QStringLiteral("add"), {notes});
    EXPECT_EQ(app->editFilesPathsArray().size(), 2);

    const QString mov = clip(QStringLiteral("tracks.mov"), QStringLiteral("-c:v libx264 -c:a aac"));
    open(QStringLiteral("Edit Tracks"), QStringLiteral("open"), {mov});
    EXPECT_EQ(alertTexts(), (QStringList{
                                QStringLiteral("Error Opening: list.txt / Kestrane can only edit AVI, MKV and MP4 files."),
                                QStringLiteral("Error Opening: list.txt / Kestrane can't add the track from this file."),
                                QStringLiteral("Error Opening: tracks.mov / Kestrane can only edit the tracks of AVI, MKV and MP4 files."),
                            }));
    EXPECT_TRUE(app->currentVideoFile->trackList.isEmpty());
    for (const char *name : {"tracks.mkv", "tracks.m4v"}) {
        const QString file = clip(QString::fromLatin1(name), QStringLiteral("-c:v libx264 -c:a aac"));
        open(QStringLiteral("Edit Tracks"), QStringLiteral("open"), {file});
        EXPECT_EQ(app->currentVideoFile->trackList.size(), 2) << name;
    }
}

TEST_F(AppDelegateTest, HeaderRemovalOfferQueuesARemuxOnOk)
{
    const QString plain = clip(QStringLiteral("hr-source.avi"), QStringLiteral("-c:v mpeg4 -c:a ac3"));
    const QString mkv = mediaDir() + QStringLiteral("/header-removal.mkv");
    ASSERT_EQ(testsupport::run(QStringLiteral("mkvmerge -q -o '%1' --compression 0:mpeg4_p2 '%2'").arg(mkv, plain)), 0);
    alerts->answer = MCAlertSecondButtonReturn;
    open(QStringLiteral("AVI"), QStringLiteral("open"), {mkv});
    ASSERT_EQ(alerts->alerts.size(), 1);
    const MCAlert offer = alerts->alerts.first();
    EXPECT_EQ(offer.message, QStringLiteral("This video appears to have header removal compression.  This may cause issues "
                                            "when you convert or play the video."));
    EXPECT_EQ(offer.informativeText, QStringLiteral("Would you like Kestrane to create a copy of this video with this feature turned off."));
    EXPECT_EQ(offer.buttons, (QStringList{QStringLiteral("OK"), QStringLiteral("Cancel")}));
    EXPECT_TRUE(queued.isEmpty());
    alerts->answer = MCAlertFirstButtonReturn;
    open(QStringLiteral("AVI"), QStringLiteral("open"), {mkv});
    ASSERT_EQ(queued.size(), 1);
    EXPECT_EQ(queued.first()->jobType, QStringLiteral("MKV Remux"));
}

TEST_F(AppDelegateTest, StartChecksTheSaveFolderAndBatchesNeedPresets)
{
    const QString second = avi(QStringLiteral("batch-2.avi"));
    const QString notes = writeFile(QStringLiteral("batch.txt"), "text\n");
    open(QStringLiteral("AVI"), QStringLiteral("drag"), {avi(), notes, second});
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
    EXPECT_TRUE(testsupport::waitUntil([&] { return queued.size() == 2; }, 5000));
    EXPECT_EQ(queued.last()->videoTrackFilePath, second);
    EXPECT_EQ(skipped, QList<QUrl>{url(notes)});
    EXPECT_TRUE(alerts->alerts.isEmpty());

    // A missing save folder stops the start before anything is queued, and
    // is called missing: a permission problem would send the user astray.
    queued.clear();
    app->appPreferences->saveDirectoryURL = url(settingsDir.path() + QStringLiteral("/missing"));
    app->startJob();
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.first().message, QStringLiteral("The save folder for this job does not exist."));
    EXPECT_EQ(alerts->alerts.first().informativeText,
              QStringLiteral("Create the folder or change the save location: %1/missing").arg(settingsDir.path()));
    EXPECT_DOUBLE_EQ(alerts->alerts.first().timeoutSeconds, 10.0);
    testsupport::waitUntil([] { return false; }, 600);
    EXPECT_TRUE(queued.isEmpty());
}

TEST_F(AppDelegateTest, SaveFileInfoWritesTheFullReportIntoTheSaveFolder)
{
    open(QStringLiteral("AVI"), QStringLiteral("open"), {avi()});
    app->appPreferences->saveDirectoryURL = url(settingsDir.path());
    app->helpMenuItemSelected(QStringLiteral("Save File Info"));
    QFile report(settingsDir.path() + QStringLiteral("/clip.avi.info.txt"));
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    const QByteArray text = report.readAll();
    EXPECT_TRUE(text.contains("Complete name"));
    EXPECT_TRUE(text.contains("clip.avi"));
}

TEST_F(AppDelegateTest, QuitWithARunningJobPausesAndCancelKeepsItPaused)
{
    app->queueSelection = [this](const MCSelectionPtr &selection) { app->queueController->addToQueue(selection); };
    const QString longer = clip(QStringLiteral("quit.mkv"), QStringLiteral("-c:v libx264 -preset ultrafast -c:a aac"), 60,
                                QStringLiteral("640x480"));
    app->appPreferences->saveDirectoryURL = url(settingsDir.path());
    app->presetsController->setSelectionMethodIndex(1);
    open(QStringLiteral("AVI"), QStringLiteral("open"), {longer});
    app->selectionController->setVideoMatrixIndex(2);
    app->selectionController->setEnteredUserVideoBitRate(QStringLiteral("800"));
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
    EXPECT_EQ(alerts->alerts.last().message, QStringLiteral("Videos are still being processed.  Quit anyways?"));
    QString state;
    testsupport::run(QStringLiteral("ps -o stat= -p %1").arg(pid), &state);
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
        testsupport::resourcesWithout(m_resources.path(), QStringLiteral("mediainfo"));
        QFile counting(m_resources.filePath(QStringLiteral("mediainfo")));
        counting.open(QIODevice::WriteOnly);
        counting.write(QStringLiteral("#!/bin/sh\nsleep %1\necho run >> '%2'\nexec '%3' \"$@\"\n")
                           .arg(delaySeconds)
                           .arg(m_resources.filePath(QStringLiteral("runs")),
                                QDir(QString::fromUtf8(m_real)).filePath(QStringLiteral("mediainfo")))
                           .toUtf8());
        counting.close();
        counting.setPermissions(counting.permissions() | QFileDevice::ExeOwner);
        qputenv("KESTRANE_RESOURCES", m_resources.path().toUtf8());
    }
    ~CountingMediainfo() { qputenv("KESTRANE_RESOURCES", m_real); }

    int runs() const
    {
        QFile runs(m_resources.filePath(QStringLiteral("runs")));
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
    app.openFiles(QStringLiteral("AVI"), {url(avi())});
    app.openFiles(QStringLiteral("AVI"), {url(avi(QStringLiteral("second.avi")))});

    EXPECT_EQ(app.currentVideoFile->theFilePath, avi(QStringLiteral("second.avi")));
    EXPECT_EQ(mediainfo.runs(), 2);
}

TEST(AppDelegateIntake, TheWindowsIntakeInspectsOffItsThreadOnceAndInTurn)
{
    const QString first = avi();
    const QString second = avi(QStringLiteral("second.avi"));
    const CountingMediainfo mediainfo(1);
    QTemporaryDir settingsDir;
    const auto alerts = testsupport::recordAlerts();
    MCAppDelegate app(settingsWithCopyPreset(settingsDir.path()));
    app.applicationDidFinishLaunching();
    app.queueSelection = [](const MCSelectionPtr &) {};
    app.selectionController->setCurrentTab(QStringLiteral("AVI"));

    QList<bool> busy;
    QObject::connect(app.intakeProbe, &MCIntakeProbe::busyChanged, [&busy](bool now) { busy << now; });
    int ticks = 0;
    QTimer ticking;
    QObject::connect(&ticking, &QTimer::timeout, [&ticks] { ++ticks; });
    ticking.start(50);
    QStringList loaded;
    QEventLoop loop;
    // The second drop comes while the first is still being looked at.
    app.takeInFilesAfterInspection({url(first)}, QStringLiteral("drag"), [&] { loaded << app.currentVideoFile->theFilePath; });
    app.takeInFilesAfterInspection({url(second)}, QStringLiteral("drag"), [&] {
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
