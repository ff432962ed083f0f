#include "EngineTestSupport.h"
#include "MCJobFactory.h"
#include "MCQueueController.h"
#include "MCResultCheck.h"
#include "MCNotificationCenter.h"
#include "MCToolLog.h"
#include "MCVideoFile.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using namespace Qt::StringLiterals;

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A job of one shell step, run until the queue would see "jobDone".
class JobResultsTest : public ::testing::Test
{
protected:
    JobResultsTest()
    {
        MCNotificationCenter::defaultCenter().addObserver(&receiver, MCNotificationName::jobDone,
                                                          [this](const MCNotification &n) {
                                                              done = true;
                                                              reportedFailure = n.userInfo.value(u"failed"_s).toString();
                                                          });
        input = prefs.dir.filePath(u"clip.avi"_s);
        write(input, "the user's film");
    }

    void run(const QString &script, const QString &outputName = u"clip.avi.avi"_s)
    {
        job.jobSelection = selectionFor(input);
        job.jobFileName = u"clip.avi"_s;
        job.steps = {std::make_shared<ShellStep>(script, outputName)};
        job.startJob();
        ASSERT_TRUE(testsupport::waitUntil([&] { return done; }, 20000));
    }

    // Files in the save folder other than the private folders jobs use.
    QStringList saveFolderEntries() const
    {
        return QDir(prefs.saveFolder).entryList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    PrivatePreferences prefs;
    QObject receiver;
    StepsJob job;
    QString input;
    bool done = false;
    QString reportedFailure;
};

TEST_F(JobResultsTest, AGoodResultTakesItsNameAndNothingElseStays)
{
    run(u"echo Encoding; printf film > OUT"_s);
    EXPECT_FALSE(job.hasFailed()) << job.failureReason().toStdString();
    const QString result = prefs.saveFolder + u"/clip.avi.avi"_s;
    EXPECT_EQ(job.resultPaths(), QStringList{result});
    EXPECT_EQ(read(result), "film");
    // Logs and the private folder are gone; the source is as it was.
    EXPECT_EQ(saveFolderEntries(), QStringList{u"clip.avi.avi"_s});
    EXPECT_EQ(read(input), "the user's film");
}

TEST_F(JobResultsTest, AToolThatFailsEndsTheJobAsFailedWithItsOwnWords)
{
    run(u"printf half > OUT; echo 'Pos: 1.0s 25f ( 40%)'; echo 'The vbitrate option must be >= 4'; "
        "echo 'Exiting... (error parsing command line)'; exit 1"_s);
    ASSERT_TRUE(job.hasFailed());
    EXPECT_EQ(reportedFailure, job.failureReason());
    EXPECT_TRUE(job.failureReason().contains(u"exit status 1"_s)) << job.failureReason().toStdString();
    EXPECT_TRUE(job.failureReason().contains(u"The vbitrate option must be >= 4 / Exiting... (error parsing command line)"_s))
        << job.failureReason().toStdString();
    EXPECT_FALSE(job.failureReason().contains(u"Pos:"_s));
    // The log is kept for the user (logs are not kept by preference here);
    // the half-written result is not left looking like one.
    EXPECT_EQ(job.failedLogPath(), prefs.saveFolder + u"/clip.avi.avi.log"_s);
    EXPECT_TRUE(read(job.failedLogPath()).contains("Exiting..."));
    EXPECT_EQ(saveFolderEntries(), QStringList{u"clip.avi.avi.log"_s});
    EXPECT_TRUE(job.resultPaths().isEmpty());
}

TEST_F(JobResultsTest, AnEmptyOrMissingResultIsAFailureEvenWhenTheToolSaysFine)
{
    run(u": > OUT"_s);
    ASSERT_TRUE(job.hasFailed());
    EXPECT_TRUE(job.failureReason().contains(u"clip.avi.avi is not right: it is empty"_s)) << job.failureReason().toStdString();
    EXPECT_TRUE(saveFolderEntries().isEmpty()) << saveFolderEntries().join(u", "_s).toStdString();
}

TEST_F(JobResultsTest, ASaveFolderThatCannotTakeFilesFailsTheJobBeforeAnyToolRuns)
{
    // Gone since the job was queued (an unplugged disk, say).
    ASSERT_TRUE(QDir(prefs.saveFolder).removeRecursively());
    run(u"printf film > OUT; touch \"$HOME/ran\""_s);
    EXPECT_FALSE(QFile::exists(QDir::homePath() + u"/ran"_s));
    ASSERT_TRUE(job.hasFailed());
    EXPECT_TRUE(job.failureReason().contains(u"cannot write into the save folder"_s)) << job.failureReason().toStdString();
}

TEST(MCToolLogTest, SummaryKeepsTheToolsLastWordsWithoutProgress)
{
    const QStringList mkvmerge{u"Progress: 10%"_s, u"Progress: 20%"_s, u"Error: The file 'x.mkv' could not be opened."_s};
    EXPECT_EQ(MCToolLog::failureSummary(mkvmerge, 2), u"Error: The file 'x.mkv' could not be opened."_s);
    EXPECT_TRUE(MCToolLog::failureSummary({u"Importing | (20/100)"_s, u"  45%"_s}).isEmpty());
    // A tool that repeats itself is quoted once.
    EXPECT_EQ(MCToolLog::failureSummary({u"bad"_s, u"bad"_s, u"bad"_s}), u"bad"_s);
}

TEST(MCResultCheckTest, AcceptsTheRealThingAndNamesWhatIsWrongWithTheRest)
{
    QTemporaryDir folder;
    const auto clip = [&](const QString &name, int seconds) {
        return testsupport::ffmpeg(folder.path(), name, u"-f lavfi -i testsrc2=s=160x120:r=25:d=%1 -f lavfi -i sine=d=%1 "
                                                        "-c:v mpeg4 -c:a mp2"_s.arg(seconds));
    };
    const QString good = clip(u"good.avi"_s, 4);
    const auto copyOf = [&](const QString &name, const QByteArray &bytes) {
        write(folder.filePath(name), bytes);
        return folder.filePath(name);
    };
    MCResultExpectation avi;
    avi.media = true;
    avi.videoTracks = 1;
    avi.audioTracks = 1;
    avi.durationSources = {good};

    EXPECT_EQ(MCResultCheck::check(good, avi), QString());
    EXPECT_EQ(MCResultCheck::check(folder.filePath(u"missing.avi"_s), avi), u"it was not written"_s);
    EXPECT_EQ(MCResultCheck::check(copyOf(u"empty.avi"_s, {}), avi), u"it is empty"_s);
    // A disk that filled up mid-way: the headers promise more than there is.
    EXPECT_EQ(MCResultCheck::check(copyOf(u"cut.avi"_s, read(good).left(QFileInfo(good).size() / 2)), avi),
              u"it is cut short (is the disk full?)"_s);
    EXPECT_EQ(MCResultCheck::check(copyOf(u"notes.avi"_s, "not a film at all\n"), avi), u"it cannot be read as media"_s);

    MCResultExpectation silent = avi;
    silent.audioTracks = 0;
    EXPECT_EQ(MCResultCheck::check(good, silent), u"it has 1 audio tracks instead of 0"_s);
    const QString shorter = MCResultCheck::check(clip(u"short.avi"_s, 1), avi);
    EXPECT_TRUE(shorter.startsWith(u"it lasts 1.0 s where 4.0 s were expected"_s)) << shorter.toStdString();
    // A cut of [1, 9) from a 4-second film ends with the film.
    MCResultExpectation cut = avi;
    cut.rangeStart = 1.0;
    cut.rangeEnd = 9.0;
    EXPECT_EQ(MCResultCheck::check(clip(u"three.avi"_s, 3), cut), QString());
}

// A job reads its sources from the intake's text report, its results from
// mediainfo's JSON: the two must agree, or good results would fail.
TEST(MCMediaSummaryTest, TheIntakeReportSaysWhatTheJsonReportSays)
{
    QTemporaryDir folder;
    const QString film = testsupport::ffmpeg(folder.path(), u"film.mkv"_s,
                                             u"-f lavfi -i testsrc2=s=160x120:r=25:d=3 -f lavfi -i sine=d=3 -f lavfi -i sine=d=3 "
                                             "-map 0 -map 1 -map 2 -c:v mpeg4 -c:a:0 ac3 -ac:a:0 6 -c:a:1 mp2 -ac:a:1 2"_s);
    const MCMediaSummary json = MCMediaSummary::of(film);
    const MCMediaSummary text = MCMediaSummary::fromReport(MCVideoFile().mediaInfoReportFor(QUrl::fromLocalFile(film)));
    EXPECT_TRUE(text.readable);
    EXPECT_NEAR(text.durationSeconds, json.durationSeconds, 0.01);
    EXPECT_EQ(text.videoFormats, json.videoFormats);
    EXPECT_EQ(text.audioFormats, (QStringList{u"AC-3"_s, u"MPEG Audio"_s}));
    EXPECT_EQ(text.audioChannels, json.audioChannels);
    EXPECT_EQ(MCMediaSummary::ofOwnResult(film).audioChannels, (QStringList{u"6"_s, u"2"_s}));
}

TEST_F(JobResultsTest, TheQueueHandsItsPreferencesToJobsAndJobsToTheirSteps)
{
    QTemporaryDir elsewhere;
    MCPreferences own(elsewhere.filePath(u"own.ini"_s));
    own.saveDirectoryURL = QUrl::fromLocalFile(elsewhere.path());
    own.keepLogsFlag = false;
    MCJobFactory::instance().registerJobType(u"MCConvertToAviJob"_s, [](QObject *parent) { return new StepsJob(parent); });
    {
        MCQueueController queue(nullptr, &own);
        queue.addToQueue(selectionFor(input));
        ASSERT_EQ(queue.qJobList().size(), 1);
        EXPECT_EQ(queue.qJobList().first()->appPreferences, &own);
    }
    // A step writes where its job's preferences say, not the installed ones.
    job.appPreferences = &own;
    run(u"printf film > OUT"_s);
    EXPECT_EQ(job.resultPaths(), QStringList{elsewhere.filePath(u"clip.avi.avi"_s)});
    EXPECT_TRUE(saveFolderEntries().isEmpty());
}

TEST_F(JobResultsTest, ReplacingNeverReplacesTheSourceUnderAnotherNameNorAFolder)
{
    job.existingResults = MCJob::ExistingResults::Replace;
    ASSERT_EQ(::link(QFile::encodeName(input).constData(), QFile::encodeName(prefs.saveFolder + u"/clip.avi.avi"_s).constData()), 0);
    QDir(prefs.saveFolder).mkpath(u"clip.avi (2).avi"_s);
    run(u"printf film > OUT"_s);
    EXPECT_EQ(job.resultPaths(), QStringList{prefs.saveFolder + u"/clip.avi (3).avi"_s});
    EXPECT_EQ(read(input), "the user's film");
}

TEST_F(JobResultsTest, AskingLetsTheUserKeepBothOrReplace)
{
    const auto alerts = testsupport::recordAlerts();
    job.existingResults = MCJob::ExistingResults::Ask;
    write(prefs.saveFolder + u"/clip.avi.avi"_s, "an earlier result");
    alerts->answer = MCAlertSecondButtonReturn; // "Replace"
    run(u"printf film > OUT"_s);
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.at(0).message, u"\"clip.avi.avi\" already exists in the save folder."_s);
    EXPECT_EQ(alerts->alerts.at(0).buttons, (QStringList{u"Keep Both"_s, u"Replace"_s}));
    EXPECT_EQ(read(prefs.saveFolder + u"/clip.avi.avi"_s), "film");
    MCAlertCenter::instance().setPresenter(nullptr);
}

} // namespace
