#include "MCEditMkvJob.h"
#include "MkvTestSupport.h"

namespace {

// Six seconds of H.264 (a key frame every second) with stereo AAC.
QString sixSeconds(const QString &name, const QString &size = u"160x120"_s)
{
    return clip(name, testInputs(size, 6) + u"-ac 2 -c:v libx264 -g 25 -c:a aac"_s);
}

class MkvEditingTest : public EditingTest
{
protected:
    MCSelectionPtr splitting(const QString &type, const QString &value, const QString &end = {})
    {
        MCSelectionPtr selection = inspectedSelection(sixSeconds(u"six.mkv"_s), u"AVI Splitting"_s);
        selection->splitType = type;
        selection->splitSize = selection->splitDurationSeconds = value;
        selection->initializeSplitForStartTime(value, end);
        return selection;
    }

    MCEditMkvJob job;
};

} // namespace

TEST_F(MkvEditingTest, ExtractsEveryTrackIntoAFileOfItsOwn)
{
    ASSERT_TRUE(completes(job, inspectedSelection(fullMkv(), u"AVI Track Extraction"_s))) << job.failureReason().toStdString();
    EXPECT_EQ(saved(u"*"_s), (QStringList{u"all.mkv.a1.ac3"_s, u"all.mkv.a2.aac"_s, u"all.mkv.s1.srt"_s,
                                          u"all.mkv.s2.ass"_s, u"all.mkv.v1.h264"_s}));
    EXPECT_EQ(described(savedPath(u"all.mkv.a1.ac3"_s), u"Audio"_s), QStringList{u"AC-3/6//"_s});
    EXPECT_TRUE(readFile(savedPath(u"all.mkv.s1.srt"_s)).contains("Bonjour"));
    EXPECT_TRUE(sawRow(u"Extracting Audio Track="_s) || sawRow(u"Extracting Video Track=Complete"_s));

    // A track mkvextract cannot write (one of another file) is refused
    // before anything runs.
    MCEditMkvJob refused;
    MCSelectionPtr selection = inspectedSelection(fullMkv(), u"AVI Track Extraction"_s);
    selection->trackList << makeTrack(u"External Subtitle"_s, u"srt"_s, editingMedia(u"fr.srt"_s));
    EXPECT_FALSE(completes(refused, selection));
    EXPECT_TRUE(refused.failureReason().contains(u"External Subtitle"_s)) << refused.failureReason().toStdString();
    EXPECT_TRUE(refused.stepPIDList().isEmpty());
    EXPECT_EQ(saved(u"*"_s).size(), 5);
}

TEST_F(MkvEditingTest, RemovingEveryTrackIsRefused)
{
    ASSERT_FALSE(completes(job, inspectedSelection(fullMkv(), u"AVI Track Removal"_s)));
    EXPECT_TRUE(job.failureReason().contains(u"every track"_s)) << job.failureReason().toStdString();
    EXPECT_TRUE(saved(u"*"_s).isEmpty());
}

TEST_F(MkvEditingTest, JoinsAfterWarningOfOtherSizes)
{
    const auto alerts = testsupport::recordAlerts();
    MCSelectionPtr selection = inspectedSelection(sixSeconds(u"six.mkv"_s), u"AVI Joining"_s);
    selection->editFilesURLsList = {QUrl::fromLocalFile(sixSeconds(u"six.mkv"_s)),
                                    QUrl::fromLocalFile(sixSeconds(u"wide.mkv"_s, u"320x240"_s))};
    ASSERT_TRUE(completes(job, selection)) << job.failureReason().toStdString();
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.at(0).informativeText, u"Video Resolution"_s);
    EXPECT_NEAR(durationSeconds(savedPath(u"six.mkv.joined.mkv"_s)), 12.0, 1.0);
    EXPECT_TRUE(sawRow(u"Joining Videos="_s));
}

TEST_F(MkvEditingTest, SplitsByTimeAndRefusesValuesOutsideTheFileOrOfNoSize)
{
    ASSERT_TRUE(completes(job, splitting(u"time"_s, u"00:00:02"_s, u"00:00:05"_s))) << job.failureReason().toStdString();
    EXPECT_NEAR(durationSeconds(savedPath(u"six.mkv.split.mkv"_s)), 3.0, 0.5);
    EXPECT_TRUE(sawRow(u"Muxing Step #1="_s));

    const struct { QString type, value, end, reason; } cases[] = {
        {u"time"_s, u"00:00:07"_s, u"00:00:09"_s, u"the file ends at 00:00:06"_s},
        {u"time"_s, u"00:00:02"_s, u"00:00:20"_s, u"ends at 00:00:20"_s},
        {u"size"_s, u"0"_s, {}, u"at least 1 MB"_s},
        {u"number"_s, u"2"_s, {}, u"not by \"number\""_s},
    };
    for (const auto &refused : cases) {
        MCEditMkvJob split;
        EXPECT_FALSE(completes(split, splitting(refused.type, refused.value, refused.end)));
        EXPECT_TRUE(split.failureReason().contains(refused.reason)) << split.failureReason().toStdString();
    }
    EXPECT_EQ(saved(u"*"_s).size(), 1);
}
