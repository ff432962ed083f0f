#include "MCConvertToMp4Job.h"
#include "MkvTestSupport.h"

namespace {

class Mp4ConversionTest : public EditingTest
{
protected:
    // Every track of the source selected: the video copied, the audio set
    // so when asked or copied, the subtitles muxed.
    void select(const QString &source, const QString &device, const QString &audioCodec = u"passthru"_s,
                const QString &channels = {}, const QString &bitRate = {})
    {
        selection = inspectedSelection(source, u"AVI Conversion"_s);
        selection->theDevice = device;
        for (const MCVideoTrackPtr &track : selection->trackList) {
            const bool audio = track->trackType == u"Audio"_s;
            track->userCodec = track->trackType == u"Subtitle"_s ? u"mux"_s : audio ? audioCodec : u"passthru"_s;
            if (audio && audioCodec != u"passthru"_s) {
                track->userNumberOfChannels = channels;
                track->userBitRate = bitRate;
            }
        }
        sourceSum = testsupport::checksum(source);
        sourcePath = source;
    }

    bool convert(MCConvertToMp4Job &job)
    {
        const bool completed = completes(job, selection);
        EXPECT_EQ(testsupport::checksum(sourcePath), sourceSum) << "the source was changed";
        return completed;
    }

    MCSelectionPtr selection;
    MCConvertToMp4Job job;
    QString sourcePath;
    QByteArray sourceSum;
};

} // namespace

TEST_F(Mp4ConversionTest, IpadCopyOfAnMp4GetsTheIpodFlavourAndLevel41OnKestranesCopy)
{
    select(h264Clip(u"high51.mp4"_s, u"high"_s, u"5.1"_s), u"iPad 3/iPhone 4S"_s, u"aac"_s, u"2"_s, u"96"_s);
    ASSERT_TRUE(convert(job)) << job.failureReason().toStdString();

    ASSERT_EQ(saved(u"*"_s), QStringList{u"high51.mp4.m4v"_s});
    const QString result = savedPath(u"high51.mp4.m4v"_s);
    EXPECT_EQ(testsupport::mediaInfo(result, u"Video"_s, u"Format_Profile"_s), u"High@L4.1"_s);
    EXPECT_EQ(testsupport::mediaInfo(result, u"General"_s, u"CodecID"_s), u"M4V"_s);
    EXPECT_EQ(described(result, u"Audio"_s, true), QStringList{u"AAC/2/es/Audio Track/Yes"_s});
    EXPECT_TRUE(decodesCleanly(result));
    // The copied video needed no step of its own.
    EXPECT_FALSE(sawRow(u"Extracting Video="_s));
}

TEST_F(Mp4ConversionTest, Ps3CopyOfAnMkvStreamIsPatchedBeforeAndAfterTheMux)
{
    const QString mp4 = h264Clip(u"ps3.mp4"_s, u"high"_s, u"5.1"_s);
    const QString mkv = editingMedia(u"ps3.mkv"_s);
    testsupport::run(u"ffmpeg -nostdin -v error -y -i '%1' -c copy '%2'"_s.arg(mp4, mkv));
    select(mkv, u"PS3"_s);
    // The stream mkvextract made, read as the muxer starts on it.
    QString streamProfile;
    QObject observer;
    MCNotificationCenter::defaultCenter().addObserver(
        &observer, MCNotificationName::conversionStarted, [&](const MCNotification &n) {
            if (n.object.toUrl().fileName().endsWith(u".mp4"_s))
                streamProfile = testsupport::mediaInfo(job.theTracks.first()->muxingTrackFileURL.toLocalFile(), u"Video"_s,
                                                       u"Format_Profile"_s);
        });
    ASSERT_TRUE(convert(job)) << job.failureReason().toStdString();

    const QString result = savedPath(u"ps3.mkv.mp4"_s);
    EXPECT_EQ(testsupport::mediaInfo(result, u"Video"_s, u"Format_Profile"_s), u"High@L4.1"_s);
    EXPECT_TRUE(decodesCleanly(result));
    EXPECT_EQ(streamProfile, u"High@L4.1"_s);
}

// With "keep logs" only logs stay: a dumped stream beside the result would
// be taken up by a watched folder as a movie of its own.
TEST_F(Mp4ConversionTest, AnAviCopyMuxesItsDumpsAndKeepsNoneOfThem)
{
    const QString avi = clip(u"dumped.avi"_s, testInputs(u"160x120"_s, 3) + u"-ac 2 -c:v mpeg4 -c:a ac3"_s);
    select(avi, u"General"_s);
    prefs.preferences->keepLogsFlag = true;
    ASSERT_TRUE(convert(job)) << job.failureReason().toStdString();

    const QString result = savedPath(u"dumped.avi.m4v"_s);
    EXPECT_EQ(described(result, u"Video"_s).value(0).left(13), u"MPEG-4 Visual"_s);
    EXPECT_EQ(described(result, u"Audio"_s).value(0).left(4), u"AC-3"_s);
    EXPECT_NEAR(durationSeconds(result), durationSeconds(avi), 0.5);
    EXPECT_TRUE(decodesCleanly(result));
    EXPECT_TRUE(sawRow(u"Dumping Video="_s));
    for (const QString &file : saved(u"*"_s))
        EXPECT_TRUE(file == u"dumped.avi.m4v"_s || file.endsWith(u".log"_s)) << file.toStdString();
    EXPECT_EQ(saved(u"*.dumped.*.log"_s).size(), 2);
}

TEST_F(Mp4ConversionTest, AFailingMuxFailsTheJobAndLeavesNoResult)
{
    select(h264Clip(u"high51.mp4"_s, u"high"_s, u"5.1"_s), u"General"_s);
    // A track the file does not have: MP4Box refuses it.
    selection->trackList.first()->trackMp4boxID = u"9"_s;
    ASSERT_FALSE(convert(job));
    EXPECT_TRUE(job.failureReason().startsWith(u"Muxing Tracks: "_s)) << job.failureReason().toStdString();
    EXPECT_EQ(saved(u"*"_s), QStringList{QFileInfo(job.failedLogPath()).fileName()});
}
