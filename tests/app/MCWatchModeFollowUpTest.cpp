#include "MCWatchModeFollowUp.h"

#include "AppTestSettings.h"

#include "MCAppDelegate.h"
#include "MCJob.h"
#include "MCPresetsController.h"
#include "MCQueueController.h"
#include "MCWatchModeController.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

using Verdict = MCWatchModeFollowUp::Verdict;

// The application with the "First Track" and "Copy" presets, watching a
// fresh folder; scans are driven by hand.
class WatchedApp : public ::testing::Test
{
protected:
    void SetUp() override
    {
        alerts = testsupport::recordAlerts();
        app = std::make_unique<MCAppDelegate>(settingsWithCopyPreset(settingsDir.path()));
        app->applicationDidFinishLaunching();
        MCPresetsController *presets = app->presetsController;
        presets->setSelectionMethodIndex(presets->presetSelectionsNamesList.indexOf(QStringLiteral("First Track")));
        presets->setSettingMethodIndex(presets->presetSettingsNamesList.indexOf(QStringLiteral("Copy")));
        app->appPreferences->watchFolderURL = QUrl::fromLocalFile(folder.path());
        watch()->startWatchMode(false);
        QObject::connect(watch(), &MCWatchModeController::moviesTakenUp, watch(),
                         [this](const QList<QUrl> &files) { takenUp << files; });
        QObject::connect(watch(), &MCWatchModeController::movieGivenUp, watch(),
                         [this](const QUrl &file, const QString &) { givenUp << file; });
    }

    MCWatchModeController *watch() const { return app->watchModeController; }
    QString path(const QString &name) const { return folder.path() + QLatin1Char('/') + name; }

    std::shared_ptr<RecordingAlertPresenter> alerts;
    QTemporaryDir settingsDir;
    QTemporaryDir folder;
    std::unique_ptr<MCAppDelegate> app;
    QList<QUrl> takenUp;
    QList<QUrl> givenUp;
};

} // namespace

TEST(WatchModeFollowUp, AMovieWithoutAJobIsTriedAgainThenGivenUp)
{
    MCWatchModeFollowUp followUp(0);
    const QUrl movie = QUrl::fromLocalFile(QStringLiteral("/watched/movie.avi"));
    for (int attempt = 1; attempt < MCWatchModeFollowUp::maxAttempts; ++attempt) {
        followUp.handedOn(movie, 0);
        const QList<MCWatchModeFollowUp::Outcome> outcomes = followUp.check({});
        ASSERT_EQ(outcomes.size(), 1);
        EXPECT_EQ(outcomes.first().verdict, Verdict::TryAgain);
        EXPECT_TRUE(followUp.check({}).isEmpty()) << "an outcome is told once";
    }
    EXPECT_EQ(followUp.refused(movie, QStringLiteral("not a video")).verdict, Verdict::GiveUp);
    EXPECT_EQ(followUp.givenUp(), QStringList{QStringLiteral("/watched/movie.avi: not a video")});
    // Counted per movie: another one starts afresh.
    EXPECT_EQ(followUp.refused(QUrl::fromLocalFile(QStringLiteral("/watched/other.avi")), QString()).verdict, Verdict::TryAgain);

    // A movie still within its grace is waited for.
    MCWatchModeFollowUp patient(60000);
    patient.handedOn(movie, 0);
    EXPECT_TRUE(patient.check({}).isEmpty());
}

TEST_F(WatchedApp, GarbageIsLoggedTriedAgainWhileItHoldsItsSizeThenGivenUp)
{
    QFile junk(path(QStringLiteral("junk.avi")));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(4096, '\x17'));
    junk.close();

    watch()->watchLoop(); // size noted
    for (int attempt = 1; attempt <= MCWatchModeFollowUp::maxAttempts; ++attempt) {
        watch()->watchLoop();
        EXPECT_EQ(takenUp.size(), attempt);
    }
    EXPECT_EQ(givenUp, QList<QUrl>{QUrl::fromLocalFile(path(QStringLiteral("junk.avi")))});
    ASSERT_EQ(watch()->givenUpMovies().size(), 1);
    for (int i = 0; i < 3; ++i)
        watch()->watchLoop();
    EXPECT_EQ(takenUp.size(), MCWatchModeFollowUp::maxAttempts) << "given up means left alone";
    EXPECT_TRUE(app->queueController->qJobList().isEmpty());
    EXPECT_TRUE(alerts->alerts.isEmpty()) << "nobody is at the window to read an alert";
}

TEST_F(WatchedApp, MoviesSettlingInOneScanAreEachQueued)
{
    const QString clip = appClip(QStringLiteral("clip.avi"), QStringLiteral("-c:v mpeg4 -c:a ac3"), 1);
    // Copied in together: all three settle in the same scan.
    for (const QString &name : {QStringLiteral("a.avi"), QStringLiteral("b.avi"), QStringLiteral("c.avi")})
        ASSERT_TRUE(QFile::copy(clip, path(name)));
    watch()->watchLoop();
    watch()->watchLoop();
    MCQueueController *queue = app->queueController;
    ASSERT_TRUE(testsupport::waitUntil([&] { return queue->qJobList().size() == 3; }, 20000)) << queue->qJobList().size();
    QStringList sources;
    for (const MCJob *job : queue->qJobList())
        sources << QFileInfo(job->jobSelection->videoTrackFilePath).fileName();
    sources.sort();
    EXPECT_EQ(sources, (QStringList{QStringLiteral("a.avi"), QStringLiteral("b.avi"), QStringLiteral("c.avi")}));
    EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().message.toStdString();
    app->stopAndEmptyQueue();
}
