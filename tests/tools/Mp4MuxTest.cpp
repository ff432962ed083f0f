#include "MCHelpers.h"
#include "StandInSupport.h"

namespace {

using namespace Qt::StringLiterals;
using namespace standin;

// How many video frames are shown, and whether one after the other at one
// steady rate, as they are when every B-frame got its display time.
QString framesAndSpacing(const QString &path)
{
    QString output;
    testsupport::run(u"ffprobe -v error -select_streams v:0 -show_entries frame=pts -of csv=p=0 '%1' | "
                     "awk -F, '$1 == \"\" { next } ++n > 1 { d = $1 - p; if (d <= 0 || (s && d != s)) uneven = 1; s = d } { p = $1 } "
                     "END { print n, uneven ? \"uneven\" : \"steady\" }'"_s.arg(path),
                     &output);
    return output.trimmed();
}

// Raw H.264 with B-frames in a pyramid, at the NTSC film rate, and the
// other elementary streams an MP4 conversion prepares; an MP4 and an AVI
// like those Kestrane edits or encodes.
class Mp4MuxTest : public MediaSuite
{
protected:
    static void SetUpTestSuite()
    {
        makeMedia({{u"clip.h264"_s, u"-f lavfi -i testsrc=size=320x240:rate=24000/1001 -frames:v 96 -c:v libx264 -bf 3 -b_strategy 0 "
                                    "-g 24 -pix_fmt yuv420p"_s},
                   {u"main.aac"_s, u"-f lavfi -i sine=f=440:r=48000 -t 4 -ac 2 -c:a aac"_s},
                   {u"surround.ac3"_s, u"-f lavfi -i sine=f=300:r=48000 -t 4 -ac 6 -c:a ac3"_s},
                   {u"dumpsub.srt"_s, {}, "1\n00:00:00,500 --> 00:00:01,500\nHello\n\n2\n00:00:02,000 --> 00:00:03,000\nWorld\n"},
                   {u"film.mp4"_s, u"-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=f=440:r=48000 -t 4 -c:v libx264 -g 25 -c:a aac"_s},
                   {u"movie.avi"_s, u"-f lavfi -i testsrc=size=320x240:rate=25 -t 4 -c:v mpeg4 -vtag XVID -bf 2 -g 25"_s}});
    }
};

} // namespace

TEST_F(Mp4MuxTest, MuxingLineGivesEachTrackItsLanguageTitleGroupAndAspect)
{
    // As the muxing step composes it: AAC before AC-3, one enabled audio
    // track, a title holding a colon, an empty element, -tmp.
    const QString output = target(u"clip.mkv.m4v"_s);
    QString log;
    ASSERT_TRUE(mp4box(u"-add \"%1\":lang=en:name='Video Track' -add \"%2\":lang=de:name='Main':group=1 "
                       "-add \"%3\":lang=un:name='Commentary: Director':group=1:disable "
                       "-add \"%4\":name='Subtitle Track' -par 1=1185:1000 -keepall -new  -fps 23.976 -isma -inter 500 -tmp \"%5\" \"%6\""_s
                           .arg(source(u"clip.h264"_s), source(u"main.aac"_s), source(u"surround.ac3"_s), source(u"dumpsub.srt"_s),
                                out.path(), output),
                       &log));
    EXPECT_EQ(filesIn(out.path()), QStringList{u"clip.mkv.m4v"_s});
    const char *const tracks[][3] = {
        {"Video", "Format", "AVC|"}, {"Audio", "Format", "AAC|AC-3|"}, {"Text", "Format", "Timed Text|"},
        {"Video", "Title", "Video Track|"}, {"Audio", "Title", "Main|Commentary: Director|"}, {"Text", "Title", "Subtitle Track|"},
        {"Video", "Language", "en|"}, {"Audio", "Language", "de||"}, {"Audio", "Default", "Yes|No|"},
        {"Audio", "AlternateGroup", "1|1|"}, {"Video", "PixelAspectRatio", "1.185|"}, {"Video", "FrameRate", "23.976|"},
        {"General", "IsStreamable", "Yes|"},
    };
    for (const auto &[kind, parameter, expected] : tracks)
        EXPECT_EQ(everyTrack(output, QString::fromLatin1(kind), QString::fromLatin1(parameter)), QString::fromLatin1(expected));
    EXPECT_NEAR(seconds(output, u"Audio"_s), seconds(output, u"Video"_s), 0.1);
    // The raw stream has no timestamps: the B-frames must come out in
    // display order at the asked rate.
    EXPECT_EQ(framesAndSpacing(output), u"96 steady"_s);
    EXPECT_TRUE(decodesCleanly(output));
    // The log ends with the progress MP4Box's parser reads.
    EXPECT_TRUE(log.contains(u"| (100/100)"_s)) << log.toStdString();
}

TEST_F(Mp4MuxTest, PixelAspectEditAndMpeg4VideoForAnIpod)
{
    // The PAR editor single-quotes the path and puts ":par=" right after it.
    const QString edited = target(u"film.mp4.newpar.mp4"_s);
    ASSERT_TRUE(mp4box(u"-add '%1':par=1212:1000 -isma -inter 500 -new \"%2\""_s.arg(source(u"film.mp4"_s), edited)));
    EXPECT_EQ(testsupport::mediaInfo(edited, u"Video"_s, u"PixelAspectRatio"_s), u"1.212"_s);
    EXPECT_EQ(integer(edited, u"General"_s, u"AudioCount"_s), 1);
    // The H.264 stream itself says so too, so players that read only it agree.
    EXPECT_EQ(probe(edited, u"-read_intervals %+#1 -show_entries frame=sample_aspect_ratio"_s).section(u',', 0, 0), u"303:250"_s);

    // MPEG-4 video as MEncoder writes it: an AVI with B-frames.
    const QString ipod = target(u"movie.avi.m4v"_s);
    ASSERT_TRUE(mp4box(u"-add \"%1\" -keepall -new -ipod -fps 25 -isma -inter 500 \"%2\""_s.arg(source(u"movie.avi"_s), ipod)));
    EXPECT_EQ(testsupport::mediaInfo(ipod, u"General"_s, u"CodecID"_s), u"M4V"_s);
    EXPECT_EQ(testsupport::mediaInfo(ipod, u"Video"_s, u"Format"_s), u"MPEG-4 Visual"_s);
    EXPECT_EQ(framesAndSpacing(ipod), u"100 steady"_s);
    EXPECT_TRUE(decodesCleanly(ipod));
}

TEST_F(Mp4MuxTest, RefusesWhatItCannotDoAndWritesNothing)
{
    const QString film = copied(u"film.mp4"_s);
    const QByteArray filmSum = testsupport::checksum(film);
    const QString text = target(u"notes.aac"_s);
    write(text, "not audio at all\n");
    const QString wav = testsupport::ffmpeg(out.path(), u"voice.wav"_s, u"-f lavfi -i sine=d=1"_s);
    const QStringList before = filesIn(out.path());
    const QString made = target(u"made.mp4"_s);
    const struct
    {
        QString arguments;
        QString message;
    } cases[] = {
        {u"-add \"%1/missing.h264\":lang=en -new \"%2\""_s.arg(out.path(), made), u"missing.h264: no such file"_s},
        {u"-add \"%1#9\" -new \"%2\""_s.arg(film, made), u"has no track 9"_s},
        {u"-add \"%1\" -new \"%2\""_s.arg(text, made), u"not a media file"_s},
        {u"-add \"%1\" -new \"%2\""_s.arg(wav, made), u"cannot hold pcm_s16le"_s},
        {u"-add \"%1\" -new \"%1\""_s.arg(film), u"is one of the inputs"_s},
        {u"-add \"%1\" -tmp \"%2/nowhere\" -new \"%3\""_s.arg(film, out.path(), made), u"is not a folder"_s},
        // An update in place that fails leaves the file as it was.
        {u"-add \"%1\":lang=xx -keepall \"%2\""_s.arg(wav, film), u"not a language code"_s},
        {u"-add \"%1\" -keepall -isma \"%2\""_s.arg(wav, film), u"cannot hold"_s},
    };
    for (const auto &bad : cases) {
        QString log;
        EXPECT_FALSE(mp4box(bad.arguments, &log)) << bad.arguments.toStdString();
        EXPECT_TRUE(log.contains(bad.message)) << bad.arguments.toStdString() << "\n" << log.toStdString();
        EXPECT_EQ(filesIn(out.path()), before) << bad.arguments.toStdString();
    }
    EXPECT_EQ(testsupport::checksum(film), filmSum);
}

TEST_F(Mp4MuxTest, StoppedMuxLeavesNothingBehind)
{
    // A long raw stream: the same clip many times over, new sequences each time.
    const QString longer = target(u"long.h264"_s);
    ASSERT_EQ(testsupport::run(u"for i in $(seq 1500); do cat '%1'; done > '%2'"_s.arg(source(u"clip.h264"_s), longer)), 0);
    QString pid;
    testsupport::run(u"\"%1\" -add \"%2\" -new -fps 23.976 -isma -inter 500 \"%3/long.mp4\" &> \"%3/muxing.log\" & echo $!"_s
                         .arg(toolPath(kMp4Box), longer, out.path()),
                     &pid);
    pid = pid.trimmed();
    const auto log = [&] { return contents(target(u"muxing.log"_s)); };
    ASSERT_TRUE(testsupport::waitUntil([&] { return log().contains("/100)"); }, 20000)) << log().constData();
    ASSERT_EQ(testsupport::run(u"kill %1"_s.arg(pid)), 0); // SIGTERM, as a job's stop
    ASSERT_TRUE(testsupport::waitUntil([&] { return !MCHelpers::processIsRunning(pid); }, 10000));
    EXPECT_TRUE(log().contains("stopped by signal")) << log().constData();
    EXPECT_EQ(filesIn(out.path()), (QStringList{u"long.h264"_s, u"muxing.log"_s}));
}
