#include "MCConvertToMkvJob.h"
#include "MkvTestSupport.h"

namespace {

class MkvConversionTest : public EditingTest
{
protected:
    // The source with every track selected: the video copied, the audio
    // tracks set by the test, the subtitles muxed as they are.
    MkvConversionTest()
        : selection(inspectedSelection(fullMkv(), u"AVI Conversion"_s))
    {
        selection->userVideoBitRate = u"400"_s;
        selection->userPassNumber = u"1"_s;
        for (const MCVideoTrackPtr &track : selection->trackList)
            track->userCodec = track->trackType == u"Subtitle"_s ? u"mux"_s : u"passthru"_s;
    }

    MCVideoTrackPtr setAudio(const QString &title, const QString &codec, const QString &channels, const QString &bitRate)
    {
        const MCVideoTrackPtr track = titled(*selection, title);
        track->userCodec = codec;
        track->userNumberOfChannels = channels;
        track->userBitRate = bitRate;
        return track;
    }

    // Runs the job the queue would make (stereo copies join the track
    // list), without subtitles unless asked.
    bool convert(bool subtitles = false)
    {
        if (!subtitles)
            selection->trackList.removeIf([](const MCVideoTrackPtr &track) { return track->trackType == u"Subtitle"_s; });
        MCSelectionPtr queued = selection->copy();
        queued->addAnyStereoTracks();
        queued->trackList << queued->addedAudioTrackList;
        return completes(job, queued);
    }

    // MPEG-4 video in Matroska's AVI-compatible form, as muxed from MEncoder's AVI.
    bool isXvid() const { return described(result, u"Video"_s).value(0).contains(u"xvid"_s, Qt::CaseInsensitive); }

    const QString result = savedPath(u"all.mkv.muxed.mkv"_s);
    MCSelectionPtr selection;
    MCConvertToMkvJob job;
};

} // namespace

// The picture copied into Matroska is the command line's case.
TEST_F(MkvConversionTest, EncodesTwoPassVideoKeepsSurroundBesideAStereoCopyAndMuxesSubtitlesWithTheirTitles)
{
    titled(*selection, u"Video Track"_s)->userCodec = u"mpeg4"_s;
    selection->userWidth = u"128"_s;
    selection->userPassNumber = u"2"_s;
    setAudio(u"Surround"_s, u"aac"_s, u"6"_s, u"256"_s)->createStereoCopyFlag = true;
    // A stereo source asked for AC-3 is still encoded as stereo AAC.
    setAudio(u"Commentary"_s, u"ac3"_s, u"6"_s, u"192"_s);
    prefs.preferences->keepLogsFlag = true;
    ASSERT_TRUE(convert(true)) << job.failureReason().toStdString();

    EXPECT_TRUE(isXvid());
    EXPECT_EQ(testsupport::mediaInfo(result, u"Video"_s, u"Width"_s), u"128"_s);
    EXPECT_EQ(described(result, u"Audio"_s),
              (QStringList{u"AAC/6/de/Surround"_s, u"AAC/2/en/Commentary"_s, u"AAC/2/de/Added Stereo Track"_s}));
    EXPECT_EQ(described(result, u"Text"_s), (QStringList{u"UTF-8//fr/French"_s, u"ASS//en/Signs"_s}));
    EXPECT_NEAR(durationSeconds(result), durationSeconds(fullMkv()), 0.5);
    EXPECT_TRUE(decodesCleanly(result));
    // The first pass hands over to the second (too quick here to show a percentage).
    EXPECT_TRUE(sawRow(u"Converting Video=Pass 1 Complete"_s));
    EXPECT_TRUE(sawRow(u"Converting Audio="_s));
    EXPECT_TRUE(sawRow(u"Muxing Step #"_s));
    // The kept intermediates: the stereo copy never shares the original's file.
    EXPECT_EQ(saved(u"all.mkv.temp.Audio.*.aac"_s),
              (QStringList{u"all.mkv.temp.Audio.t0.aac"_s, u"all.mkv.temp.Audio.t0.added.aac"_s}));
}

TEST_F(MkvConversionTest, RefusesTracksWithoutAPlaceAndFailsWithTheEncodersWords)
{
    titled(*selection, u"French"_s)->userCodec = u"burn"_s;
    ASSERT_FALSE(convert(true));
    EXPECT_TRUE(job.failureReason().contains(u"French"_s)) << job.failureReason().toStdString();
    EXPECT_TRUE(job.stepPIDList().isEmpty());
    EXPECT_TRUE(saved(u"*"_s).isEmpty());

    // An audio track the file does not have: the encoder refuses, the job
    // fails with its words, keeps its log and leaves no result.
    MCConvertToMkvJob second;
    titled(*selection, u"French"_s)->userCodec = u"mux"_s;
    setAudio(u"Commentary"_s, u"aac"_s, u"2"_s, u"128"_s)->trackMencoderID = u"7"_s;
    ASSERT_FALSE(completes(second, selection));
    EXPECT_TRUE(second.failureReason().startsWith(u"Converting Audio: mencoder ended with exit status"_s))
        << second.failureReason().toStdString();
    EXPECT_TRUE(saved(u"*.mkv"_s).isEmpty());
    EXPECT_EQ(saved(u"*"_s), QStringList{QFileInfo(second.failedLogPath()).fileName()});
}
