#include "EditingTestSupport.h"
#include "MCEditAviJob.h"
#include "MCJoinPropertyCheck.h"
#include "MCReMuxMkvJob.h"

namespace {

class EditAviJobTest : public EditingTest
{
protected:
    // A job on the first of the files (the clip when none is given).
    MCSelectionPtr selection(const QString &jobType, const QStringList &editFiles = {})
    {
        MCSelectionPtr made = selectionFor(editFiles.value(0, clip), jobType);
        for (const QString &path : editFiles)
            made->editFilesURLsList.append(QUrl::fromLocalFile(path));
        return made;
    }

    // Runs a job to its end; answers its failure reason ("" when it completed).
    QString run(const MCSelectionPtr &selection)
    {
        MCEditAviJob job;
        const bool completed = completes(job, selection);
        EXPECT_EQ(completed, job.failureReason().isEmpty()) << job.failureReason().toStdString();
        return job.failureReason();
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

    const QString clip = xvidAvi(u"clip.avi"_s, u"160x120"_s, 3);
    const bool hasAviTools = !MCHelpers::urlOfApp(u"avisplit"_s).isEmpty() && !MCHelpers::urlOfApp(u"avimerge"_s).isEmpty();
};

} // namespace

TEST_F(EditAviJobTest, JoiningAnotherSizeWarnsAndFailsWithMencodersReason)
{
    const auto alerts = testsupport::recordAlerts();
    const QString second = xvidAvi(u"second.avi"_s, u"160x120"_s, 3);
    // MEncoder itself refuses to copy pictures of another size into one file:
    // the warning comes first, and the job fails with MEncoder's reason
    // instead of leaving the first file's part as the join.
    const QString larger = xvidAvi(u"larger.avi"_s, u"320x240"_s, 3);
    EXPECT_TRUE(run(selection(u"AVI Joining"_s, {second, larger, clip}))
                    .contains(u"All video files must have identical fps, resolution, and codec"_s));
    EXPECT_TRUE(saved(u"*.avi"_s).isEmpty());
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.at(0).informativeText, u"Video Resolution"_s);
}

TEST_F(EditAviJobTest, SplitsBySizeAndRefusesWhatAvisplitDoesNotServe)
{
    if (!hasAviTools)
        GTEST_SKIP() << "no avisplit in the resource folder";
    const QString longer = xvidAvi(u"ten.avi"_s, u"640x480"_s, 10);
    const QByteArray sum = testsupport::checksum(longer);
    MCSelectionPtr split = selection(u"AVI Splitting"_s, {longer});
    split->splitType = u"size"_s;
    split->splitSize = u"1"_s;
    split->splitNumber = u"2"_s; // the first two pieces only
    EXPECT_EQ(run(split), QString());
    EXPECT_EQ(saved(u"ten.avi.split*.avi"_s).size(), 2) << QFileInfo(longer).size() << " bytes";

    // What avisplit does not serve starts nothing, fails the job and leaves
    // the source alone.
    for (const auto &[type, reason] : {std::pair(u"size"_s, u"split values cannot be used"_s),
                                       std::pair(u"duration"_s, u"not by \"duration\""_s)}) {
        split->splitType = type;
        split->splitSize = type == u"size"_s ? u"0"_s : u"1"_s;
        EXPECT_TRUE(run(split).contains(reason)) << type.toStdString();
    }
    EXPECT_EQ(saved(u"ten.avi.split*"_s).size(), 2);
    EXPECT_EQ(testsupport::checksum(longer), sum);
}

// Two files at once: both are added, in their order, none is dropped.
TEST_F(EditAviJobTest, AddsEveryChosenAudioFileAsATrackOfItsOwn)
{
    if (!hasAviTools)
        GTEST_SKIP() << "no avimerge in the resource folder";
    const QString mp3 = testsupport::ffmpeg(QFileInfo(clip).path(), u"added.mp3"_s, u"-f lavfi -i sine=f=880:d=3 -c:a libmp3lame"_s);
    MCSelectionPtr addition = selection(u"AVI Track Addition"_s);
    const QString ac3 = testsupport::ffmpeg(QFileInfo(clip).path(), u"added.ac3"_s, u"-f lavfi -i sine=f=440:d=3 -ac 6 -c:a ac3"_s);
    addition->trackList = {makeTrack(u"Audio"_s, u"mp3"_s, mp3), makeTrack(u"Audio"_s, u"ac3"_s, ac3)};
    for (const MCVideoTrackPtr &track : addition->trackList)
        track->externalTrackFlag = true;
    EXPECT_EQ(run(addition), QString());
    QString formats;
    testsupport::run(u"mediainfo --Inform='Audio;%Format%,' '%1'"_s.arg(savedPath(u"clip.avi.addedAudio.avi"_s)), &formats);
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
    for (const bool multipleSteps : {true, false}) {
        MCEditAviJob job;
        const QString label = multipleSteps ? u"Scripted Step #%1=%2"_s : u"Muxing Step #%1=%2"_s;
        EXPECT_EQ(ticksOf(job, {u"10%"_s, u"50%"_s, u"error"_s, u"20%"_s},
                          [&] { multipleSteps ? job.monitorStartJobWithMultipleSteps() : job.monitorMuxStep(); }),
                  (QStringList{label.arg(1).arg(u"10%"_s), label.arg(1).arg(u"50%"_s), label.arg(1).arg(u"50%"_s),
                               label.arg(2).arg(u"20%"_s), label.arg(3).arg(u"Complete"_s)}));
    }

    MCReMuxMkvJob remux;
    remux.setProgressList({MCJob::progressRow(u"Scripted"_s, u"12%"_s)});
    EXPECT_EQ(ticksOf(remux, {u"error"_s, u"40%"_s, u"error"_s}, [&] { remux.monitorStartJob(); }, false),
              (QStringList{u"Scripted=12%"_s, u"Scripted=40%"_s, u"Scripted=40%"_s, u"Scripted=Complete"_s}));
}

TEST(JoinPropertyCheck, ComparesOnlyNeighboursAndNamesInAFixedOrder)
{
    MCJoinPropertyCheck::FileProperties a{u"25"_s, {}, {}, {}, {}, {u"mpeg4"_s}};
    MCJoinPropertyCheck::FileProperties b = a;
    b.trackCodecs = {u"h264"_s};
    MCJoinPropertyCheck::FileProperties c = b;
    c.fps = u"30"_s;
    EXPECT_EQ(MCJoinPropertyCheck::mismatchedProperties({a, b, c, a}), (QStringList{u"Frame Rate"_s, u"Track Codecs"_s}));
    EXPECT_TRUE(MCJoinPropertyCheck::mismatchedProperties({a}).isEmpty());
}
