#include "MCHelpers.h"
#include "StandInSupport.h"

namespace {

using namespace standin;

// Display times of the decoded video frames, in decoding output order.
QList<qint64> shownTimes(const QString &path)
{
    QString output;
    testsupport::run(QStringLiteral("ffprobe -v error -select_streams v:0 -show_entries frame=pts -of csv=p=0 '%1'").arg(path), &output);
    QList<qint64> times;
    for (const QString &line : output.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        times.append(line.trimmed().toLongLong());
    return times;
}

// True when frames come one after the other at one steady rate, as they do
// when every B-frame got its display time.
bool steadilySpaced(const QList<qint64> &times)
{
    if (times.size() < 3)
        return false;
    const qint64 step = times[1] - times[0];
    for (qsizetype i = 1; i < times.size(); ++i) {
        if (times[i] - times[i - 1] != step || step <= 0)
            return false;
    }
    return true;
}

// Raw H.264 with B-frames in a pyramid, at the NTSC film rate, and the
// other elementary streams an MP4 conversion prepares; an MP4 and an AVI
// like those Kestrane edits or encodes.
class Mp4MuxTest : public MediaSuite
{
protected:
    static void SetUpTestSuite() { makeMedia(make); }

    static void make(const QString &dir)
    {
        testsupport::ffmpeg(dir, QStringLiteral("clip.h264"),
                            QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=24000/1001 -frames:v 96 -c:v libx264 "
                                           "-bf 3 -b_strategy 0 -g 24 -pix_fmt yuv420p"));
        testsupport::ffmpeg(dir, QStringLiteral("main.aac"), QStringLiteral("-f lavfi -i sine=f=440:r=48000 -t 4 -ac 2 -c:a aac"));
        testsupport::ffmpeg(dir, QStringLiteral("surround.ac3"),
                            QStringLiteral("-f lavfi -i sine=f=300:r=48000 -t 4 -ac 6 -c:a ac3"));
        write(dir + QStringLiteral("/dumpsub.srt"), "1\n00:00:00,500 --> 00:00:01,500\nHello\n\n2\n00:00:02,000 --> 00:00:03,000\nWorld\n");
        testsupport::ffmpeg(dir, QStringLiteral("film.mp4"),
                            QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=f=440:r=48000 -t 4 "
                                           "-c:v libx264 -g 25 -c:a aac"));
        testsupport::ffmpeg(dir, QStringLiteral("movie.avi"),
                            QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=25 -t 4 -c:v mpeg4 -vtag XVID -bf 2 -g 25"));
    }
};

} // namespace

TEST_F(Mp4MuxTest, MuxingLineGivesEachTrackItsLanguageTitleGroupAndAspect)
{
    // As the muxing step composes it: AAC before AC-3, one enabled audio
    // track, a title holding a colon, an empty element, -tmp.
    const QString output = target(QStringLiteral("clip.mkv.m4v"));
    QString log;
    ASSERT_TRUE(
        mp4box(QStringLiteral("-add \"%1\":lang=en:name='Video Track' -add \"%2\":lang=de:name='Main':group=1 "
                              "-add \"%3\":lang=un:name='Commentary: Director':group=1:disable "
                              "-add \"%4\":name='Subtitle Track' -par 1=1185:1000 -keepall -new  -fps 23.976 -isma "
                              "-inter 500 -tmp \"%5\" \"%6\"")
                   .arg(source(QStringLiteral("clip.h264")), source(QStringLiteral("main.aac")),
                        source(QStringLiteral("surround.ac3")), source(QStringLiteral("dumpsub.srt")), out.path(), output),
               &log));

    EXPECT_EQ(filesIn(out.path()), QStringList{QStringLiteral("clip.mkv.m4v")});
    const char *const tracks[][3] = {
        {"Video", "Format", "AVC|"}, {"Audio", "Format", "AAC|AC-3|"}, {"Text", "Format", "Timed Text|"},
        {"Video", "Title", "Video Track|"}, {"Audio", "Title", "Main|Commentary: Director|"}, {"Text", "Title", "Subtitle Track|"},
        {"Video", "Language", "en|"}, {"Audio", "Language", "de||"}, {"Audio", "Default", "Yes|No|"},
        {"Audio", "AlternateGroup", "1|1|"},
    };
    for (const auto &[kind, parameter, expected] : tracks)
        EXPECT_EQ(everyTrack(output, QString::fromLatin1(kind), QString::fromLatin1(parameter)), QString::fromLatin1(expected));
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Video"), QStringLiteral("PixelAspectRatio")), QStringLiteral("1.185"));
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Video"), QStringLiteral("FrameRate")), QStringLiteral("23.976"));
    EXPECT_EQ(integer(output, QStringLiteral("Video"), QStringLiteral("FrameCount")), 96);
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("General"), QStringLiteral("IsStreamable")), QStringLiteral("Yes"));
    EXPECT_NEAR(seconds(output, QStringLiteral("Audio")), seconds(output, QStringLiteral("Video")), 0.1);

    // The raw stream has no timestamps: the B-frames must come out in
    // display order at the asked rate.
    const QList<qint64> times = shownTimes(output);
    EXPECT_EQ(times.size(), 96);
    EXPECT_TRUE(steadilySpaced(times));
    EXPECT_TRUE(decodesCleanly(output));
    // The log ends with the progress MP4Box's parser reads.
    EXPECT_TRUE(log.contains(QStringLiteral("| (100/100)"))) << log.toStdString();
}

TEST_F(Mp4MuxTest, PixelAspectEditAndMpeg4VideoForAnIpod)
{
    // The PAR editor single-quotes the path and puts ":par=" right after it.
    const QString edited = target(QStringLiteral("film.mp4.newpar.mp4"));
    ASSERT_TRUE(mp4box(
        QStringLiteral("-add '%1':par=1212:1000 -isma -inter 500 -new \"%2\"").arg(source(QStringLiteral("film.mp4")), edited)));
    EXPECT_EQ(testsupport::mediaInfo(edited, QStringLiteral("Video"), QStringLiteral("PixelAspectRatio")), QStringLiteral("1.212"));
    EXPECT_EQ(integer(edited, QStringLiteral("General"), QStringLiteral("AudioCount")), 1);
    // The H.264 stream itself says so too, so players that read only it agree.
    EXPECT_EQ(probe(edited, QStringLiteral("-read_intervals %+#1 -show_entries frame=sample_aspect_ratio")).section(QLatin1Char(','), 0, 0),
              QStringLiteral("303:250"));

    // MPEG-4 video as MEncoder writes it: an AVI with B-frames.
    const QString ipod = target(QStringLiteral("movie.avi.m4v"));
    ASSERT_TRUE(mp4box(QStringLiteral("-add \"%1\" -keepall -new -ipod -fps 25 -isma -inter 500 \"%2\"")
                           .arg(source(QStringLiteral("movie.avi")), ipod)));
    EXPECT_EQ(testsupport::mediaInfo(ipod, QStringLiteral("General"), QStringLiteral("CodecID")), QStringLiteral("M4V"));
    EXPECT_EQ(testsupport::mediaInfo(ipod, QStringLiteral("Video"), QStringLiteral("Format")), QStringLiteral("MPEG-4 Visual"));
    const QList<qint64> times = shownTimes(ipod);
    EXPECT_EQ(times.size(), 100);
    EXPECT_TRUE(steadilySpaced(times));
    EXPECT_TRUE(decodesCleanly(ipod));
}

TEST_F(Mp4MuxTest, RefusesWhatItCannotDoAndWritesNothing)
{
    const QString film = copied(QStringLiteral("film.mp4"));
    const QByteArray filmSum = testsupport::checksum(film);
    const QString text = target(QStringLiteral("notes.aac"));
    write(text, "not audio at all\n");
    const QString wav = testsupport::ffmpeg(out.path(), QStringLiteral("voice.wav"), QStringLiteral("-f lavfi -i sine=d=1"));
    const QStringList before = filesIn(out.path());
    const QString made = target(QStringLiteral("made.mp4"));

    const struct
    {
        QString arguments;
        QString message;
    } cases[] = {
        {QStringLiteral("-add \"%1/missing.h264\":lang=en -new \"%2\"").arg(out.path(), made), QStringLiteral("missing.h264: no such file")},
        {QStringLiteral("-add \"%1#9\" -new \"%2\"").arg(film, made), QStringLiteral("has no track 9")},
        {QStringLiteral("-add \"%1\" -new \"%2\"").arg(text, made), QStringLiteral("not a media file")},
        {QStringLiteral("-add \"%1\" -new \"%2\"").arg(wav, made), QStringLiteral("cannot hold pcm_s16le")},
        {QStringLiteral("-add \"%1\" -hint -new \"%2\"").arg(film, made), QStringLiteral("unknown option \"-hint\"")},
        {QStringLiteral("-add \"%1\" -new \"%1\"").arg(film), QStringLiteral("is one of the inputs")},
        {QStringLiteral("-add \"%1\" -tmp \"%2/nowhere\" -new \"%3\"").arg(film, out.path(), made), QStringLiteral("is not a folder")},
        // An update in place that fails leaves the file as it was.
        {QStringLiteral("-add \"%1\":lang=xx -keepall \"%2\"").arg(wav, film), QStringLiteral("not a language code")},
        {QStringLiteral("-add \"%1\" -keepall -isma \"%2\"").arg(wav, film), QStringLiteral("cannot hold")},
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
    const QString longer = target(QStringLiteral("long.h264"));
    ASSERT_EQ(testsupport::run(QStringLiteral("for i in $(seq 1500); do cat '%1'; done > '%2'").arg(source(QStringLiteral("clip.h264")), longer)), 0);
    QString pid;
    testsupport::run(QStringLiteral("\"%1\" -add \"%2\" -new -fps 23.976 -isma -inter 500 \"%3/long.mp4\" &> \"%3/muxing.log\" & echo $!")
                         .arg(toolPath(kMp4Box), longer, out.path()),
                     &pid);
    const auto log = [&] { return contents(target(QStringLiteral("muxing.log"))); };
    ASSERT_TRUE(testsupport::waitUntil([&] { return log().contains("/100)"); }, 20000)) << log().constData();
    ASSERT_EQ(testsupport::run(QStringLiteral("kill %1").arg(pid.trimmed())), 0); // SIGTERM, as a job's stop
    ASSERT_TRUE(testsupport::waitUntil([&] { return !MCHelpers::processIsRunning(pid.trimmed()); }, 10000));
    EXPECT_TRUE(log().contains("stopped by signal")) << log().constData();
    EXPECT_EQ(filesIn(out.path()), (QStringList{QStringLiteral("long.h264"), QStringLiteral("muxing.log")}));
}
