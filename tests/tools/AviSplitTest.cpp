#include "StandInSupport.h"

#include <QTemporaryDir>

#include <memory>

#include <gtest/gtest.h>

namespace {

// A 10-second XviD AVI at about 400 kB/s with a key frame every second and
// MP3 audio, made once for the whole suite.
class AviSplitTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        media = std::make_unique<QTemporaryDir>();
        source = testsupport::ffmpeg(media->path(), QStringLiteral("movie.avi"),
                                     QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=f=440:r=48000 "
                                                    "-t 10 -c:v mpeg4 -vtag XVID -g 25 -b:v 3M -minrate 3M -maxrate 3M "
                                                    "-bufsize 1M -c:a libmp3lame -b:a 128k"));
        sourceSum = standin::checksum(source);
    }
    static void TearDownTestSuite() { media.reset(); }
    void TearDown() override { EXPECT_EQ(standin::checksum(source), sourceSum) << "the input was changed"; }

    QTemporaryDir out;
    static inline std::unique_ptr<QTemporaryDir> media;
    static inline QString source;
    static inline QByteArray sourceSum;
};

} // namespace

TEST_F(AviSplitTest, TimeRangeStartsAtTheKeyFrameBeforeItAndKeepsAudioInStep)
{
    const QString cut = out.path() + QStringLiteral("/movie.avi.split.avi");
    ASSERT_TRUE(standin::runs(QStringLiteral("avisplit"),
                              QStringLiteral("-i \"%1\" -t 00:00:03.5-00:00:07 -c -o \"%2\"").arg(source, cut)));
    EXPECT_EQ(standin::filesIn(out.path()), QStringList{QStringLiteral("movie.avi.split.avi")});

    // 3.5 s asked; the start moves back to a key frame, at most one second.
    const double video = standin::seconds(cut, QStringLiteral("Video"));
    EXPECT_GE(video, 3.5 - 0.05);
    EXPECT_LE(video, 4.5 + 0.05);
    EXPECT_NEAR(standin::seconds(cut, QStringLiteral("Audio")), video, 0.1);
    EXPECT_EQ(standin::firstVideoFlags(cut), QStringLiteral("K_"));
    EXPECT_EQ(testsupport::mediaInfo(cut, QStringLiteral("Video"), QStringLiteral("CodecID")), QStringLiteral("XVID"));
}

TEST_F(AviSplitTest, SizeSplitKeepsEveryFrameInPiecesWithinTheSize)
{
    const QString base = out.path() + QStringLiteral("/movie.avi.split.avi");
    QString log;
    ASSERT_TRUE(
        standin::runs(QStringLiteral("avisplit"), QStringLiteral("-i \"%1\" -s 1 -H 0 -o \"%2\"").arg(source, base), &log));
    const QStringList pieces = standin::filesIn(out.path());
    ASSERT_GE(pieces.size(), 4) << log.toStdString();
    int frames = 0;
    for (int i = 0; i < pieces.size(); ++i) {
        const QString piece = out.path() + QLatin1Char('/') + pieces[i];
        EXPECT_EQ(pieces[i], QStringLiteral("movie.avi.split-%1.avi").arg(i, 4, 10, QLatin1Char('0')));
        EXPECT_LE(QFileInfo(piece).size(), 1000000) << pieces[i].toStdString();
        EXPECT_EQ(standin::firstVideoFlags(piece), QStringLiteral("K_")) << pieces[i].toStdString();
        EXPECT_NEAR(standin::seconds(piece, QStringLiteral("Audio")), standin::seconds(piece, QStringLiteral("Video")), 0.1);
        frames += standin::integer(piece, QStringLiteral("Video"), QStringLiteral("FrameCount"));
    }
    EXPECT_EQ(frames, standin::integer(source, QStringLiteral("Video"), QStringLiteral("FrameCount")));
}

TEST_F(AviSplitTest, PieceLimitLeavesTheRestUnwritten)
{
    const QString base = out.path() + QStringLiteral("/part");
    QString log;
    ASSERT_TRUE(
        standin::runs(QStringLiteral("avisplit"), QStringLiteral("-i \"%1\" -s 1 -H 2 -o \"%2\"").arg(source, base), &log));
    EXPECT_EQ(standin::filesIn(out.path()), (QStringList{QStringLiteral("part-0000.avi"), QStringLiteral("part-0001.avi")}));
    EXPECT_TRUE(log.contains(QStringLiteral("not written"))) << log.toStdString();
}

TEST_F(AviSplitTest, RefusesBadRequestsWithoutWritingAnything)
{
    const QString mkv = testsupport::ffmpeg(out.path(), QStringLiteral("clip.mkv"),
                                            QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -t 1 -c:v mpeg4"));
    const QString target = out.path() + QStringLiteral("/cut.avi");
    const struct
    {
        QString arguments;
        QString message;
    } cases[] = {
        {QStringLiteral("-i \"%1/missing.avi\" -s 1 -o \"%2\"").arg(out.path(), target), QStringLiteral("No such file")},
        {QStringLiteral("-i \"%1\" -s 1 -o \"%2\"").arg(mkv, target), QStringLiteral("not an AVI")},
        {QStringLiteral("-i \"%1\" -s 1 -x -o \"%2\"").arg(source, target), QStringLiteral("unknown option")},
        {QStringLiteral("-i \"%1\" -s 0 -o \"%2\"").arg(source, target), QStringLiteral("positive number")},
        {QStringLiteral("-i \"%1\" -t 00:00:07-00:00:03 -o \"%2\"").arg(source, target), QStringLiteral("ends before")},
        {QStringLiteral("-i \"%1\" -t 00:01:00-00:02:00 -o \"%2\"").arg(source, target), QStringLiteral("after the video")},
        {QStringLiteral("-i \"%1\" -t 00:00:01-00:00:02 -o \"%2/no/such/folder/cut.avi\"").arg(source, out.path()),
         QStringLiteral("cannot write")},
        {QStringLiteral("-i \"%1\" -t 00:00:01-00:00:02 -o \"%1\"").arg(source), QStringLiteral("is the input")},
    };
    for (const auto &bad : cases) {
        QString log;
        EXPECT_FALSE(standin::runs(QStringLiteral("avisplit"), bad.arguments, &log)) << bad.arguments.toStdString();
        EXPECT_TRUE(log.contains(bad.message)) << log.toStdString();
        EXPECT_EQ(standin::filesIn(out.path()), QStringList{QStringLiteral("clip.mkv")}) << bad.arguments.toStdString();
    }
}

TEST_F(AviSplitTest, FileCutShortWithoutItsIndexIsSplitWhole)
{
    QFile whole(source);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    QFile cutShort(out.path() + QStringLiteral("/short.avi"));
    ASSERT_TRUE(cutShort.open(QIODevice::WriteOnly));
    cutShort.write(whole.read(2400000));
    cutShort.close();
    QString packets;
    testsupport::run(QStringLiteral("ffprobe -v error -select_streams v -count_packets -show_entries stream=nb_read_packets "
                                    "-of csv=p=0 '%1'").arg(cutShort.fileName()), &packets);

    QString log;
    ASSERT_TRUE(standin::runs(QStringLiteral("avisplit"),
                              QStringLiteral("-i \"%1\" -s 1 -H 0 -o \"%2/piece\"").arg(cutShort.fileName(), out.path()), &log));
    const QStringList pieces = standin::filesIn(out.path()).filter(QStringLiteral("piece-"));
    ASSERT_GE(pieces.size(), 3) << log.toStdString();
    int frames = 0;
    for (const QString &piece : pieces) {
        EXPECT_LE(QFileInfo(out.path() + QLatin1Char('/') + piece).size(), 1000000);
        frames += standin::integer(out.path() + QLatin1Char('/') + piece, QStringLiteral("Video"), QStringLiteral("FrameCount"));
    }
    EXPECT_NEAR(frames, packets.trimmed().toInt(), 1);
}
