#include "Mp4BoxTestSupport.h"

namespace {

using namespace mp4boxtest;

// The join the MP4 editing job composes.
testing::AssertionResult join(const QString &first, const QString &second, const QString &output, QString *log = nullptr)
{
    return mp4box(QStringLiteral("-cat \"%1\" -cat \"%2\" -isma -inter 500 -new \"%3\"").arg(first, second, output), log);
}

QString subtitleText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

// MP4 files as Kestrane's MP4 editing gets them: two parts of one
// recording, a file of another picture size, one with a timecode track, a
// ten-second film at 2 Mbit/s with a key frame every second and B-frames.
class Mp4EditTest : public Mp4BoxSuite
{
protected:
    static void SetUpTestSuite() { makeMedia(make); }

    static void make(const QString &dir)
    {
        QFile srt(dir + QStringLiteral("/subs.srt"));
        if (srt.open(QIODevice::WriteOnly))
            srt.write("1\n00:00:00,500 --> 00:00:01,500\nHello\n\n2\n00:00:02,000 --> 00:00:02,800\nWorld\n");
        srt.close();
        const QString x264 = QStringLiteral(" -c:v libx264 -g 25 -bf 2 -c:a aac");
        testsupport::ffmpeg(dir, QStringLiteral("part1.mp4"),
                            QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=f=440:r=48000 -t 3") + x264);
        testsupport::ffmpeg(dir, QStringLiteral("part2.mp4"),
                            QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=f=640:r=48000 -ss 3 -t 2") + x264);
        testsupport::ffmpeg(dir, QStringLiteral("small.mp4"),
                            QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=r=48000 -t 2") + x264);
        testsupport::ffmpeg(dir, QStringLiteral("timecoded.mp4"),
                            QStringLiteral("-i '%1/part2.mp4' -c copy -timecode 01:00:00:00 -write_tmcd 1").arg(dir));
        testsupport::ffmpeg(dir, QStringLiteral("film.mp4"),
                            QStringLiteral("-f lavfi -i testsrc2=size=640x360:rate=25 -f lavfi -i sine=f=440:r=48000 -t 10 "
                                           "-c:v libx264 -g 25 -bf 2 -b:v 2M -minrate 2M -maxrate 2M -bufsize 1M -c:a aac"));
        testsupport::ffmpeg(dir, QStringLiteral("tracks.mp4"),
                            QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=r=48000 -f lavfi -i sine=r=48000 "
                                           "-i '%1/subs.srt' -map 0 -map 1 -map 2 -map 3 -t 3 -c:v libx264 -bf 2 -c:a:0 aac "
                                           "-ac:a:1 6 -c:a:1 ac3 -c:s mov_text").arg(dir));
    }
};

} // namespace

TEST_F(Mp4EditTest, JoinPutsTheFilesOneAfterTheOther)
{
    const QString joined = target(QStringLiteral("part1.mp4.joined.mp4"));
    ASSERT_TRUE(join(source(QStringLiteral("part1.mp4")), source(QStringLiteral("part2.mp4")), joined));
    EXPECT_EQ(videoPackets(joined), 125);
    EXPECT_NEAR(standin::seconds(joined, QStringLiteral("Video")), 5.0, 0.05);
    EXPECT_NEAR(standin::seconds(joined, QStringLiteral("Audio")), 5.0, 0.1);
    EXPECT_EQ(testsupport::mediaInfo(joined, QStringLiteral("General"), QStringLiteral("IsStreamable")), QStringLiteral("Yes"));
    EXPECT_TRUE(decodesCleanly(joined));
}

TEST_F(Mp4EditTest, JoinThatCannotWorkSaysBadParameterAndCleanedCopiesJoin)
{
    const QString joined = target(QStringLiteral("part1.mp4.joined.mp4"));
    QString log;
    EXPECT_FALSE(join(source(QStringLiteral("part1.mp4")), source(QStringLiteral("small.mp4")), joined, &log));
    EXPECT_TRUE(log.contains(QStringLiteral("Bad Parameter"))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("160x120"))) << log.toStdString();
    EXPECT_TRUE(standin::filesIn(out.path()).isEmpty());

    // A timecode track stops the join; re-adding the file to a new one (the
    // job's retry) leaves it behind, and the copies join.
    EXPECT_FALSE(join(source(QStringLiteral("part1.mp4")), source(QStringLiteral("timecoded.mp4")), joined, &log));
    EXPECT_TRUE(log.contains(QStringLiteral("Bad Parameter (track 3"))) << log.toStdString();
    QStringList cleaned;
    for (const QString &name : {QStringLiteral("part1.mp4"), QStringLiteral("timecoded.mp4")}) {
        cleaned << target(name + QStringLiteral(".tmp.mp4"));
        ASSERT_TRUE(mp4box(QStringLiteral("-add \"%1\" -new \"%2\"").arg(source(name), cleaned.last()), &log));
    }
    ASSERT_TRUE(join(cleaned[0], cleaned[1], joined, &log));
    EXPECT_EQ(videoPackets(joined), 125);
}

TEST_F(Mp4EditTest, SplitsBySizeAndByTimeBesideTheFile)
{
    const QString film = copied(QStringLiteral("film.mp4"));
    QString log;
    ASSERT_TRUE(mp4box(QStringLiteral("-splits 800 -isma -inter 500 \"%1\"").arg(film), &log));
    const QStringList pieces = standin::filesIn(out.path()).filter(QStringLiteral("film_"));
    ASSERT_GE(pieces.size(), 3) << log.toStdString();
    int frames = 0;
    for (int i = 0; i < pieces.size(); ++i) {
        const QString piece = target(pieces[i]);
        EXPECT_EQ(pieces[i], QStringLiteral("film_%1.mp4").arg(i + 1, 3, 10, QLatin1Char('0')));
        EXPECT_LE(QFileInfo(piece).size(), 800000) << pieces[i].toStdString();
        EXPECT_EQ(standin::firstVideoFlags(piece), QStringLiteral("K_")) << pieces[i].toStdString();
        EXPECT_NEAR(standin::seconds(piece, QStringLiteral("Audio")), standin::seconds(piece, QStringLiteral("Video")), 0.1);
        frames += videoPackets(piece);
    }
    EXPECT_EQ(frames, 250);

    // From the key frame at 3 s (before 3.5 s) up to 7 s, all frames shown.
    ASSERT_TRUE(mp4box(QStringLiteral("-splitx 3.5:7 -isma -inter 500 \"%1\"").arg(film), &log));
    const QString range = target(QStringLiteral("film_3_7.mp4"));
    EXPECT_EQ(videoPackets(range), 100);
    EXPECT_NEAR(standin::seconds(range, QStringLiteral("Video")), 4.0, 0.01);
    EXPECT_NEAR(standin::seconds(range, QStringLiteral("Audio")), 4.0, 0.05);

    EXPECT_FALSE(mp4box(QStringLiteral("-splitx 30:40 -isma -inter 500 \"%1\"").arg(film), &log));
    EXPECT_TRUE(log.contains(QStringLiteral("after the video's last frame"))) << log.toStdString();
}

TEST_F(Mp4EditTest, RemovesTracksAndMovesTheIndexInPlace)
{
    // Removal works on Kestrane's own copy, named ".deletedtrack.".
    const QString copy = copied(QStringLiteral("tracks.mp4"), QStringLiteral("tracks.mp4.deletedtrack.mp4"));
    ASSERT_TRUE(mp4box(QStringLiteral("-rem 2 -rem 4 -isma -inter 500 \"%1\"").arg(copy)));
    EXPECT_EQ(standin::everyTrack(copy, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("AC-3|"));
    EXPECT_EQ(standin::integer(copy, QStringLiteral("General"), QStringLiteral("TextCount")), 0);
    EXPECT_EQ(videoPackets(copy), 75);

    // ffmpeg writes the index last; the rewrite moves it to the front.
    const QString film = copied(QStringLiteral("part1.mp4"));
    ASSERT_EQ(testsupport::mediaInfo(film, QStringLiteral("General"), QStringLiteral("IsStreamable")), QStringLiteral("No"));
    ASSERT_TRUE(mp4box(QStringLiteral("-isma -inter 500 \"%1\"").arg(film)));
    EXPECT_EQ(testsupport::mediaInfo(film, QStringLiteral("General"), QStringLiteral("IsStreamable")), QStringLiteral("Yes"));
    EXPECT_EQ(videoPackets(film), 75);
    EXPECT_EQ(standin::filesIn(out.path()), (QStringList{QStringLiteral("part1.mp4"), QStringLiteral("tracks.mp4.deletedtrack.mp4")}));
}

TEST_F(Mp4EditTest, ExtractedTracksLandUnderThePredictedNames)
{
    // "Movie.MP4" keeps its whole name as the short name, as Kestrane predicts.
    const QString movie = copied(QStringLiteral("tracks.mp4"), QStringLiteral("Movie.MP4"));
    QString log;
    for (const QString &option : {QStringLiteral("-raw 1"), QStringLiteral("-raw 2"), QStringLiteral("-raw 3"), QStringLiteral("-srt 4")})
        ASSERT_TRUE(mp4box(QStringLiteral("\"%1\" %2").arg(movie, option), &log)) << option.toStdString();
    EXPECT_EQ(standin::filesIn(out.path()),
              (QStringList{QStringLiteral("Movie.MP4"), QStringLiteral("Movie.MP4_4_text.srt"), QStringLiteral("Movie.MP4_track1.h264"),
                           QStringLiteral("Movie.MP4_track2.aac"), QStringLiteral("Movie.MP4_track3.ac3")}));
    EXPECT_EQ(videoPackets(target(QStringLiteral("Movie.MP4_track1.h264"))), 75);
    EXPECT_EQ(testsupport::mediaInfo(target(QStringLiteral("Movie.MP4_track2.aac")), QStringLiteral("General"), QStringLiteral("Format")),
              QStringLiteral("ADTS"));
    EXPECT_EQ(standin::integer(target(QStringLiteral("Movie.MP4_track3.ac3")), QStringLiteral("Audio"), QStringLiteral("Channels")), 6);
    EXPECT_EQ(subtitleText(target(QStringLiteral("Movie.MP4_4_text.srt"))), subtitleText(source(QStringLiteral("subs.srt"))));

    EXPECT_FALSE(mp4box(QStringLiteral("\"%1\" -raw 4").arg(movie), &log));
    EXPECT_TRUE(log.contains(QStringLiteral("extract them with -srt"))) << log.toStdString();
    EXPECT_FALSE(mp4box(QStringLiteral("\"%1\" -srt 7").arg(movie), &log));
    EXPECT_TRUE(log.contains(QStringLiteral("has no track 7"))) << log.toStdString();
    EXPECT_EQ(standin::filesIn(out.path()).size(), 5);
}
