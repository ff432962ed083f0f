#include "MCConvertToMp4Job.h"
#include "Mp4TestSupport.h"

namespace {

class Mp4ConversionTest : public EditingTest
{
protected:
    // Every track of the source selected: the video and audio copied, the
    // subtitles muxed.
    void select(const QString &source, const QString &device)
    {
        selection = inspectedSelection(source, u"AVI Conversion"_s);
        selection->theDevice = device;
        for (const MCVideoTrackPtr &track : selection->trackList)
            track->userCodec = track->trackType == u"Subtitle"_s ? u"mux"_s : u"passthru"_s;
        sourceSum = testsupport::checksum(source);
        sourcePath = source;
    }

    void setAudio(const MCVideoTrackPtr &track, const QString &codec, const QString &channels, const QString &bitRate)
    {
        track->userCodec = codec;
        track->userNumberOfChannels = channels;
        track->userBitRate = bitRate;
    }

    bool convert(MCConvertToMp4Job &job)
    {
        const bool completed = completes(job, selection);
        EXPECT_EQ(testsupport::checksum(sourcePath), sourceSum) << "the source was changed";
        return completed;
    }

    // "Format/Channels/Language/Title/Default" of every track of a kind.
    static QStringList described(const QString &path, const QString &kind)
    {
        QStringList tracks;
        for (const QJsonObject &track : mediaTracks(path, kind))
            tracks << describe(track) + u'/' + track.value(u"Default"_s).toString();
        return tracks;
    }

    MCSelectionPtr selection;
    MCConvertToMp4Job job;
    QString sourcePath;
    QByteArray sourceSum;
};

} // namespace

TEST_F(Mp4ConversionTest, GeneralMkvBecomesM4vWithAacPlayingBeforeSurroundAc3AndSubtitlesAsText)
{
    select(fullMkv(), u"General"_s);
    setAudio(titled(*selection, u"Surround"_s), u"ac3"_s, u"6"_s, u"384"_s);
    ASSERT_TRUE(convert(job)) << job.failureReason().toStdString();

    // AC-3 audio makes an M4V, whatever the device.
    ASSERT_EQ(saved(u"*"_s), QStringList{u"all.mkv.m4v"_s});
    const QString result = savedPath(u"all.mkv.m4v"_s);
    EXPECT_EQ(described(result, u"Audio"_s), (QStringList{u"AAC/2/en/Commentary/Yes"_s, u"AC-3/6/de/Surround/No"_s}));
    // The ASS subtitle went through the SRT dump; both keep language and title.
    EXPECT_EQ(described(result, u"Text"_s), (QStringList{u"Timed Text//fr/French/Yes"_s, u"Timed Text//en/Signs/No"_s}));
    EXPECT_NEAR(durationSeconds(result), durationSeconds(fullMkv()), 0.5);
    EXPECT_TRUE(decodesCleanly(result));
    EXPECT_TRUE(sawRow(u"Extracting Video="_s));
    EXPECT_TRUE(sawRow(u"Converting Audio="_s));
    EXPECT_TRUE(sawRow(u"Muxing Step #"_s));
}

TEST_F(Mp4ConversionTest, IpadCopyOfAnMp4GetsTheIpodFlavourAndLevel41OnKestranesCopy)
{
    select(h264Clip(u"high51.mp4"_s, u"high"_s, u"5.1"_s), u"iPad 3/iPhone 4S"_s);
    for (const MCVideoTrackPtr &track : selection->trackList) {
        if (track->trackType == u"Audio"_s)
            setAudio(track, u"aac"_s, u"2"_s, u"96"_s);
    }
    ASSERT_TRUE(convert(job)) << job.failureReason().toStdString();

    ASSERT_EQ(saved(u"*"_s), QStringList{u"high51.mp4.m4v"_s});
    const QString result = savedPath(u"high51.mp4.m4v"_s);
    EXPECT_EQ(videoProfile(result), u"High@L4.1"_s);
    EXPECT_EQ(testsupport::mediaInfo(result, u"General"_s, u"CodecID"_s), u"M4V"_s);
    EXPECT_EQ(described(result, u"Audio"_s), QStringList{u"AAC/2/es/Audio Track/Yes"_s});
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
                streamProfile = videoProfile(job.theTracks.first()->muxingTrackFileURL.toLocalFile());
        });
    ASSERT_TRUE(convert(job)) << job.failureReason().toStdString();

    const QString result = savedPath(u"ps3.mkv.mp4"_s);
    EXPECT_EQ(videoProfile(result), u"High@L4.1"_s);
    EXPECT_TRUE(decodesCleanly(result));
    EXPECT_EQ(streamProfile, u"High@L4.1"_s);
}

// With "keep logs" only logs stay: a dumped stream beside the result would
// be taken up by a watched folder as a movie of its own.
TEST_F(Mp4ConversionTest, AnAviCopyMuxesItsDumpsAndKeepsNoneOfThem)
{
    const QString avi = editingMedia(u"dumped.avi"_s);
    if (!QFile::exists(avi))
        testsupport::ffmpeg(QFileInfo(avi).path(), u"dumped.avi"_s,
                            u"-f lavfi -i testsrc2=s=160x120:r=25:d=3 -f lavfi -i sine=d=3:r=48000 -ac 2 -c:v mpeg4 -c:a ac3"_s);
    select(avi, u"General"_s);
    prefs.preferences->keepLogsFlag = true;
    ASSERT_TRUE(convert(job)) << job.failureReason().toStdString();

    const QString result = savedPath(u"dumped.avi.m4v"_s);
    EXPECT_EQ(mediaTracks(result, u"Video"_s).value(0).value(u"Format"_s).toString(), u"MPEG-4 Visual"_s);
    EXPECT_EQ(mediaTracks(result, u"Audio"_s).value(0).value(u"Format"_s).toString(), u"AC-3"_s);
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
    EXPECT_TRUE(saved(u"*.mp4"_s).isEmpty());
    EXPECT_EQ(saved(u"*"_s), QStringList{QFileInfo(job.failedLogPath()).fileName()});

    // MP3 has no place in Kestrane's MP4s: refused before anything runs.
    MCConvertToMp4Job second;
    select(xvidAvi(u"xvid.avi"_s, u"160x120"_s, 2), u"General"_s);
    ASSERT_FALSE(convert(second));
    EXPECT_TRUE(second.failureReason().contains(u"cannot be copied into an MP4"_s)) << second.failureReason().toStdString();
    EXPECT_TRUE(second.stepPIDList().isEmpty());
}
