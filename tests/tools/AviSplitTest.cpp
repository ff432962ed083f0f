#include "StandInSupport.h"

#include <QFileInfo>

namespace {

using namespace Qt::StringLiterals;

// A 10-second XviD AVI at about 400 kB/s with a key frame every second and
// MP3 audio.
class AviSplitTest : public standin::MediaSuite
{
protected:
    static void SetUpTestSuite()
    {
        makeMedia({{u"movie.avi"_s, u"-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=f=440:r=48000 -t 10 -c:v mpeg4 "
                                    "-vtag XVID -g 25 -b:v 3M -minrate 3M -maxrate 3M -bufsize 1M -c:a libmp3lame -b:a 128k"_s}});
    }

    // Checks every piece named `prefix`-NNNN.avi; answers their frames.
    int framesInPieces(const QString &prefix, int atLeast)
    {
        const QStringList pieces = standin::filesIn(out.path()).filter(prefix + u'-');
        EXPECT_GE(pieces.size(), atLeast);
        int frames = 0;
        for (int i = 0; i < pieces.size(); ++i) {
            const QString piece = target(pieces[i]);
            EXPECT_EQ(pieces[i], u"%1-%2.avi"_s.arg(prefix).arg(i, 4, 10, QLatin1Char('0')));
            EXPECT_LE(QFileInfo(piece).size(), 1000000) << pieces[i].toStdString();
            EXPECT_EQ(standin::firstVideoFlags(piece), u"K_"_s) << pieces[i].toStdString();
            EXPECT_NEAR(standin::seconds(piece, u"Audio"_s), standin::seconds(piece, u"Video"_s), 0.1);
            frames += standin::integer(piece, u"Video"_s, u"FrameCount"_s);
        }
        return frames;
    }
};

} // namespace

TEST_F(AviSplitTest, SplitsByTimeFromTheKeyFrameBeforeAndBySizeKeepingEveryFrameEvenWithoutAnIndex)
{
    const QString source = AviSplitTest::source(u"movie.avi"_s);
    const QString cut = target(u"movie.avi.split.avi"_s);
    ASSERT_TRUE(standin::runs(u"avisplit"_s, u"-i \"%1\" -t 00:00:03.5-00:00:07 -c -o \"%2\""_s.arg(source, cut)));
    // 3.5 s asked; the start moves back to a key frame, at most one second.
    const double video = standin::seconds(cut, u"Video"_s);
    EXPECT_GE(video, 3.5 - 0.05);
    EXPECT_LE(video, 4.5 + 0.05);
    EXPECT_NEAR(standin::seconds(cut, u"Audio"_s), video, 0.1);
    EXPECT_EQ(standin::firstVideoFlags(cut), u"K_"_s);
    EXPECT_EQ(testsupport::mediaInfo(cut, u"Video"_s, u"CodecID"_s), u"XVID"_s);
    QFile::remove(cut);

    ASSERT_TRUE(standin::runs(u"avisplit"_s, u"-i \"%1\" -s 1 -H 0 -o \"%2\""_s.arg(source, cut)));
    EXPECT_EQ(framesInPieces(u"movie.avi.split"_s, 4), standin::integer(source, u"Video"_s, u"FrameCount"_s));
}

TEST_F(AviSplitTest, RefusesBadRequestsWithoutWritingAnything)
{
    const QString mkv = testsupport::ffmpeg(out.path(), u"clip.mkv"_s, u"-f lavfi -i testsrc=size=160x120:rate=25 -t 1 -c:v mpeg4"_s);
    const QString source = AviSplitTest::source(u"movie.avi"_s);
    const QString cut = target(u"cut.avi"_s);
    const struct
    {
        QString arguments;
        QString message;
    } cases[] = {
        {u"-i \"%1\" -s 1 -o \"%2\""_s.arg(target(u"missing.avi"_s), cut), u"No such file"_s},
        {u"-i \"%1\" -s 1 -o \"%2\""_s.arg(mkv, cut), u"not an AVI"_s},
        {u"-i \"%1\" -t 00:00:07-00:00:03 -o \"%2\""_s.arg(source, cut), u"ends before"_s},
        {u"-i \"%1\" -t 00:01:00-00:02:00 -o \"%2\""_s.arg(source, cut), u"after the video"_s},
        {u"-i \"%1\" -t 00:00:01-00:00:02 -o \"%2\""_s.arg(source, target(u"no/such/folder/cut.avi"_s)), u"cannot write"_s},
        {u"-i \"%1\" -t 00:00:01-00:00:02 -o \"%1\""_s.arg(source), u"is the input"_s},
    };
    for (const auto &bad : cases) {
        QString log;
        EXPECT_FALSE(standin::runs(u"avisplit"_s, bad.arguments, &log)) << bad.arguments.toStdString();
        EXPECT_TRUE(log.contains(bad.message)) << log.toStdString();
        EXPECT_EQ(standin::filesIn(out.path()), QStringList{u"clip.mkv"_s}) << bad.arguments.toStdString();
    }

    // A file cut short without its index is split whole.
    const QString cutShort = target(u"short.avi"_s);
    standin::write(cutShort, standin::contents(source).left(2400000));
    const int packets = standin::videoPackets(cutShort);
    ASSERT_TRUE(standin::runs(u"avisplit"_s, u"-i \"%1\" -s 1 -H 0 -o \"%2\""_s.arg(cutShort, target(u"piece"_s))));
    EXPECT_NEAR(framesInPieces(u"piece"_s, 3), packets, 1);
}
