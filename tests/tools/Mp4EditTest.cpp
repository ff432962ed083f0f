#include "StandInSupport.h"

#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;
using namespace standin;

// MP4 files as Kestrane's MP4 editing gets them: a ten-second film at
// 2 Mbit/s with a key frame every second and B-frames, and one of many tracks.
class Mp4EditTest : public MediaSuite
{
protected:
    static void SetUpTestSuite()
    {
        makeMedia({{u"subs.srt"_s, {}, "1\n00:00:00,500 --> 00:00:01,500\nHello\n\n2\n00:00:02,000 --> 00:00:02,800\nWorld\n"},
                   {u"film.mp4"_s, u"-f lavfi -i testsrc2=size=640x360:rate=25 -f lavfi -i sine=f=440:r=48000 -t 10 -c:v libx264 -g 25 "
                                   "-bf 2 -b:v 2M -minrate 2M -maxrate 2M -bufsize 1M -c:a aac"_s},
                   {u"tracks.mp4"_s, u"-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=r=48000 -f lavfi -i sine=r=48000 "
                                     "-i 'DIR/subs.srt' -map 0 -map 1 -map 2 -map 3 -t 3 -c:v libx264 -bf 2 -c:a:0 aac "
                                     "-ac:a:1 6 -c:a:1 ac3 -c:s mov_text"_s}});
    }
};

} // namespace

TEST_F(Mp4EditTest, SplitsAndExtractsBesideTheFileUnderThePredictedNames)
{
    const QString film = copied(u"film.mp4"_s);
    QString log;
    ASSERT_TRUE(mp4box(u"-splits 800 -isma -inter 500 \"%1\""_s.arg(film), &log));
    const QStringList pieces = filesIn(out.path()).filter(u"film_"_s);
    ASSERT_GE(pieces.size(), 3) << log.toStdString();
    int frames = 0;
    for (int i = 0; i < pieces.size(); ++i) {
        const QString piece = target(pieces[i]);
        EXPECT_EQ(pieces[i], u"film_%1.mp4"_s.arg(i + 1, 3, 10, QLatin1Char('0')));
        EXPECT_LE(QFileInfo(piece).size(), 800000) << pieces[i].toStdString();
        EXPECT_EQ(firstVideoFlags(piece), u"K_"_s) << pieces[i].toStdString();
        EXPECT_NEAR(seconds(piece, u"Audio"_s), seconds(piece, u"Video"_s), 0.1);
        frames += videoPackets(piece);
    }
    EXPECT_EQ(frames, 250);

    // From the key frame at 3 s (before 3.5 s) up to 7 s, all frames shown.
    ASSERT_TRUE(mp4box(u"-splitx 3.5:7 -isma -inter 500 \"%1\""_s.arg(film), &log));
    const QString range = target(u"film_3_7.mp4"_s);
    EXPECT_EQ(videoPackets(range), 100);
    EXPECT_NEAR(seconds(range, u"Video"_s), 4.0, 0.01);
    EXPECT_NEAR(seconds(range, u"Audio"_s), 4.0, 0.05);

    EXPECT_FALSE(mp4box(u"-splitx 30:40 -isma -inter 500 \"%1\""_s.arg(film), &log));
    EXPECT_TRUE(log.contains(u"after the video's last frame"_s)) << log.toStdString();

    // Extracted tracks land under the names Kestrane predicts: "Movie.MP4"
    // keeps its whole name as the short name.
    const QString movie = copied(u"tracks.mp4"_s, u"Movie.MP4"_s);
    for (const QString &option : {u"-raw 1"_s, u"-raw 2"_s, u"-raw 3"_s, u"-srt 4"_s})
        ASSERT_TRUE(mp4box(u"\"%1\" %2"_s.arg(movie, option), &log)) << option.toStdString();
    EXPECT_EQ(filesIn(out.path()).filter(u"Movie.MP4"_s), (QStringList{u"Movie.MP4"_s, u"Movie.MP4_4_text.srt"_s, u"Movie.MP4_track1.h264"_s,
                                                u"Movie.MP4_track2.aac"_s, u"Movie.MP4_track3.ac3"_s}));
    EXPECT_EQ(videoPackets(target(u"Movie.MP4_track1.h264"_s)), 75);
    EXPECT_EQ(contents(target(u"Movie.MP4_4_text.srt"_s)).trimmed(), contents(source(u"subs.srt"_s)).trimmed());

    EXPECT_FALSE(mp4box(u"\"%1\" -raw 4"_s.arg(movie), &log));
    EXPECT_TRUE(log.contains(u"extract them with -srt"_s)) << log.toStdString();
    EXPECT_FALSE(mp4box(u"\"%1\" -srt 7"_s.arg(movie), &log));
    EXPECT_TRUE(log.contains(u"has no track 7"_s)) << log.toStdString();
    EXPECT_EQ(filesIn(out.path()).filter(u"Movie.MP4"_s).size(), 5);
}
