#include "MCWatchModeFollowUp.h"

#include "AppTestSettings.h"

#include "MCJob.h"
#include "MCQueueController.h"
#include "MCWatchModeController.h"

#include <gtest/gtest.h>

namespace {

using Verdict = MCWatchModeFollowUp::Verdict;

// Watching, with every movie taken up and given up noted.
struct Watched : WatchingApp
{
    Watched()
    {
        watch()->startWatchMode(false);
        QObject::connect(watch(), &MCWatchModeController::moviesTakenUp, watch(), [this](const QList<QUrl> &files) { takenUp << files; });
        QObject::connect(watch(), &MCWatchModeController::movieGivenUp, watch(), [this](const QUrl &file, const QString &) { givenUp << file; });
    }
    MCWatchModeController *watch() const { return app.watchModeController; }

    QList<QUrl> takenUp, givenUp;
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

TEST(WatchModeFollowUpInTheApp, GarbageIsTriedAgainWhileItHoldsItsSizeThenGivenUpSilently)
{
    Watched w;
    QFile junk(w.path(QStringLiteral("junk.avi")));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(4096, '\x17'));
    junk.close();
    w.watch()->watchLoop(); // size noted
    for (int attempt = 1; attempt <= MCWatchModeFollowUp::maxAttempts; ++attempt) {
        w.watch()->watchLoop();
        EXPECT_EQ(w.takenUp.size(), attempt);
    }
    EXPECT_EQ(w.givenUp, QList<QUrl>{QUrl::fromLocalFile(junk.fileName())});
    EXPECT_EQ(w.watch()->givenUpMovies().size(), 1);
    for (int i = 0; i < 3; ++i)
        w.watch()->watchLoop();
    EXPECT_EQ(w.takenUp.size(), MCWatchModeFollowUp::maxAttempts) << "given up means left alone";
    EXPECT_TRUE(w.app.queueController->qJobList().isEmpty());
    EXPECT_TRUE(w.alerts->alerts.isEmpty()) << "nobody is at the window to read an alert";
}

TEST(WatchModeFollowUpInTheApp, MoviesSettlingInOneScanAreEachQueued)
{
    Watched w;
    const QString clip = appClip(QStringLiteral("clip.avi"), QStringLiteral("-c:v mpeg4 -c:a ac3"), 1);
    for (const QString &name : {QStringLiteral("a.avi"), QStringLiteral("b.avi"), QStringLiteral("c.avi")})
        ASSERT_TRUE(QFile::copy(clip, w.path(name)));
    w.watch()->watchLoop();
    w.watch()->watchLoop();
    MCQueueController *queue = w.app.queueController;
    ASSERT_TRUE(testsupport::waitUntil([&] { return queue->qJobList().size() == 3; }, 20000)) << queue->qJobList().size();
    QStringList sources;
    for (const MCJob *job : queue->qJobList())
        sources << QFileInfo(job->jobSelection->videoTrackFilePath).fileName();
    sources.sort();
    EXPECT_EQ(sources, (QStringList{QStringLiteral("a.avi"), QStringLiteral("b.avi"), QStringLiteral("c.avi")}));
    EXPECT_TRUE(w.alerts->alerts.isEmpty()) << w.alerts->alerts.first().message.toStdString();
    w.app.stopAndEmptyQueue();
}
