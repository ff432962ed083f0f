#include "EditingTestSupport.h"
#include "MCEditAviJob.h"
#include "MCAviEditor.h"
#include "MCJobTypes.h"
#include "MCJoinPropertyCheck.h"
#include "MCQueueController.h"
#include "MCReMuxMkvJob.h"
#include "MCVideoFile.h"


namespace {

class EditAviJobTest : public EditingTest
{
protected:
    EditAviJobTest() { MCJobTypes::registerAll(); }

    MCSelectionPtr selection(const QString &jobType, const QStringList &editFiles = {})
    {
        MCSelectionPtr made = selectionFor(clip, jobType);
        for (const QString &path : editFiles)
            made->editFilesURLsList.append(QUrl::fromLocalFile(path));
        return made;
    }

    // Runs the job to its end; answers its failure reason ("" when it completed).
    QString runThroughQueue(const MCSelectionPtr &selection)
    {
        queue.addToQueue(selection);
        MCJob *job = queue.qJobList().last();
        EXPECT_TRUE(testsupport::waitUntil(
            [job] { return job->jobStatus() == u"Completed"_s || job->jobStatus() == u"Failed"_s; }, 120000));
        EXPECT_EQ(job->jobStatus() == u"Failed"_s, job->hasFailed());
        return job->failureReason();
    }

    // Runs a monitor of a job over a scripted step (after a "none" entry); answers the ticks.
    QStringList ticksOf(MCJob &job, const QStringList &words, const std::function<void()> &monitor, bool afterNone = true)
    {
        job.jobSelection = selection(u"AVI Joining"_s);
        const MCConverterPtr step = std::make_shared<ScriptedStep>(words);
        job.setStepConverterList(afterNone ? QList<MCConverterPtr>{nullptr, step} : QList<MCConverterPtr>{step});
        JobWatch watch(job);
        monitor();
        EXPECT_TRUE(watch.waitForDone(20000));
        return watch.ticks;
    }

    MCQueueController queue;
    const QString clip = xvidAvi(u"clip.avi"_s, u"160x120"_s, 3);
    const bool hasAviTools = !MCHelpers::urlOfApp(u"avisplit"_s).isEmpty() && !MCHelpers::urlOfApp(u"avimerge"_s).isEmpty();
};

} // namespace

TEST_F(EditAviJobTest, JoinsEveryFileAndWarnsOfAnotherSize)
{
    const auto alerts = testsupport::recordAlerts();
    const QString second = xvidAvi(u"second.avi"_s, u"160x120"_s, 3);
    EXPECT_EQ(runThroughQueue(selection(u"AVI Joining"_s, {clip, second, clip})), QString());
    EXPECT_NEAR(durationSeconds(savedPath(u"clip.avi.joined.avi"_s)), 9.0, 1.0);
    EXPECT_TRUE(alerts->alerts.isEmpty());

    // MEncoder itself refuses to copy pictures of another size into one file:
    // the warning comes first, and the job fails with MEncoder's reason
    // instead of leaving the first file's part as the join.
    const QString larger = xvidAvi(u"larger.avi"_s, u"320x240"_s, 3);
    EXPECT_TRUE(runThroughQueue(selection(u"AVI Joining"_s, {second, larger, clip}))
                    .contains(u"All video files must have identical fps, resolution, and codec"_s));
    EXPECT_TRUE(saved(u"second.avi.joined.avi"_s).isEmpty());
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.at(0).informativeText, u"Video Resolution"_s);
    EXPECT_EQ(alerts->alerts.at(0).style, MCAlert::Style::Warning);
    EXPECT_EQ(alerts->alerts.at(0).timeoutSeconds, 15.0);
}

TEST_F(EditAviJobTest, SplitsByTimeAndBySize)
{
    if (!hasAviTools)
        GTEST_SKIP() << "no avisplit in the resource folder";
    const QString longer = xvidAvi(u"ten.avi"_s, u"640x480"_s, 10);
    MCSelectionPtr split = selection(u"AVI Splitting"_s, {longer});
    split->splitType = u"time"_s;
    split->splitStartTimeText = u"00:00:02"_s;
    split->splitEndTimeText = u"00:00:06"_s;
    EXPECT_EQ(runThroughQueue(split), QString());
    const QStringList timed = saved(u"ten.avi.split*.avi"_s);
    ASSERT_EQ(timed.size(), 1);
    EXPECT_NEAR(durationSeconds(savedPath(timed.at(0))), 4.0, 1.0);
    QFile::remove(savedPath(timed.at(0)));

    split->splitType = u"size"_s;
    split->splitSize = u"1"_s;
    split->splitNumber = u"2"_s; // the first two pieces only
    EXPECT_EQ(runThroughQueue(split), QString());
    EXPECT_EQ(saved(u"ten.avi.split*.avi"_s).size(), 2) << QFileInfo(longer).size() << " bytes";

    // What avisplit does not serve starts nothing, fails the job and leaves
    // the source alone.
    const QByteArray sum = md5Of(longer);
    for (const QString &size : {u"0"_s, u"1"_s}) {
        split->splitType = size == u"0"_s ? u"size"_s : u"duration"_s;
        split->splitSize = size;
        EXPECT_TRUE(runThroughQueue(split).contains(size == u"0"_s ? u"split values cannot be used"_s
                                                                     : u"not by \"duration\""_s));
    }
    EXPECT_EQ(saved(u"ten.avi.split*"_s).size(), 2);
    EXPECT_EQ(md5Of(longer), sum);
}

TEST_F(EditAviJobTest, ExtractsEveryTrackAndKeepsThem)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(QUrl::fromLocalFile(clip)), u"OK"_s);
    MCSelectionPtr extraction = selection(u"AVI Track Extraction"_s);
    extraction->trackList = file.trackList;
    runThroughQueue(extraction);
    const QStringList video = saved(u"clip.avi.dumped.video.*"_s);
    const QStringList audio = saved(u"clip.avi.dumped.a*"_s);
    ASSERT_EQ(video.size() + audio.size(), 2);
    EXPECT_EQ(testsupport::mediaInfo(savedPath(video.value(0)), u"Video"_s, u"Format"_s), u"MPEG-4 Visual"_s);
    EXPECT_EQ(testsupport::mediaInfo(savedPath(audio.value(0)), u"Audio"_s, u"Format"_s), u"MPEG Audio"_s);
    EXPECT_TRUE(saved(u"*.log"_s).isEmpty());
}

TEST_F(EditAviJobTest, AddsEveryChosenAudioFileAsATrackOfItsOwn)
{
    if (!hasAviTools)
        GTEST_SKIP() << "no avimerge in the resource folder";
    const QString mp3
        = testsupport::ffmpeg(QFileInfo(clip).path(), u"added.mp3"_s, u"-f lavfi -i sine=f=880:d=3 -c:a libmp3lame"_s);
    MCSelectionPtr addition = selection(u"AVI Track Addition"_s);
    addition->trackList = {makeTrack(u"Audio"_s, u"mp3"_s, mp3)};
    EXPECT_EQ(runThroughQueue(addition), QString());
    EXPECT_EQ(testsupport::mediaInfo(savedPath(u"clip.avi.addedAudio.avi"_s), u"General"_s, u"AudioCount"_s), u"2"_s);

    // Two files at once: both are added, in their order, none is dropped.
    const QString ac3
        = testsupport::ffmpeg(QFileInfo(clip).path(), u"added.ac3"_s, u"-f lavfi -i sine=f=440:d=3 -ac 6 -c:a ac3"_s);
    MCVideoTrackPtr first = makeTrack(u"Audio"_s, u"mp3"_s, mp3);
    MCVideoTrackPtr second = makeTrack(u"Audio"_s, u"ac3"_s, ac3);
    first->externalTrackFlag = second->externalTrackFlag = true;
    addition->trackList = {first, second};
    EXPECT_EQ(runThroughQueue(addition), QString());
    QString formats;
    testsupport::run(u"mediainfo --Inform='Audio;%Format%,' '%1'"_s.arg(savedPath(u"clip.avi.addedAudio (2).avi"_s)), &formats);
    EXPECT_EQ(formats.trimmed(), u"MPEG Audio,MPEG Audio,AC-3,"_s);
}

TEST_F(EditAviJobTest, MonitorsTickByTick)
{
    MCEditAviJob start;
    EXPECT_EQ(ticksOf(start, {u"avimerge 1"_s, u"avimerge 2"_s, u"error"_s, u"37%"_s, u"error"_s, u"splitting 1"_s, u"error"_s},
                      [&] { start.monitorStartJob(); }),
              (QStringList{u"Adding Audio=Muxing"_s, u"Adding Audio="_s, u"Scripted=0%"_s, u"Scripted=37%"_s, u"Scripted=37%"_s,
                           u"Splitting AVI=Splitting"_s, u"Scripted=0%"_s, QString()}));

    // The counted monitors step up when the percentage falls, and once more
    // in the tick that sees the end ("Complete" reads as 0).
    const QStringList words{u"10%"_s, u"50%"_s, u"error"_s, u"20%"_s};
    for (const bool multipleSteps : {true, false}) {
        MCEditAviJob job;
        const QString label = multipleSteps ? u"Scripted Step #%1=%2"_s : u"Muxing Step #%1=%2"_s;
        EXPECT_EQ(ticksOf(job, words, [&] { multipleSteps ? job.monitorStartJobWithMultipleSteps() : job.monitorMuxStep(); }),
                  (QStringList{label.arg(1).arg(u"10%"_s), label.arg(1).arg(u"50%"_s), label.arg(1).arg(u"50%"_s),
                               label.arg(2).arg(u"20%"_s), label.arg(3).arg(u"Complete"_s)}));
    }

    MCReMuxMkvJob remux;
    remux.setProgressList({MCJob::progressRow(u"Scripted"_s, u"12%"_s)});
    EXPECT_EQ(ticksOf(
                  remux, {u"error"_s, u"40%"_s, u"error"_s}, [&] { remux.monitorStartJob(); }, false),
              (QStringList{u"Scripted=12%"_s, u"Scripted=40%"_s, u"Scripted=40%"_s, u"Scripted=Complete"_s}));
}

TEST_F(EditAviJobTest, PropertyCheckComparesNeighbours)
{
    const QString flatter = xvidAvi(u"flatter.avi"_s, u"160x96"_s, 3);
    EXPECT_TRUE(MCJoinPropertyCheck::findMismatchedProperetiesFor({QUrl::fromLocalFile(clip)}).isEmpty());
    EXPECT_EQ(MCJoinPropertyCheck::findMismatchedProperetiesFor({QUrl::fromLocalFile(clip), QUrl::fromLocalFile(flatter)}),
              QStringList{u"Video Resolution"_s});

    // Only neighbours are compared; names keep their fixed order.
    MCJoinPropertyCheck::FileProperties a{u"25"_s, {}, {}, {}, {}, {u"mpeg4"_s}};
    MCJoinPropertyCheck::FileProperties b = a;
    b.trackCodecs = {u"h264"_s};
    MCJoinPropertyCheck::FileProperties c = b;
    c.fps = u"30"_s;
    EXPECT_EQ(MCJoinPropertyCheck::mismatchedProperties({a, b, c, a}), (QStringList{u"Frame Rate"_s, u"Track Codecs"_s}));
}
