#include "StandInSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// Which codec MPlayer opens for audio stream `id` of `path`.
QString codecMplayerPlays(const QString &path, int id)
{
    QString output;
    const int status = testsupport::run(
        QStringLiteral("mplayer -vo null -ao null -frames 10 -aid %1 '%2' 2>&1 | grep 'Selected audio codec'").arg(id).arg(path),
        &output);
    return status == 0 ? output.section(QLatin1Char('['), 1).section(QLatin1Char(']'), 0, 0) : QString();
}

class AviMergeTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        video = testsupport::ffmpeg(dir.path(), QStringLiteral("movie.avi"),
                                    QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=f=440:r=48000 "
                                                   "-t 4 -c:v mpeg4 -vtag XVID -g 25 -c:a libmp3lame -b:a 128k"));
        videoSum = standin::checksum(video);
    }

    QTemporaryDir dir;
    QString video;
    QByteArray videoSum;
};

} // namespace

TEST_F(AviMergeTest, AddsTheAudioAsOneMoreStreamThatPlays)
{
    const struct
    {
        QString name;
        QString ffmpegCodec;
        QString format;
        QString mplayerCodec;
    } audios[] = {
        {QStringLiteral("surround.ac3"), QStringLiteral("-ac 6 -c:a ac3 -b:a 384k"), QStringLiteral("AC-3"), QStringLiteral("ffac3")},
        {QStringLiteral("voice.wav"), QStringLiteral("-ac 2 -c:a pcm_s16le"), QStringLiteral("PCM"), QStringLiteral("pcm")},
    };
    for (const auto &audio : audios) {
        const QString added = testsupport::ffmpeg(dir.path(), audio.name,
                                                  QStringLiteral("-f lavfi -i sine=f=300:r=48000 -t 4 ") + audio.ffmpegCodec);
        const QString output = dir.path() + QStringLiteral("/movie.avi.addedAudio.avi");
        ASSERT_TRUE(
            standin::runs(QStringLiteral("avimerge"), QStringLiteral("-i \"%1\" -p \"%2\" -o \"%3\"").arg(video, added, output)));

        EXPECT_EQ(standin::integer(output, QStringLiteral("General"), QStringLiteral("AudioCount")), 2);
        EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Video"), QStringLiteral("FrameCount")),
                  testsupport::mediaInfo(video, QStringLiteral("Video"), QStringLiteral("FrameCount")));
        EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Video"), QStringLiteral("StreamSize")),
                  testsupport::mediaInfo(video, QStringLiteral("Video"), QStringLiteral("StreamSize")));
        QString formats;
        testsupport::run(QStringLiteral("mediainfo --Inform='Audio;%Format%|' '%1'").arg(output), &formats);
        EXPECT_EQ(formats.trimmed(), QStringLiteral("MPEG Audio|%1|").arg(audio.format));
        EXPECT_NEAR(standin::seconds(output, QStringLiteral("Audio")), 4.0, 0.1);
        EXPECT_EQ(codecMplayerPlays(output, 1), QStringLiteral("mpg123"));
        EXPECT_EQ(codecMplayerPlays(output, 2), audio.mplayerCodec);
    }
    EXPECT_EQ(standin::checksum(video), videoSum);
}

TEST_F(AviMergeTest, RefusesAudioItCannotDecodeAndLeavesNoOutput)
{
    QFile junk(dir.path() + QStringLiteral("/noise.mp3"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(30000, '\x5a'));
    junk.close();
    const QString tone = testsupport::ffmpeg(dir.path(), QStringLiteral("tone.wav"), QStringLiteral("-f lavfi -i sine=d=1"));
    const QString output = dir.path() + QStringLiteral("/out.avi");
    const QStringList before = standin::filesIn(dir.path());

    QString log;
    EXPECT_FALSE(standin::runs(QStringLiteral("avimerge"),
                               QStringLiteral("-i \"%1\" -p \"%2\" -o \"%3\"").arg(video, junk.fileName(), output), &log));
    EXPECT_TRUE(log.contains(QStringLiteral("noise.mp3"))) << log.toStdString();
    EXPECT_FALSE(
        standin::runs(QStringLiteral("avimerge"), QStringLiteral("-i \"%1\" -p \"%1\" -o \"%2\"").arg(tone, output), &log));
    EXPECT_TRUE(log.contains(QStringLiteral("not an AVI"))) << log.toStdString();
    EXPECT_FALSE(standin::runs(QStringLiteral("avimerge"), QStringLiteral("-i \"%1\" -o \"%2\"").arg(video, output), &log));
    EXPECT_EQ(standin::filesIn(dir.path()), before);
    EXPECT_EQ(standin::checksum(video), videoSum);
}
