#include "MCEditMkvJob.h"
#include "MkvTestSupport.h"

namespace {

// Six seconds of H.264 (a key frame every second) with stereo AAC.
QString sixSeconds(const QString &name, const QString &size = u"160x120"_s, const QString &codec = u"libx264"_s)
{
    const QString path = editingMedia(name);
    if (!QFile::exists(path))
        testsupport::ffmpeg(QFileInfo(path).path(), name,
                            u"-f lavfi -i testsrc2=s=%1:r=25:d=6 -f lavfi -i sine=d=6:r=48000 -ac 2 -c:v %2 -g 25 -c:a aac"_s
                                .arg(size, codec));
    return path;
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
    EXPECT_EQ(describe(mediaTracks(savedPath(u"all.mkv.a1.ac3"_s), u"Audio"_s).value(0)), u"AC-3/6//"_s);
    EXPECT_EQ(mediaTracks(savedPath(u"all.mkv.v1.h264"_s), u"Video"_s).value(0).value(u"Width"_s).toString(), u"160"_s);
    QFile srt(savedPath(u"all.mkv.s1.srt"_s));
    ASSERT_TRUE(srt.open(QIODevice::ReadOnly));
    EXPECT_TRUE(srt.readAll().contains("Bonjour"));
    EXPECT_TRUE(sawRow(u"Extracting Audio Track="_s) || sawRow(u"Extracting Video Track=Complete"_s));
}

TEST_F(MkvEditingTest, ExtractionOfATrackMkvextractCannotWriteIsRefusedBeforeAnyRuns)
{
    MCSelectionPtr selection = inspectedSelection(fullMkv(), u"AVI Track Extraction"_s);
    selection->trackList << makeTrack(u"External Subtitle"_s, u"srt"_s, editingMedia(u"fr.srt"_s));
    EXPECT_FALSE(completes(job, selection));
    EXPECT_TRUE(job.failureReason().contains(u"External Subtitle"_s)) << job.failureReason().toStdString();
    EXPECT_TRUE(job.stepPIDList().isEmpty());
    EXPECT_TRUE(saved(u"*"_s).isEmpty());
}

TEST_F(MkvEditingTest, RemovesTracksAndKeepsTheRestAsTheyWere)
{
    MCSelectionPtr selection = inspectedSelection(fullMkv(), u"AVI Track Removal"_s);
    const MCTrackList all = selection->trackList;
    selection->trackList = {titled(*selection, u"Commentary"_s), titled(*selection, u"French"_s)};
    for (const MCVideoTrackPtr &track : all) {
        if (!selection->trackList.contains(track))
            selection->keepTracksList << track;
    }
    const QByteArray sum = md5Of(fullMkv());
    ASSERT_TRUE(completes(job, selection)) << job.failureReason().toStdString();

    const QString removed = savedPath(u"all.mkv.removed.mkv"_s);
    EXPECT_EQ(mediaTracks(removed, u"Video"_s).size(), 1);
    const QList<QJsonObject> audio = mediaTracks(removed, u"Audio"_s), text = mediaTracks(removed, u"Text"_s);
    EXPECT_TRUE(audio.size() == 1 && describe(audio.value(0)) == u"AC-3/6/de/Surround"_s) << describe(audio.value(0)).toStdString();
    EXPECT_TRUE(text.size() == 1 && describe(text.value(0)) == u"ASS//en/Signs"_s) << describe(text.value(0)).toStdString();
    EXPECT_TRUE(sawRow(u"Muxing Step #1="_s));
    EXPECT_EQ(md5Of(fullMkv()), sum);

    // Removing every track would leave nothing: refused, nothing written.
    MCEditMkvJob everything;
    selection->trackList = all;
    selection->keepTracksList.clear();
    ASSERT_FALSE(completes(everything, selection));
    EXPECT_TRUE(everything.failureReason().contains(u"every track"_s)) << everything.failureReason().toStdString();
    EXPECT_EQ(saved(u"*"_s), QStringList{u"all.mkv.removed.mkv"_s});
}

TEST_F(MkvEditingTest, JoinsAfterWarningOfOtherSizesAndFailsWhereMkvmergeRefuses)
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

    // Another codec: warned of, tried, and refused by mkvmerge in its own
    // words; the log stays when logs are kept.
    prefs.preferences->keepLogsFlag = true;
    MCEditMkvJob refused;
    selection->editFilesURLsList = {QUrl::fromLocalFile(sixSeconds(u"six.mkv"_s)),
                                    QUrl::fromLocalFile(sixSeconds(u"mpeg4.mkv"_s, u"160x120"_s, u"mpeg4"_s))};
    ASSERT_FALSE(completes(refused, selection));
    EXPECT_EQ(alerts->alerts.size(), 2);
    EXPECT_TRUE(refused.failureReason().startsWith(u"Joining Videos: mkvmerge ended with exit status 2"_s))
        << refused.failureReason().toStdString();
    EXPECT_EQ(saved(u"*.mkv"_s), QStringList{u"six.mkv.joined.mkv"_s});
    EXPECT_EQ(saved(u"*.log"_s).size(), 1);
}

TEST_F(MkvEditingTest, SplitsByTimeAndDuration)
{
    ASSERT_TRUE(completes(job, splitting(u"time"_s, u"00:00:02"_s, u"00:00:05"_s))) << job.failureReason().toStdString();
    EXPECT_NEAR(durationSeconds(savedPath(u"six.mkv.split.mkv"_s)), 3.0, 0.5);
    EXPECT_TRUE(sawRow(u"Muxing Step #1="_s));

    MCEditMkvJob pieces;
    ASSERT_TRUE(completes(pieces, splitting(u"duration"_s, u"2"_s))) << pieces.failureReason().toStdString();
    const QStringList parts = saved(u"six.mkv.split-*.mkv"_s);
    ASSERT_EQ(parts.size(), 3);
    for (const QString &part : parts)
        EXPECT_NEAR(durationSeconds(savedPath(part)), 2.0, 0.5) << part.toStdString();
}

TEST_F(MkvEditingTest, SplitValuesOutsideTheFileOrOfNoSizeAreRefused)
{
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
    EXPECT_TRUE(saved(u"*"_s).isEmpty());
}

TEST_F(MkvEditingTest, RemuxSwitchesHeaderRemovalOff)
{
    ASSERT_TRUE(completes(job, inspectedSelection(headerRemovalMkv(), u"MKV Remux"_s))) << job.failureReason().toStdString();
    EXPECT_FALSE(usesHeaderRemoval(savedPath(u"hr.mkv.remux.mkv"_s)));
    EXPECT_TRUE(sawRow(u"Muxing Step #1="_s));
}
