#include "MCMediaInfoReport.h"
#include "MCTrackListParser.h"
#include "MCVideoFile.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

struct Parsed
{
    MCTrackListResult result;
    MCVideoFile file;
};

QStringList fixture(const QString &name)
{
    return MCMediaInfoReport::lines(testsupport::readTestData(QStringLiteral("mediainfo/") + name + QStringLiteral(".txt")));
}

MCTrackListResult parse(const QString &name)
{
    const MCVideoFile file;
    return file.trackListFromReport(fixture(name), QUrl::fromLocalFile(QStringLiteral("/media/fixtures/") + name));
}

std::string describe(const MCVideoTrack &t)
{
    return QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8|%9")
        .arg(t.trackType, t.trackCodec, t.trackExtension, t.trackInfo, t.trackMp4boxID, t.trackMkvmergeID,
             t.trackFfmpegID, t.trackMencoderID, t.trackIndex)
        .toStdString();
}

} // namespace

TEST(MCTrackListParser, MatroskaAndMp4KeepTitlesAndFullLanguageNames)
{
    const auto mkv = parse(QStringLiteral("h264_ac3_srt.mkv"));
    ASSERT_EQ(mkv.tracks.size(), 3);
    EXPECT_EQ(mkv.tracks[0]->trackTitle, QStringLiteral("Picture"));
    EXPECT_EQ(mkv.tracks[1]->trackTitle, QStringLiteral("Surround"));
    EXPECT_EQ(mkv.tracks[1]->trackLanguage, QStringLiteral("English"));
    EXPECT_EQ(mkv.tracks[2]->trackLanguage, QStringLiteral("French"));
    EXPECT_EQ(mkv.tracks[1]->trackBitRate, QStringLiteral("384"));
    EXPECT_EQ(parse(QStringLiteral("h264_aac_text.mp4")).tracks.value(1)->trackLanguage, QStringLiteral("German"));
    EXPECT_EQ(parse(QStringLiteral("xvid_mp3.avi")).tracks.value(1)->trackBitRate, QStringLiteral("128"));
}

TEST(MCTrackListParser, ProgramStreamAudioGoesByItsStreamId)
{
    // AC-3 and LPCM in the private stream by their sub-stream ids (as
    // `mplayer -identify` lists them: 128, 160); MPEG audio from 0.
    const auto vob = parse(QStringLiteral("ac3_lpcm.vob"));
    ASSERT_TRUE(vob.ok());
    ASSERT_EQ(vob.tracks.size(), 3);
    EXPECT_EQ(vob.tracks[1]->trackInfo, QStringLiteral("Audio: (ac3 6ch.)"));
    EXPECT_EQ(vob.tracks[1]->trackMencoderID, QStringLiteral("128"));
    EXPECT_EQ(vob.tracks[2]->trackCodec, QStringLiteral("wav"));
    EXPECT_EQ(vob.tracks[2]->trackMencoderID, QStringLiteral("160"));
    const auto mpg = parse(QStringLiteral("two_mp2.mpg"));
    ASSERT_TRUE(mpg.ok());
    ASSERT_EQ(mpg.tracks.size(), 3);
    EXPECT_EQ(mpg.tracks[1]->trackMencoderID, QStringLiteral("0"));
    EXPECT_EQ(mpg.tracks[2]->trackMencoderID, QStringLiteral("1"));
    // The video keeps the usual numbering.
    EXPECT_EQ(mpg.tracks[0]->trackMencoderID, QStringLiteral("1"));

    const QString vobName = QStringLiteral("vob");
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(vobName, u"189 (0xBD)-136 (0x88)"), 136);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(vobName, u"223 (0xDF)"), 31);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(vobName, u"224 (0xE0)"), std::nullopt);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(QStringLiteral("M2TS"), u"4352 (0x1100)"), 4352);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(QStringLiteral("mkv"), u"2"), std::nullopt);
}

TEST(MCTrackListParser, EachContainerNumbersItsTracksForEveryTool)
{
    const std::string h264 = "Video|h264|h264|Video: (h264)|1|0|0|0|1";
    const struct
    {
        QString file;
        std::vector<std::string> tracks;
    } cases[] = {
        // AVI streams count from 0 for MEncoder and from 1 for MP4Box.
        {QStringLiteral("xvid_mp3.avi"), {"Video|mpeg4|avi|Video: (mpeg4)|1|0|0|0|1", "Audio|mp3|mp3|Audio: (mp3 2ch.)|2|1|1|1|1"}},
        {QStringLiteral("h264_ac3_srt.mkv"), {h264, "Audio|ac3|ac3|Audio: (ac3 6ch.)|2|1|1|0|1", "Subtitle|srt|srt|Subtitle: (srt)|3|2|2|0|1"}},
        {QStringLiteral("h264_aac_text.mp4"), {h264, "Audio|aac|aac|Audio: (aac 1ch.)|2|1|1|0|1", "Subtitle|ttxt|ttxt|Subtitle: (ttxt)|3|2|2|0|1"}},
        // MPlayer addresses transport stream audio by its packet id, not by
        // the program table's id that the Menu section after it shows.
        {QStringLiteral("stream.ts"), {"Video|mpeg2|mpg|Video: (mpeg2)|1|0|0|1|1", "Audio|mp2|mp2|Audio: (mp2 1ch.)|2|1|1|4114|1"}},
        // Lone audio files are one track with zero ids.
        {QStringLiteral("audio.ogg"), {"Audio|ogg|ogg|Audio: (ogg 1ch.)|1|0|0|1|1"}},
        {QStringLiteral("audio.dts"), {"Audio|dts|dts|Audio: (dts 6ch.)|1|0|0|1|1"}},
        {QStringLiteral("subs.srt"), {"External Subtitle|srt|srt|Subtitle: (srt)|1|0|0|1|0"}},
        {QStringLiteral("hevc_opus.mkv"), {"Video|hevc|hevc|Video: (hevc)|1|0|0|0|1", "Audio|opus|opus|Audio: (opus 2ch.)|2|1|1|0|1"}},
        {QStringLiteral("hevc_aac.mp4"), {"Video|hevc|hevc|Video: (hevc)|1|0|0|0|1", "Audio|aac|aac|Audio: (aac 2ch.)|2|1|1|0|1"}},
        // WebM is Matroska: MPlayer counts its audio from 0.
        {QStringLiteral("vp8_vorbis.webm"), {"Video|vp8|ivf|Video: (vp8)|1|0|0|0|1", "Audio|ogg|ogg|Audio: (ogg 2ch.)|2|1|1|0|1"}},
        // E-AC-3 reads "AC3+": the later class wins over AC-3.
        {QStringLiteral("av1_eac3.mkv"), {"Video|av1|ivf|Video: (av1)|1|0|0|0|1", "Audio|eac3|eac3|Audio: (eac3 6ch.)|2|1|1|0|1"}},
        {QStringLiteral("vp9_truehd.mkv"), {"Video|vp9|ivf|Video: (vp9)|1|0|0|0|1", "Audio|truehd|thd|Audio: (truehd 2ch.)|2|1|1|0|1"}},
        // Flash Video has no IDs: its streams go by position, and MPlayer
        // (through FFmpeg) counts its audio from 0.
        {QStringLiteral("flv_mp3.flv"), {"Video|h263|h263|Video: (h263)|1|0|0|0|1", "Audio|mp3|mp3|Audio: (mp3 2ch.)|2|1|1|0|1"}},
    };
    for (const auto &c : cases) {
        const auto result = parse(c.file);
        ASSERT_TRUE(result.ok()) << c.file.toStdString();
        std::vector<std::string> tracks;
        for (const auto &track : result.tracks)
            tracks.push_back(describe(*track));
        EXPECT_EQ(tracks, c.tracks) << c.file.toStdString();
    }
    EXPECT_EQ(parse(QStringLiteral("notes.txt")).failure, QStringLiteral("not a video"));

    // Bitmap subtitles of Blu-ray discs and broadcasts are kept, not dropped.
    const MCVideoFile file;
    const auto subtitles = file.trackListFromReport({QStringLiteral("Video"), QStringLiteral("Codec  : AVC"),
                                                     QStringLiteral("Text #1"), QStringLiteral("Codec  : S_HDMV/PGS"),
                                                     QStringLiteral("Text #2"), QStringLiteral("Codec  : DVB Subtitle")},
                                                    QUrl::fromLocalFile(QStringLiteral("/x/rec.m2ts")));
    ASSERT_TRUE(subtitles.ok());
    ASSERT_EQ(subtitles.tracks.size(), 3);
    EXPECT_EQ(subtitles.tracks[1]->trackCodec, QStringLiteral("pgs"));
    EXPECT_EQ(subtitles.tracks[2]->trackCodec, QStringLiteral("dvbsub"));
}

TEST(MCTrackListParser, ReportEdgeCases)
{
    const MCVideoFile file;
    const QUrl avi = QUrl::fromLocalFile(QStringLiteral("/x/a.avi"));
    // Video #1 / Video #2 are not headers: no video track at all.
    auto result = file.trackListFromReport({QStringLiteral("Video #1"), QStringLiteral("Codec  : AVC"), QStringLiteral("Video #2")}, avi);
    EXPECT_EQ(result.failure, QStringLiteral("not a video"));
    // An unknown audio codec makes the whole file unidentified; an unknown subtitle is dropped.
    result = file.trackListFromReport({QStringLiteral("Audio"), QStringLiteral("Codec  : Mystery")}, avi);
    EXPECT_EQ(result.failure, QStringLiteral("track not identified"));
    result = file.trackListFromReport({QStringLiteral("Video"), QStringLiteral("Codec  : XVID"), QStringLiteral("Text"),
                                       QStringLiteral("Codec  : Mystery")},
                                      avi);
    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.tracks.size(), 1);
    // The first raw bit rate wins; formatted values and short language codes are skipped.
    result = file.trackListFromReport({QStringLiteral("Audio"), QStringLiteral("Codec  : MPEG-1 Audio layer 3"),
                                       QStringLiteral("Bit rate  : 1411200"), QStringLiteral("Bit rate  : 1 411.2 Kbps"),
                                       QStringLiteral("Bit rate  : 64000"), QStringLiteral("Language  : Lao"),
                                       QStringLiteral("Language  : en"), QStringLiteral("Channel(s)  : 1 channel")},
                                      avi);
    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.tracks[0]->trackBitRate, QStringLiteral("1411"));
    EXPECT_EQ(result.tracks[0]->trackLanguage, QStringLiteral("Lao"));
    EXPECT_EQ(result.tracks[0]->trackNumberOfChannels, QStringLiteral("0"));
    // A later class that also matches wins: MPEG-4 AVC is h264, VFW is VC-1.
    result = file.trackListFromReport({QStringLiteral("Video"), QStringLiteral("Codec  : MPEG4/AVC"), QStringLiteral("Video"),
                                       QStringLiteral("Codec  : vfw")},
                                      avi);
    EXPECT_EQ(result.tracks[0]->trackCodec, QStringLiteral("h264"));
    EXPECT_EQ(result.tracks[1]->trackCodec, QStringLiteral("VC-1"));
}

TEST(MCVideoFileProperties, FrameRateComesFromGeneralAndVideoOnly)
{
    MCVideoFile file;
    file.filePropertiesFromReport(fixture(QStringLiteral("h264_ac3_srt.mkv")));
    EXPECT_EQ(file.theFPS, QStringLiteral("25.000"));
    EXPECT_EQ(file.theWidth, QStringLiteral("320"));
    EXPECT_EQ(file.theHeight, QStringLiteral("240"));
    EXPECT_EQ(file.theNumberOfVideoTracks, QStringLiteral("1"));
    EXPECT_EQ(file.theNumberOfAudioTracks, QStringLiteral("1"));
    EXPECT_EQ(file.theNumberOfSubTracks, QStringLiteral("1"));
    // A second video stream's section ("Video #2") is still a picture section.
    file.filePropertiesFromReport({QStringLiteral("General"), QStringLiteral("Frame rate  : 25.000"), QString(),
                                   QStringLiteral("Video #2"), QStringLiteral("Frame rate  : 23.976"),
                                   QStringLiteral("Frame rate  : 23.976 (24000/1001) FPS"), QString(), QStringLiteral("Audio"),
                                   QStringLiteral("Frame rate  : 31.250"), QString(), QStringLiteral("Menu"),
                                   QStringLiteral("Frame rate  : 10.000")});
    EXPECT_EQ(file.theFPS, QStringLiteral("23.976"));
    EXPECT_EQ(file.theNumberOfVideoTracks, QStringLiteral("0"));
}
