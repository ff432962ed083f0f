#include "StandInSupport.h"

namespace {

using namespace Qt::StringLiterals;

// Which codec MPlayer opens for audio stream `id` of `path`.
QString codecMplayerPlays(const QString &path, int id)
{
    QString output;
    const int status = testsupport::run(
        u"mplayer -vo null -ao null -frames 10 -aid %1 '%2' 2>&1 | grep 'Selected audio codec'"_s.arg(id).arg(path), &output);
    return status == 0 ? output.section(u'[', 1).section(u']', 0, 0) : QString();
}

class AviMergeTest : public standin::MediaSuite
{
protected:
    static void SetUpTestSuite()
    {
        makeMedia({{u"movie.avi"_s, u"-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=f=440:r=48000 -t 4 -c:v mpeg4 "
                                    "-vtag XVID -g 25 -c:a libmp3lame -b:a 128k"_s},
                   {u"surround.ac3"_s, u"-f lavfi -i sine=f=300:r=48000 -t 4 -ac 6 -c:a ac3 -b:a 384k"_s},
                   {u"voice.wav"_s, u"-f lavfi -i sine=f=300:r=48000 -t 4 -ac 2 -c:a pcm_s16le"_s}});
    }
    testing::AssertionResult merge(const QString &audio, const QString &output, QString *log = nullptr)
    {
        return standin::runs(u"avimerge"_s, u"-i \"%1\" -p \"%2\" -o \"%3\""_s.arg(source(u"movie.avi"_s), audio, output), log);
    }
};

} // namespace

TEST_F(AviMergeTest, AddsTheAudioAsOneMoreStreamThatPlaysAndRefusesWhatItCannotDecode)
{
    const QString video = source(u"movie.avi"_s);
    for (const auto &[name, format, mplayerCodec] : {std::tuple{u"surround.ac3"_s, u"AC-3"_s, u"ffac3"_s},
                                                     std::tuple{u"voice.wav"_s, u"PCM"_s, u"pcm"_s}}) {
        const QString output = target(name + u".avi"_s);
        ASSERT_TRUE(merge(source(name), output));
        EXPECT_EQ(standin::everyTrack(output, u"Audio"_s, u"Format"_s), u"MPEG Audio|%1|"_s.arg(format));
        for (const QString &parameter : {u"FrameCount"_s, u"StreamSize"_s})
            EXPECT_EQ(testsupport::mediaInfo(output, u"Video"_s, parameter), testsupport::mediaInfo(video, u"Video"_s, parameter));
        EXPECT_NEAR(standin::seconds(output, u"Audio"_s), 4.0, 0.1);
        EXPECT_EQ(codecMplayerPlays(output, 1), u"mpg123"_s);
        EXPECT_EQ(codecMplayerPlays(output, 2), mplayerCodec);
    }

    // Audio it cannot decode is refused and leaves no output.
    standin::write(target(u"noise.mp3"_s), QByteArray(30000, '\x5a'));
    const QString output = target(u"out.avi"_s);
    QString log;
    EXPECT_FALSE(merge(target(u"noise.mp3"_s), output, &log));
    EXPECT_TRUE(log.contains(u"noise.mp3"_s)) << log.toStdString();
    EXPECT_FALSE(standin::runs(u"avimerge"_s, u"-i \"%1\" -p \"%1\" -o \"%2\""_s.arg(source(u"voice.wav"_s), output), &log));
    EXPECT_TRUE(log.contains(u"not an AVI"_s)) << log.toStdString();
    EXPECT_FALSE(standin::runs(u"avimerge"_s, u"-i \"%1\" -o \"%2\""_s.arg(source(u"movie.avi"_s), output), &log));
    EXPECT_EQ(standin::filesIn(out.path()), (QStringList{u"noise.mp3"_s, u"surround.ac3.avi"_s, u"voice.wav.avi"_s}));
}
