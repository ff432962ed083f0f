#include "MCMediaInfoReport.h"
#include "MCTrackListParser.h"
#include "MCVideoFile.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

MCTrackListResult parse(const QString &name)
{
    return MCVideoFile().trackListFromReport(MCMediaInfoReport::lines(testsupport::readTestData(u"mediainfo/"_s + name + u".txt"_s)),
                                             QUrl::fromLocalFile(u"/media/fixtures/"_s + name));
}

std::string describe(const MCVideoTrack &t)
{
    return u"%1|%2|%3|%4|%5|%6|%7|%8|%9"_s.arg(t.trackType, t.trackCodec, t.trackExtension, t.trackInfo, t.trackMp4boxID,
                                                t.trackMkvmergeID, t.trackFfmpegID, t.trackMencoderID, t.trackIndex).toStdString();
}

} // namespace

TEST(MCTrackListParser, ProgramStreamAudioGoesByItsStreamId)
{
    // AC-3 and LPCM in the private stream by their sub-stream ids (as
    // `mplayer -identify` lists them: 128, 160); MPEG audio from 0.
    const auto vob = parse(u"ac3_lpcm.vob"_s);
    ASSERT_TRUE(vob.ok());
    ASSERT_EQ(vob.tracks.size(), 3);
    EXPECT_EQ(vob.tracks[1]->trackInfo, u"Audio: (ac3 6ch.)"_s);
    EXPECT_EQ(vob.tracks[1]->trackMencoderID, u"128"_s);
    EXPECT_EQ(vob.tracks[2]->trackCodec, u"wav"_s);
    EXPECT_EQ(vob.tracks[2]->trackMencoderID, u"160"_s);
    const auto mpg = parse(u"two_mp2.mpg"_s);
    ASSERT_EQ(mpg.tracks.size(), 3);
    // MPEG audio counts from 0; the video keeps the usual numbering.
    EXPECT_EQ(QStringList({mpg.tracks[0]->trackMencoderID, mpg.tracks[1]->trackMencoderID, mpg.tracks[2]->trackMencoderID}).join(u'/'), u"1/0/1"_s);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(u"vob"_s, u"189 (0xBD)-136 (0x88)"), 136);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(u"vob"_s, u"223 (0xDF)"), 31);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(u"vob"_s, u"224 (0xE0)"), std::nullopt);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(u"M2TS"_s, u"4352 (0x1100)"), 4352);
    EXPECT_EQ(MCTrackListParser::mplayerAudioId(u"mkv"_s, u"2"), std::nullopt);
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
        {u"xvid_mp3.avi"_s, {"Video|mpeg4|avi|Video: (mpeg4)|1|0|0|0|1", "Audio|mp3|mp3|Audio: (mp3 2ch.)|2|1|1|1|1"}},
        {u"h264_ac3_srt.mkv"_s, {h264, "Audio|ac3|ac3|Audio: (ac3 6ch.)|2|1|1|0|1", "Subtitle|srt|srt|Subtitle: (srt)|3|2|2|0|1"}},
        {u"h264_aac_text.mp4"_s, {h264, "Audio|aac|aac|Audio: (aac 1ch.)|2|1|1|0|1", "Subtitle|ttxt|ttxt|Subtitle: (ttxt)|3|2|2|0|1"}},
        // MPlayer addresses transport stream audio by its packet id, not by
        // the program table's id that the Menu section after it shows.
        {u"stream.ts"_s, {"Video|mpeg2|mpg|Video: (mpeg2)|1|0|0|1|1", "Audio|mp2|mp2|Audio: (mp2 1ch.)|2|1|1|4114|1"}},
        // Lone audio files are one track with zero ids.
        {u"audio.ogg"_s, {"Audio|ogg|ogg|Audio: (ogg 1ch.)|1|0|0|1|1"}},
        {u"audio.dts"_s, {"Audio|dts|dts|Audio: (dts 6ch.)|1|0|0|1|1"}},
        {u"subs.srt"_s, {"External Subtitle|srt|srt|Subtitle: (srt)|1|0|0|1|0"}},
        {u"hevc_opus.mkv"_s, {"Video|hevc|hevc|Video: (hevc)|1|0|0|0|1", "Audio|opus|opus|Audio: (opus 2ch.)|2|1|1|0|1"}},
        {u"hevc_aac.mp4"_s, {"Video|hevc|hevc|Video: (hevc)|1|0|0|0|1", "Audio|aac|aac|Audio: (aac 2ch.)|2|1|1|0|1"}},
        // WebM is Matroska: MPlayer counts its audio from 0.
        {u"vp8_vorbis.webm"_s, {"Video|vp8|ivf|Video: (vp8)|1|0|0|0|1", "Audio|ogg|ogg|Audio: (ogg 2ch.)|2|1|1|0|1"}},
        // E-AC-3 reads "AC3+": the later class wins over AC-3.
        {u"av1_eac3.mkv"_s, {"Video|av1|ivf|Video: (av1)|1|0|0|0|1", "Audio|eac3|eac3|Audio: (eac3 6ch.)|2|1|1|0|1"}},
        {u"vp9_truehd.mkv"_s, {"Video|vp9|ivf|Video: (vp9)|1|0|0|0|1", "Audio|truehd|thd|Audio: (truehd 2ch.)|2|1|1|0|1"}},
        // Flash Video has no IDs: its streams go by position, and MPlayer
        // (through FFmpeg) counts its audio from 0.
        {u"flv_mp3.flv"_s, {"Video|h263|h263|Video: (h263)|1|0|0|0|1", "Audio|mp3|mp3|Audio: (mp3 2ch.)|2|1|1|0|1"}},
    };
    for (const auto &c : cases) {
        const auto result = parse(c.file);
        ASSERT_TRUE(result.ok()) << c.file.toStdString();
        std::vector<std::string> tracks;
        for (const auto &track : result.tracks)
            tracks.push_back(describe(*track));
        EXPECT_EQ(tracks, c.tracks) << c.file.toStdString();
    }
    EXPECT_EQ(parse(u"notes.txt"_s).failure, u"not a video"_s);

    // Bitmap subtitles of Blu-ray discs and broadcasts are kept, not dropped.
    const auto subtitles = MCVideoFile().trackListFromReport(
        {u"Video"_s, u"Codec  : AVC"_s, u"Text #1"_s, u"Codec  : S_HDMV/PGS"_s, u"Text #2"_s, u"Codec  : DVB Subtitle"_s},
        QUrl::fromLocalFile(u"/x/rec.m2ts"_s));
    ASSERT_TRUE(subtitles.ok());
    ASSERT_EQ(subtitles.tracks.size(), 3);
    EXPECT_EQ(subtitles.tracks[1]->trackCodec, u"pgs"_s);
    EXPECT_EQ(subtitles.tracks[2]->trackCodec, u"dvbsub"_s);
}

TEST(MCTrackListParser, ReportEdgeCases)
{
    const auto report = [](const QStringList &lines) { return MCVideoFile().trackListFromReport(lines, QUrl::fromLocalFile(u"/x/a.avi"_s)); };
    // Video #1 / Video #2 are not headers: no video track at all.
    EXPECT_EQ(report({u"Video #1"_s, u"Codec  : AVC"_s, u"Video #2"_s}).failure, u"not a video"_s);
    // An unknown audio codec makes the whole file unidentified; an unknown subtitle is dropped.
    EXPECT_EQ(report({u"Audio"_s, u"Codec  : Mystery"_s}).failure, u"track not identified"_s);
    auto result = report({u"Video"_s, u"Codec  : XVID"_s, u"Text"_s, u"Codec  : Mystery"_s});
    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.tracks.size(), 1);
    // The first raw bit rate wins; formatted values and short language codes are skipped.
    result = report({u"Audio"_s, u"Codec  : MPEG-1 Audio layer 3"_s, u"Bit rate  : 1411200"_s, u"Bit rate  : 1 411.2 Kbps"_s,
                     u"Bit rate  : 64000"_s, u"Language  : Lao"_s, u"Language  : en"_s, u"Channel(s)  : 1 channel"_s});
    ASSERT_TRUE(result.ok());
    EXPECT_EQ(result.tracks[0]->trackBitRate, u"1411"_s);
    EXPECT_EQ(result.tracks[0]->trackLanguage, u"Lao"_s);
    EXPECT_EQ(result.tracks[0]->trackNumberOfChannels, u"0"_s);
    // A later class that also matches wins: MPEG-4 AVC is h264, VFW is VC-1.
    result = report({u"Video"_s, u"Codec  : MPEG4/AVC"_s, u"Video"_s, u"Codec  : vfw"_s});
    EXPECT_EQ(result.tracks[0]->trackCodec, u"h264"_s);
    EXPECT_EQ(result.tracks[1]->trackCodec, u"VC-1"_s);
}

TEST(MCVideoFileProperties, FrameRateComesFromGeneralAndVideoOnly)
{
    MCVideoFile file;
    // A second video stream's section ("Video #2") is still a picture section.
    file.filePropertiesFromReport({u"General"_s, u"Frame rate  : 25.000"_s, QString(), u"Video #2"_s, u"Frame rate  : 23.976"_s,
                                   u"Frame rate  : 23.976 (24000/1001) FPS"_s, QString(), u"Audio"_s, u"Frame rate  : 31.250"_s,
                                   QString(), u"Menu"_s, u"Frame rate  : 10.000"_s});
    EXPECT_EQ(file.theFPS, u"23.976"_s);
    EXPECT_EQ(file.theNumberOfVideoTracks, u"0"_s);
}
