#include "MCMp4Muxer.h"
#include "MCProfileEditor.h"
#include "MCSubtitleConverter.h"
#include "Mp4TestSupport.h"

namespace {

MCVideoTrackPtr muxTrack(const QString &type, const QString &codec, const QString &file, const QString &language,
                         const QString &title)
{
    auto track = std::make_shared<MCVideoTrack>();
    track->trackType = type;
    track->trackCodec = codec;
    track->trackLanguage = language;
    track->trackTitle = title;
    track->trackFileURL = QUrl::fromLocalFile(file);
    track->trackMp4boxID = u"1"_s;
    track->userCodec = type.contains(u"Subtitle"_s) ? u"mux"_s : u"passthru"_s;
    track->initializeForMuxing();
    track->muxingTrackMp4boxID = u"one track"_s;
    return track;
}

// The command the muxer would run, composed but not started.
class MuxerCommandTest : public EditingTest
{
protected:
    MuxerCommandTest()
    {
        selection->initialize();
        selection->videoTrackFileURL = QUrl::fromLocalFile(u"/films/clip.mkv"_s);
        selection->theDevice = u"General"_s;
        selection->userFPS = u"25"_s;
        MCConverter::setCommandRecorder([this](const QString &command) { recorded = command; });
    }
    ~MuxerCommandTest() override { MCConverter::setCommandRecorder({}); }

    QString mux(const MCTrackList &tracks)
    {
        selection->trackList = tracks;
        muxer.inititializeForTrack(0, u"Muxing Tracks"_s, true);
        muxer.startConversionFor(selection);
        return recorded;
    }

    MCSelectionPtr selection = std::make_shared<MCSelection>();
    MCMp4Muxer muxer;
    QString recorded;
    const MCVideoTrackPtr video = muxTrack(u"Video"_s, u"h264"_s, u"/films/clip.mkv"_s, u"none"_s, u"none"_s);
};

} // namespace

TEST_F(MuxerCommandTest, AacComesFirstAndPlaysWhileAc3WaitsInTheSameGroup)
{
    const QString command = mux({video, muxTrack(u"Audio"_s, u"ac3"_s, u"/t/s.ac3"_s, u"German"_s, u"Surround"_s),
                                 muxTrack(u"Audio"_s, u"aac"_s, u"/t/c.aac"_s, u"English"_s, u"none"_s)});
    EXPECT_TRUE(command.contains(u"-add \"/films/clip.mkv\":name='Video Track' "
                                 "-add \"/t/c.aac\":lang=en:name='Audio Track':group=1 "
                                 "-add \"/t/s.ac3\":lang=de:name='Surround':group=1:disable "
                                 "-keepall -new -fps 25 -isma -inter 500 \""_s))
        << command.toStdString();
    // AC-3 audio makes an M4V, named after the source in the save folder.
    EXPECT_TRUE(command.endsWith(u"/clip.mkv.m4v\" &> \"%1/clip.mkv.muxing.log\" & echo $!"_s.arg(prefs.saveFolder)))
        << command.toStdString();

    // Two AC-3 tracks: the first plays; one track alone has no group.
    const QString ac3Only = mux({video, muxTrack(u"Audio"_s, u"ac3"_s, u"/t/1.ac3"_s, u"none"_s, u"One"_s),
                                 muxTrack(u"Audio"_s, u"ac3"_s, u"/t/2.ac3"_s, u"none"_s, u"Two"_s)});
    EXPECT_TRUE(ac3Only.contains(u"name='One':group=1 -add \"/t/2.ac3\":name='Two':group=1:disable"_s)) << ac3Only.toStdString();
    const QString single = mux({video, muxTrack(u"Audio"_s, u"aac"_s, u"/t/c.aac"_s, u"none"_s, u"none"_s)});
    EXPECT_FALSE(single.contains(u"group="_s)) << single.toStdString();
    EXPECT_TRUE(single.contains(u"/clip.mkv.mp4\""_s)) << single.toStdString();
}

TEST_F(MuxerCommandTest, OnlySrtAndSubFilesThatExistAreMuxedAsSubtitles)
{
    const QString folder = QFileInfo(editingMedia(u"x"_s)).path();
    for (const QString &name : {u"a.srt"_s, u"b.sub"_s, u"c.ass"_s, u"d.srt"_s}) {
        QFile file(folder + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const MCVideoTrackPtr burnt = muxTrack(u"Subtitle"_s, u"srt"_s, folder + u"/d.srt"_s, u"none"_s, u"none"_s);
    burnt->userCodec = u"burn"_s;
    const QString command
        = mux({video, muxTrack(u"Subtitle"_s, u"srt"_s, folder + u"/a.srt"_s, u"French"_s, u"none"_s),
               muxTrack(u"External Subtitle"_s, u"ass"_s, folder + u"/c.ass"_s, u"none"_s, u"none"_s), burnt,
               muxTrack(u"External Subtitle"_s, u"sub"_s, folder + u"/b.sub"_s, u"none"_s, u"Signs"_s),
               muxTrack(u"Subtitle"_s, u"srt"_s, folder + u"/gone.srt"_s, u"none"_s, u"none"_s)});
    EXPECT_TRUE(command.contains(u"/a.srt\":lang=fr:name='Subtitle Track':group=2 -add \"%1/b.sub\":name='Signs':group=2:disable -keepall"_s
                                     .arg(folder)))
        << command.toStdString();
    EXPECT_FALSE(command.contains(u"c.ass"_s) || command.contains(u"d.srt"_s) || command.contains(u"gone.srt"_s));
}

TEST_F(MuxerCommandTest, DeviceAndAspectOptions)
{
    // An encoded picture already carries its aspect ratio.
    selection->videoTrackPAR = u"1.185"_s;
    EXPECT_TRUE(mux({video}).contains(u"-par 1=1185:1000 -keepall -new -fps"_s)) << recorded.toStdString();
    video->wasReEncoded = true;
    EXPECT_FALSE(mux({video}).contains(u"-par"_s)) << recorded.toStdString();
    EXPECT_EQ(selection->videoTrackPAR, u"1"_s);

    selection->theDevice = u"iPod"_s;
    EXPECT_TRUE(mux({video}).contains(u"-keepall -new -ipod -fps"_s)) << recorded.toStdString();
    EXPECT_TRUE(recorded.contains(u".m4v\""_s));
    selection->theDevice = u"Apple TV 3"_s;
    EXPECT_FALSE(mux({video}).contains(u"-ipod"_s)) << recorded.toStdString();
    EXPECT_TRUE(recorded.contains(u".m4v\""_s));

    // Removable disks mount under /run/media here, not /Volumes alone.
    EXPECT_TRUE(MCMp4Muxer::isOnOtherVolume(u"/run/media/ann/Disk"_s));
    EXPECT_FALSE(MCMp4Muxer::isOnOtherVolume(u"/home/ann/media"_s));
}

TEST(Mp4BoxProgress, ReadsTheCountBehindTheBar)
{
    EXPECT_EQ(MCMp4BoxStep::progressFromLine(u"Importing AVC-H264: |=====     | (45/100)"_s), u"45%"_s);
    EXPECT_EQ(MCMp4BoxStep::progressFromLine(QString()), u"0%"_s);
    EXPECT_EQ(MCMp4BoxStep::progressFromLine(u"Saving clip.mp4: 0.500 secs Interleaving"_s), u"error"_s);
}

// The level patcher on real streams.
class ProfileEditorTest : public EditingTest
{
protected:
    // Kestrane's own copy of a generated clip, in the save folder.
    QString ownCopy(const QString &source)
    {
        const QString copy = savedPath(QFileInfo(source).fileName());
        QFile::copy(source, copy);
        return copy;
    }

    QString patch(const QString &file, const QString &device, const QString &profile)
    {
        auto selection = std::make_shared<MCSelection>();
        selection->initialize();
        selection->videoTrackFileURL = QUrl::fromLocalFile(editingMedia(u"source.mkv"_s));
        selection->theDevice = device;
        selection->videoTrackProfile = profile;
        return MCProfileEditor().editProfileLevelForURL(QUrl::fromLocalFile(file), selection);
    }
};

TEST_F(ProfileEditorTest, LowersTheLevelOfARawStreamAndOfAnMp4WithItsIndexAtTheEnd)
{
    const QString raw = ownCopy(h264Clip(u"high51.h264"_s, u"high"_s, u"5.1"_s));
    EXPECT_EQ(patch(raw, u"PS3"_s, u"High@L5.1"_s), u"changed"_s);
    EXPECT_EQ(videoProfile(raw), u"High@L4.1"_s);
    EXPECT_TRUE(decodesCleanly(raw));

    const QString mp4 = ownCopy(h264Clip(u"main41.mp4"_s, u"main"_s, u"4.1"_s));
    const QByteArray before = testsupport::checksum(mp4);
    QFile file(mp4);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    ASSERT_GT(bytes.indexOf("avcC"), bytes.indexOf("mdat")) << "the index should follow the media data";
    const qint64 size = QFileInfo(mp4).size();
    // Today's mediainfo reads level 4.0 as "4".
    EXPECT_EQ(patch(mp4, u"apple tv 3"_s, u"Main@L4.1"_s), u"changed"_s);
    EXPECT_EQ(videoProfile(mp4), u"Main@L4"_s);
    EXPECT_TRUE(decodesCleanly(mp4));
    EXPECT_EQ(QFileInfo(mp4).size(), size);
    EXPECT_NE(testsupport::checksum(mp4), before);

    // Nothing to do: the file stays as it is.
    const QByteArray patched = testsupport::checksum(mp4);
    EXPECT_EQ(patch(mp4, u"PS3"_s, u"Main@L4"_s), u"no change needed"_s);
    EXPECT_EQ(patch(mp4, u"General"_s, u"Main@L4"_s), u"no device"_s);
    EXPECT_EQ(testsupport::checksum(mp4), patched);

    // A source is never written.
    const QString source = h264Clip(u"source.mkv"_s, u"high"_s, u"5.1"_s);
    const QByteArray sourceSum = testsupport::checksum(source);
    EXPECT_EQ(patch(source, u"PS3"_s, u"High@L5.1"_s), u"source file"_s);
    EXPECT_EQ(testsupport::checksum(source), sourceSum);
}

TEST(ProfileEditorParts, TargetsPerDevice)
{
    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"Xbox"_s, u"Baseline@L5"_s), u"Baseline@L4.1"_s);
    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"iPad (2 and Earlier)"_s, u"High@L4"_s), u"High@L3.1"_s);
    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"Apple TV 3"_s, u"High@L4.0"_s), QString());
    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"PS3"_s, u"High 10@L5.1"_s), QString());
}

TEST_F(EditingTest, SubtitleConverterDumpsAssAsUtf8SrtInTheGivenFolder)
{
    const QString folder = prefs.saveFolder;
    QFile ass(folder + u"/signs.ass"_s);
    ASSERT_TRUE(ass.open(QIODevice::WriteOnly));
    ass.write("[Script Info]\nScriptType: v4.00+\n\n[V4+ Styles]\nFormat: Name, Fontname, Fontsize\nStyle: Default,Sans,20\n\n"
              "[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
              "Dialogue: 0,0:00:00.50,0:00:02.00,Default,,0,0,0,,Straße à Zürich\n");
    ass.close();
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    selection->videoTrackFileURL = QUrl::fromLocalFile(h264Clip(u"plain.mp4"_s, u"high"_s, u"4.0"_s));
    MCSubtitleConverter converter;
    const QUrl srt = converter.convertSubtitleForURL(QUrl::fromLocalFile(ass.fileName()), selection, folder);
    ASSERT_EQ(srt.toLocalFile(), folder + u"/signs.srt"_s);
    QFile result(srt.toLocalFile());
    ASSERT_TRUE(result.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(result.readAll());
    EXPECT_TRUE(text.contains(u"00:00:00,500 --> 00:00:02,000\nStraße à Zürich\n"_s)) << text.toStdString();
    EXPECT_FALSE(QFile::exists(folder + u"/dumpsub.srt"_s));

    EXPECT_EQ(MCSubtitleConverter::withoutBlanksAfterTimeLines(u"1\n0 --> 1\n \nHi\n\n2\n"_s), u"1\n0 --> 1\nHi\n\n2\n\n"_s);
}
