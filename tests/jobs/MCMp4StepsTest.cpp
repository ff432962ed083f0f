#include "MCMp4Muxer.h"
#include "MCProfileEditor.h"
#include "MCSubtitleConverter.h"
#include "MkvTestSupport.h"

namespace {

// The MP4Box command the muxer composes (not started) for tracks written
// "Type|codec|file|language|title[|userCodec]"; SUBS stands for a folder
// holding a.srt, b.sub, c.ass and d.srt, SAVE for the save folder.
TEST_F(EditingTest, Mp4MuxerCommands)
{
    const QString subs = QFileInfo(editingMedia(u"x"_s)).path();
    for (const QString &name : {u"a.srt"_s, u"b.sub"_s, u"c.ass"_s, u"d.srt"_s})
        writeFile(subs + u'/' + name, {});
    const QString video = u"Video|h264|/films/clip.mkv|none|none"_s;
    const struct
    {
        const char *what;
        QString device, par;
        bool reEncoded;
        QStringList tracks, present, absent;
    } cases[] = {
        {"AAC comes first and plays while AC-3 waits in its group", u"General"_s, u"1"_s, false,
         {video, u"Audio|ac3|/t/s.ac3|German|Surround"_s, u"Audio|aac|/t/c.aac|English|none"_s},
         {u"-add \"/films/clip.mkv\":name='Video Track' -add \"/t/c.aac\":lang=en:name='Audio Track':group=1 "
          "-add \"/t/s.ac3\":lang=de:name='Surround':group=1:disable -keepall -new -fps 25 -isma -inter 500 \""_s,
          u"/clip.mkv.m4v\" &> \"SAVE/clip.mkv.muxing.log\" & echo $!"_s},
         {}},
        {"of two AC-3 tracks the first plays", u"General"_s, u"1"_s, false,
         {video, u"Audio|ac3|/t/1.ac3|none|One"_s, u"Audio|ac3|/t/2.ac3|none|Two"_s},
         {u"name='One':group=1 -add \"/t/2.ac3\":name='Two':group=1:disable"_s}, {}},
        {"one track alone has no group and makes an MP4", u"General"_s, u"1"_s, false,
         {video, u"Audio|aac|/t/c.aac|none|none"_s}, {u"/clip.mkv.mp4\""_s}, {u"group="_s}},
        {"only SRT and SUB files that exist are muxed as subtitles", u"General"_s, u"1"_s, false,
         {video, u"Subtitle|srt|SUBS/a.srt|French|none"_s, u"External Subtitle|ass|SUBS/c.ass|none|none"_s,
          u"Subtitle|srt|SUBS/d.srt|none|none|burn"_s, u"External Subtitle|sub|SUBS/b.sub|none|Signs"_s,
          u"Subtitle|srt|SUBS/gone.srt|none|none"_s},
         {u"/a.srt\":lang=fr:name='Subtitle Track':group=2 -add \"SUBS/b.sub\":name='Signs':group=2:disable -keepall"_s},
         {u"c.ass"_s, u"d.srt"_s, u"gone.srt"_s}},
        {"a copied picture keeps its aspect ratio", u"General"_s, u"1.185"_s, false, {video},
         {u"-par 1=1185:1000 -keepall -new -fps"_s}, {}},
        {"an encoded picture already carries it", u"General"_s, u"1.185"_s, true, {video}, {}, {u"-par"_s}},
        {"an iPod file", u"iPod"_s, u"1"_s, false, {video}, {u"-keepall -new -ipod -fps"_s, u".m4v\""_s}, {}},
        {"Apple TV takes no iPod flavour", u"Apple TV 3"_s, u"1"_s, false, {video}, {u".m4v\""_s}, {u"-ipod"_s}},
    };
    QString command;
    MCConverter::setCommandRecorder([&command](const QString &recorded) { command = recorded; });
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        auto selection = std::make_shared<MCSelection>();
        selection->initialize();
        selection->videoTrackFileURL = QUrl::fromLocalFile(u"/films/clip.mkv"_s);
        selection->theDevice = c.device;
        selection->userFPS = u"25"_s;
        selection->videoTrackPAR = c.par;
        for (const QString &written : c.tracks) {
            const QStringList field = QString(written).replace(u"SUBS"_s, subs).split(u'|');
            const MCVideoTrackPtr track = makeTrack(field[0], field[1], field[2]);
            track->trackLanguage = field[3];
            track->trackTitle = field[4];
            track->trackMp4boxID = u"1"_s;
            track->userCodec = field.value(5, field[0].contains(u"Subtitle"_s) ? u"mux"_s : u"passthru"_s);
            track->initializeForMuxing();
            track->muxingTrackMp4boxID = u"one track"_s;
            track->wasReEncoded = c.reEncoded;
            selection->trackList << track;
        }
        MCMp4Muxer muxer;
        muxer.inititializeForTrack(0, u"Muxing Tracks"_s, true);
        muxer.startConversionFor(selection);
        for (const QString &part : c.present)
            EXPECT_TRUE(command.contains(QString(part).replace(u"SUBS"_s, subs).replace(u"SAVE"_s, prefs.saveFolder)))
                << part.toStdString() << "\n" << command.toStdString();
        for (const QString &part : c.absent)
            EXPECT_FALSE(command.contains(part)) << part.toStdString() << "\n" << command.toStdString();
        if (c.reEncoded) {
            EXPECT_EQ(selection->videoTrackPAR, u"1"_s);
        }
    }
    MCConverter::setCommandRecorder({});
    // Removable disks mount under /run/media here, not /Volumes alone.
    EXPECT_TRUE(MCMp4Muxer::isOnOtherVolume(u"/run/media/ann/Disk"_s));
    EXPECT_FALSE(MCMp4Muxer::isOnOtherVolume(u"/home/ann/media"_s));
}

// The level patcher on an MP4 (a raw stream is patched in the PS3 conversion).
TEST_F(EditingTest, ProfileEditorLowersTheLevelOfAnMp4WithItsIndexAtTheEnd)
{
    const auto patch = [](const QString &file, const QString &device, const QString &profile) {
        auto selection = std::make_shared<MCSelection>();
        selection->initialize();
        selection->videoTrackFileURL = QUrl::fromLocalFile(editingMedia(u"source.mkv"_s));
        selection->theDevice = device;
        selection->videoTrackProfile = profile;
        return MCProfileEditor().editProfileLevelForURL(QUrl::fromLocalFile(file), selection);
    };
    // Kestrane's own copy of a generated clip, in the save folder.
    const QString mp4 = savedPath(u"main41.mp4"_s);
    QFile::copy(h264Clip(u"main41.mp4"_s, u"main"_s, u"4.1"_s), mp4);
    const QByteArray before = testsupport::checksum(mp4);
    ASSERT_GT(readFile(mp4).indexOf("avcC"), readFile(mp4).indexOf("mdat")) << "the index should follow the media data";
    const qint64 size = QFileInfo(mp4).size();
    // Today's mediainfo reads level 4.0 as "4".
    EXPECT_EQ(patch(mp4, u"apple tv 3"_s, u"Main@L4.1"_s), u"changed"_s);
    EXPECT_EQ(testsupport::mediaInfo(mp4, u"Video"_s, u"Format_Profile"_s), u"Main@L4"_s);
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

    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"Xbox"_s, u"Baseline@L5"_s), u"Baseline@L4.1"_s);
    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"iPad (2 and Earlier)"_s, u"High@L4"_s), u"High@L3.1"_s);
    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"Apple TV 3"_s, u"High@L4.0"_s), QString());
    EXPECT_EQ(MCProfileEditor::targetProfileFor(u"PS3"_s, u"High 10@L5.1"_s), QString());
}

TEST_F(EditingTest, SubtitleConverterDumpsAssAsUtf8SrtInTheGivenFolder)
{
    const QString folder = prefs.saveFolder;
    const QString ass = writeFile(folder + u"/signs.ass"_s,
                                  "[Script Info]\nScriptType: v4.00+\n\n[V4+ Styles]\nFormat: Name, Fontname, Fontsize\n"
                                  "Style: Default,Sans,20\n\n[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, "
                                  "MarginR, MarginV, Effect, Text\nDialogue: 0,0:00:00.50,0:00:02.00,Default,,0,0,0,,Straße à Zürich\n");
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    selection->videoTrackFileURL = QUrl::fromLocalFile(h264Clip(u"plain.mp4"_s, u"high"_s, u"4.0"_s));
    MCSubtitleConverter converter;
    const QUrl srt = converter.convertSubtitleForURL(QUrl::fromLocalFile(ass), selection, folder);
    ASSERT_EQ(srt.toLocalFile(), folder + u"/signs.srt"_s);
    const QString text = QString::fromUtf8(readFile(srt.toLocalFile()));
    EXPECT_TRUE(text.contains(u"00:00:00,500 --> 00:00:02,000\nStraße à Zürich\n"_s)) << text.toStdString();
    EXPECT_FALSE(QFile::exists(folder + u"/dumpsub.srt"_s));

    EXPECT_EQ(MCSubtitleConverter::withoutBlanksAfterTimeLines(u"1\n0 --> 1\n \nHi\n\n2\n"_s), u"1\n0 --> 1\nHi\n\n2\n\n"_s);
}

} // namespace
