#include "EngineTestSupport.h"
#include "MCJobFactory.h"
#include "MCJobStaging.h"
#include "MCQueueController.h"
#include "MCResultCheck.h"
#include "MCNotificationCenter.h"
#include "MCToolLog.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

using namespace Qt::StringLiterals;

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

    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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

TEST_F(JobResultsTest, AResultNeverReplacesWhatStandsAtItsName)
{
    // A hard link to the source and a planted link to another file both
    // stand where the result would go; neither is written through.
    const QString victim = prefs.dir.filePath(u"victim.txt"_s);
    write(victim, "keep me");
    ASSERT_EQ(::link(QFile::encodeName(input).constData(),
                     QFile::encodeName(prefs.saveFolder + u"/clip.avi.avi"_s).constData()),
              0);
    ASSERT_TRUE(QFile::link(victim, prefs.saveFolder + u"/clip.avi (2).avi"_s));
    run(u"printf film > OUT"_s);
    ASSERT_FALSE(job.hasFailed()) << job.failureReason().toStdString();
    EXPECT_EQ(job.resultPaths(), QStringList{prefs.saveFolder + u"/clip.avi (3).avi"_s});
    EXPECT_EQ(read(input), "the user's film");
    EXPECT_EQ(read(victim), "keep me");
    EXPECT_EQ(read(job.resultPaths().value(0)), "film");
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

TEST(MCJobStagingTest, NumberedNamesKeepTheLastExtension)
{
    EXPECT_EQ(MCJobStaging::numberedName(u"movie.mkv.avi"_s, 2), u"movie.mkv (2).avi"_s);
    EXPECT_EQ(MCJobStaging::numberedName(u"README"_s, 3), u"README (3)"_s);
    EXPECT_EQ(MCJobStaging::numberedName(u".hidden"_s, 2), u".hidden (2)"_s);
}

TEST(MCToolLogTest, SummaryKeepsTheToolsLastWordsWithoutProgress)
{
    const QStringList mencoder{u"MEncoder 1.5-12.2.0"_s, u"Pos:   0.1s      3f ( 1%)  0.00fps"_s,
                               u"Audio format 0x4134 is incompatible with '-oac copy', please try '-oac pcm' instead"_s,
                               u""_s, u"Exiting..."_s, u""_s};
    EXPECT_EQ(MCToolLog::failureSummary(mencoder),
              u"MEncoder 1.5-12.2.0 / Audio format 0x4134 is incompatible with '-oac copy', please try '-oac pcm' instead / Exiting..."_s);
    const QStringList mkvmerge{u"Progress: 10%"_s, u"Progress: 20%"_s, u"Error: The file 'x.mkv' could not be opened."_s};
    EXPECT_EQ(MCToolLog::failureSummary(mkvmerge, 2), u"Error: The file 'x.mkv' could not be opened."_s);
    EXPECT_TRUE(MCToolLog::failureSummary({u"Importing | (20/100)"_s, u"  45%"_s}).isEmpty());
    // A tool that repeats itself is quoted once.
    EXPECT_EQ(MCToolLog::failureSummary({u"bad"_s, u"bad"_s, u"bad"_s}), u"bad"_s);
}

// Results made once: a good AVI, and damaged forms of it.
class ResultCheckTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        good = testsupport::ffmpeg(folder.path(), u"good.avi"_s,
                                   u"-f lavfi -i testsrc2=s=160x120:r=25:d=4 -f lavfi -i sine=d=4 -c:v mpeg4 -c:a mp2"_s);
    }

    static QString cutCopy(const QString &name, qint64 bytes)
    {
        QFile in(good);
        in.open(QIODevice::ReadOnly);
        const QString path = folder.filePath(name);
        QFile out(path);
        out.open(QIODevice::WriteOnly);
        out.write(in.read(bytes));
        return path;
    }

    static MCResultExpectation aviOf(const QString &source)
    {
        MCResultExpectation avi;
        avi.media = true;
        avi.videoTracks = 1;
        avi.audioTracks = 1;
        avi.durationSources = {source};
        return avi;
    }

    static inline QTemporaryDir folder;
    static inline QString good;
};

TEST_F(ResultCheckTest, AcceptsTheRealThingAndNamesWhatIsWrongWithTheRest)
{
    EXPECT_EQ(MCResultCheck::check(good, aviOf(good)), QString());
    EXPECT_EQ(MCResultCheck::check(folder.filePath(u"missing.avi"_s), aviOf(good)), u"it was not written"_s);
    EXPECT_EQ(MCResultCheck::check(cutCopy(u"empty.avi"_s, 0), aviOf(good)), u"it is empty"_s);
    // A disk that filled up mid-way: the headers promise more than there is.
    EXPECT_EQ(MCResultCheck::check(cutCopy(u"cut.avi"_s, QFileInfo(good).size() / 2), aviOf(good)),
              u"it is cut short (is the disk full?)"_s);
    const QString text = folder.filePath(u"notes.avi"_s);
    QFile notes(text);
    notes.open(QIODevice::WriteOnly);
    notes.write("not a film at all\n");
    notes.close();
    EXPECT_EQ(MCResultCheck::check(text, aviOf(good)), u"it cannot be read as media"_s);

    MCResultExpectation silent = aviOf(good);
    silent.audioTracks = 0;
    EXPECT_EQ(MCResultCheck::check(good, silent), u"it has 1 audio tracks instead of 0"_s);
    const QString shorter = testsupport::ffmpeg(folder.path(), u"short.avi"_s,
                                                u"-f lavfi -i testsrc2=s=160x120:r=25:d=1 -f lavfi -i sine=d=1 -c:v mpeg4 -c:a mp2"_s);
    EXPECT_TRUE(MCResultCheck::check(shorter, aviOf(good)).startsWith(u"it lasts 1.0 s where 4.0 s were expected"_s))
        << MCResultCheck::check(shorter, aviOf(good)).toStdString();
    // A cut of [1, 9) from a 4-second film ends with the film.
    MCResultExpectation cut = aviOf(good);
    cut.rangeStart = 1.0;
    cut.rangeEnd = 9.0;
    EXPECT_EQ(MCResultCheck::check(testsupport::ffmpeg(folder.path(), u"three.avi"_s,
                                                       u"-f lavfi -i testsrc2=s=160x120:r=25:d=3 -f lavfi -i sine=d=3 -c:v mpeg4 -c:a mp2"_s),
                                   cut),
              QString());
}

TEST(PreferencesHandOver, TheQueueHandsItsPreferencesToJobsAndJobsToTheirSteps)
{
    PrivatePreferences installed;
    QTemporaryDir elsewhere;
    MCPreferences own(elsewhere.filePath(u"own.ini"_s));
    own.saveDirectoryURL = QUrl::fromLocalFile(elsewhere.path());
    own.keepLogsFlag = false;

    MCJobFactory::instance().registerJobType(u"MCConvertToAviJob"_s, [](QObject *parent) { return new StepsJob(parent); });
    {
        MCQueueController queue(nullptr, &own);
        queue.addToQueue(selectionFor(installed.dir.filePath(u"clip.avi"_s)));
        ASSERT_EQ(queue.qJobList().size(), 1);
        EXPECT_EQ(queue.qJobList().first()->appPreferences, &own);
    }

    // A step writes where its job's preferences say, not the installed ones.
    bool done = false;
    QObject receiver;
    MCNotificationCenter::defaultCenter().addObserver(&receiver, MCNotificationName::jobDone,
                                                      [&done](const MCNotification &) { done = true; });
    StepsJob job;
    job.appPreferences = &own;
    job.jobSelection = selectionFor(installed.dir.filePath(u"clip.avi"_s));
    job.steps = {std::make_shared<ShellStep>(u"printf film > OUT"_s, u"clip.avi.avi"_s)};
    job.startJob();
    ASSERT_TRUE(testsupport::waitUntil([&] { return done; }, 20000));
    EXPECT_EQ(job.resultPaths(), QStringList{elsewhere.filePath(u"clip.avi.avi"_s)});
    EXPECT_TRUE(QDir(installed.saveFolder).isEmpty());
}

TEST_F(JobResultsTest, ReplacingTakesThePlaceOfAnEarlierResult)
{
    job.existingResults = MCJob::ExistingResults::Replace;
    write(prefs.saveFolder + u"/clip.avi.avi"_s, "an earlier result");
    run(u"printf film > OUT"_s);
    EXPECT_EQ(job.resultPaths(), QStringList{prefs.saveFolder + u"/clip.avi.avi"_s});
    EXPECT_EQ(read(prefs.saveFolder + u"/clip.avi.avi"_s), "film");
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
