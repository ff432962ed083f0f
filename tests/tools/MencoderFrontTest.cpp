#include "MCHelpers.h"
#include "StandInSupport.h"

#include <QFileInfo>
#include <QThread>

namespace {

using namespace Qt::StringLiterals;

const QString kIdentityPan = u"-af pan=6:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1"_s;
// MEncoder's order is L R Ls Rs C LFE: this sends the centre (input 4) to
// the left (output 0) and leaves the left out.
const QString kCentreToLeftPan = u"-af pan=6:0:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:1:0:0:0:0:0:0:0:0:0:0:1"_s;
const QString kXvidVideo = u"-vf harddup -ovc lavc -ffourcc xvid -lavcopts threads=8:vcodec=mpeg4:autoaspect:vbitrate=300"_s;
QString ac3(int kbps)
{
    return u"-oac lavc -lavcopts acodec=ac3:abitrate=%1"_s.arg(kbps);
}

// An XviD AVI with stereo MP3, one with 5.1 AC-3 at 44.1 kHz whose only
// sound is in the centre channel, and that one's audio as AAC in Matroska.
class MencoderFrontTest : public standin::MediaSuite
{
protected:
    static void SetUpTestSuite()
    {
        makeMedia({{u"stereo.avi"_s, u"-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=f=440:r=44100 -t 4 -c:v mpeg4 "
                                     "-vtag XVID -g 25 -ac 2 -c:a libmp3lame"_s},
                   {u"centre.avi"_s, u"-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i 'aevalsrc=0|0|0.5*sin(2*PI*440*t)|0|0|0:c=5.1:s=44100' "
                                     "-t 4 -c:v mpeg4 -vtag XVID -g 25 -c:a ac3 -b:a 448k"_s},
                   {u"centre.mkv"_s, u"-i 'DIR/centre.avi' -c:v copy -c:a aac -b:a 256k"_s},
                   {u"surround.wav"_s, u"-f lavfi -i sine=f=300:r=48000 -t 4 -ac 6 -c:a pcm_s16le"_s}});
    }

    static testing::AssertionResult mencoder(const QString &arguments, QString *log = nullptr)
    {
        return standin::runs(u"mencoder"_s, arguments, log);
    }

    void expectFiles(QStringList names)
    {
        names.sort();
        EXPECT_EQ(standin::filesIn(out.path()), names) << "a temporary file was left behind";
    }
};

} // namespace

TEST_F(MencoderFrontTest, XvidAviGetsAc3SurroundFromAnAudioFileOrPannedFromItsOwnTrackInTwoPasses)
{
    const QString output = target(u"stereo.avi.avi"_s);
    QString log;
    ASSERT_TRUE(mencoder(u"\"%1\" %2 %3 -channels 6 %4 -srate 48000 -audiofile \"%5\" -noautoexpand -o \"%6\""_s
                             .arg(source(u"stereo.avi"_s), kXvidVideo, ac3(384), kIdentityPan, source(u"surround.wav"_s), output),
                         &log));
    EXPECT_EQ(testsupport::mediaInfo(output, u"Video"_s, u"CodecID"_s).toUpper(), u"XVID"_s);
    EXPECT_EQ(standin::fields(output, u"Audio"_s, {u"Format"_s, u"Channels"_s, u"BitRate"_s, u"SamplingRate"_s}), u"AC-3/6/384000/48000"_s);
    EXPECT_NEAR(standin::seconds(output, u"Audio"_s), standin::seconds(output, u"Video"_s), 0.15);
    // The job's progress row reads MEncoder's "Pos:" lines.
    EXPECT_TRUE(log.contains(u"Pos:   4.0s"_s)) << log.toStdString();

    // Two passes pan the video's own six channels in MEncoder's order.
    const QString centre = target(u"centre.avi.avi"_s);
    const QString passLog = target(u"pass.log"_s);
    for (const QString &pass : {u"vpass=1:turbo"_s, u"vpass=2"_s}) {
        ASSERT_TRUE(mencoder(u"\"%1\" %2:%3 -passlogfile \"%4\" %5 -channels 6 %6 -srate 48000 -aid 1 -noautoexpand -o \"%7\""_s
                                 .arg(source(u"centre.avi"_s), kXvidVideo, pass, passLog, ac3(448), kCentreToLeftPan, centre),
                             &log));
        EXPECT_TRUE(log.contains(u"-passlogfile"_s)) << log.toStdString();
    }
    EXPECT_GT(QFileInfo(passLog).size(), 0);
    EXPECT_EQ(standin::fields(centre, u"Audio"_s, {u"Format"_s, u"BitRate"_s, u"SamplingRate"_s}), u"AC-3/448000/48000"_s);
    EXPECT_NEAR(standin::seconds(centre, u"Audio"_s), standin::seconds(centre, u"Video"_s), 0.15);
    EXPECT_GT(standin::channelLoudness(centre, u"FL"_s), -30.0);
    EXPECT_LT(standin::channelLoudness(centre, u"FC"_s), -80.0);
    EXPECT_LT(standin::channelLoudness(centre, u"FR"_s), -80.0);
    expectFiles({u"centre.avi.avi"_s, u"pass.log"_s, u"stereo.avi.avi"_s});
}

TEST_F(MencoderFrontTest, RawAacStereoDownMixAndAudioIdsAsMencoderNumbersEachContainer)
{
    const QString output = target(u"centre.mkv.temp.Audio.t0.added.aac"_s);
    // Matroska numbers -aid by audio track: 0 is the first.
    ASSERT_TRUE(mencoder(u"\"%1\" -aid 0 -ovc copy -oac faac -faacopts br=160:mpeg=4:object=2 -channels 2 "
                         "-srate 48000 -of rawaudio  -o \"%2\""_s.arg(source(u"centre.mkv"_s), output)));
    EXPECT_EQ(testsupport::mediaInfo(output, u"General"_s, u"Format"_s), u"ADTS"_s);
    EXPECT_EQ(standin::fields(output, u"Audio"_s, {u"Format_AdditionalFeatures"_s, u"Channels"_s, u"SamplingRate"_s}), u"LC/2/48000"_s);
    // The centre is mixed into both sides.
    EXPECT_NEAR(standin::channelLoudness(output, u"FL"_s), standin::channelLoudness(output, u"FR"_s), 1.0);
    EXPECT_GT(standin::channelLoudness(output, u"FL"_s), -40.0);
    expectFiles({u"centre.mkv.temp.Audio.t0.added.aac"_s});

    // The audio id is read as MEncoder numbers each container.
    // A silent first audio track and a sounding second one.
    const QString twoTracks = u"-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i anullsrc=r=48000:cl=stereo "
                              "-f lavfi -i sine=f=440:r=48000 -t 2 -map 0 -map 1 -map 2 -c:v mpeg4 -ac 2 -c:a %1"_s;
    const struct
    {
        QString name, inputs, reader, audioId;
    } files[] = {{u"two.avi"_s, twoTracks.arg(u"ac3"_s), QString(), u"2"_s}, // the stream number
                 {u"two.mkv"_s, twoTracks.arg(u"ac3"_s), QString(), u"1"_s}, // the audio track
                 // FFmpeg's readers count audio tracks, whatever the container.
                 {u"lavf.avi"_s, twoTracks.arg(u"ac3"_s), u"-demuxer lavf"_s, u"1"_s},
                 // A program stream: AC-3 by its sub-stream id, MPEG audio from 0.
                 {u"two.vob"_s, twoTracks.arg(u"ac3 -f vob"_s), QString(), u"129"_s},
                 {u"two.mpg"_s, twoTracks.arg(u"mp2 -f vob"_s), QString(), u"1"_s},
                 // MPlayer reads Flash Video through FFmpeg too.
                 {u"one.flv"_s, u"-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=f=440:r=44100 -t 2 -c:v flv -c:a libmp3lame"_s,
                  QString(), u"0"_s}};
    for (const auto &file : files) {
        const QString input = testsupport::ffmpeg(out.path(), file.name, file.inputs);
        const QString output = input + u".ac3"_s;
        ASSERT_TRUE(mencoder(u"\"%1\" %2 -aid %3 -ovc copy %4 -channels 2 -srate 48000 -of rawaudio -o \"%5\""_s
                                 .arg(input, file.reader, file.audioId, ac3(192), output)));
        EXPECT_GT(standin::channelLoudness(output, u"FL"_s), -40.0) << file.name.toStdString();
    }
}

TEST_F(MencoderFrontTest, MpegAudioThroughFfmpegsReadersKeepsItsLengthAndLateAudioItsPlace)
{
    // MEncoder alone writes MP3 read through FFmpeg with a header that
    // stretches it to minutes (from Matroska), or to a third (from an AVI).
    const QString mkv = testsupport::ffmpeg(out.path(), u"mp3.mkv"_s, u"-i '%1' -c copy"_s.arg(source(u"stereo.avi"_s)));
    for (const auto &[input, options] : {std::pair{source(u"stereo.avi"_s), u"-demuxer lavf "_s + kXvidVideo},
                                         std::pair{mkv, u"-ovc copy"_s}}) {
        const QString output = target(QFileInfo(input).fileName() + u".avi"_s);
        QString log;
        ASSERT_TRUE(mencoder(u"\"%1\" %2 -oac copy -aid 0 -noautoexpand -o \"%3\""_s.arg(input, options, output), &log));
        EXPECT_TRUE(log.contains(u"-audio-demuxer audio"_s)) << log.toStdString();
        QString decoded;
        testsupport::run(u"ffmpeg -hide_banner -nostdin -i '%1' -map 0:a:0 -f null - 2>&1 | grep -o 'time=[0-9:.]*' | tail -1"_s.arg(output),
                         &decoded);
        EXPECT_EQ(decoded.trimmed().left(13), u"time=00:00:04"_s) << input.toStdString();
        EXPECT_NEAR(standin::seconds(output, u"Audio"_s), 4.0, 0.15);
    }
    expectFiles({u"mp3.mkv"_s, u"mp3.mkv.avi"_s, u"stereo.avi.avi"_s});

    // Audio starting after the video keeps its place.
    const QString late = testsupport::ffmpeg(out.path(), u"late.mkv"_s, u"-f lavfi -i testsrc=size=160x120:rate=25 -itsoffset 0.5 "
                                                                       "-f lavfi -i sine=f=440:r=48000 -t 3 -c:v mpeg4 -ac 2 -c:a ac3"_s);
    const QString lateAc3 = target(u"late.ac3"_s);
    ASSERT_TRUE(mencoder(u"\"%1\" -aid 0 -ovc copy %2 -channels 2 -srate 48000 -of rawaudio -o \"%3\""_s.arg(late, ac3(192), lateAc3)));
    QString silence;
    testsupport::run(u"ffmpeg -hide_banner -nostdin -i '%1' -af 'pan=mono|c0=FL,silencedetect=n=-50dB:d=0.1' "
                     "-f null - 2>&1 | grep -o 'silence_end: [0-9.]*'"_s.arg(lateAc3),
                     &silence);
    EXPECT_NEAR(silence.section(u' ', 1, 1).toDouble(), 0.5, 0.04) << silence.toStdString();
}

TEST_F(MencoderFrontTest, BadAudioRequestsFailBeforeMencoderRuns)
{
    standin::write(target(u"noise.ac3"_s), QByteArray(30000, '\x33'));
    const QString head = u"\"%1\" -ovc copy %2"_s.arg(source(u"stereo.avi"_s), ac3(384));
    const QString output = target(u"out.avi"_s);
    for (const QString &command : {u"%1 -audiofile \"%2\" -o \"%3\""_s.arg(head, target(u"noise.ac3"_s), output),
                                   u"%1 -aid 5 -o \"%2\""_s.arg(head, output),
                                   u"%1 -of rawaudio -o \"%2\""_s.arg(head, target(u"missing/out.ac3"_s))}) {
        QString log;
        EXPECT_FALSE(mencoder(command, &log)) << command.toStdString();
        EXPECT_FALSE(log.contains(u"MEncoder"_s)) << log.toStdString();
        expectFiles({u"noise.ac3"_s});
    }
}

TEST_F(MencoderFrontTest, PausedEncodingWritesNothingAndAStoppedOneLeavesNothingBehind)
{
    // A minute of 5.1 audio encoded in the background, as a job does.
    const QString longer = testsupport::ffmpeg(out.path(), u"long.ac3"_s, u"-f lavfi -i sine=f=440:r=48000 -t 60 -ac 6 -c:a ac3 -b:a 448k"_s);
    const QString output = target(u"long.ac3.temp.Audio.t0.ac3"_s);
    QString pid;
    testsupport::run(u"\"%1\" \"%2\" -aid 0 -ovc copy %3 -channels 6 %4 -srate 48000 -of rawaudio -o \"%5\" &> \"%6\" & echo $!"_s
                         .arg(standin::toolPath(u"mencoder"_s), longer, ac3(384), kIdentityPan, output, target(u"front.log"_s)),
                     &pid);
    pid = pid.trimmed();
    const auto log = [&] { return standin::contents(target(u"front.log"_s)); };
    const auto state = [&] { return QString::fromLatin1(standin::contents(u"/proc/%1/stat"_s.arg(pid))).section(u')', 1).trimmed().left(1); };

    ASSERT_EQ(testsupport::run(u"kill -STOP %1"_s.arg(pid)), 0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return state() == u"T"_s; }, 5000));
    QThread::msleep(300);
    EXPECT_EQ(state(), u"T"_s);
    EXPECT_FALSE(QFileInfo::exists(output));
    const qsizetype pausedLog = log().size();

    // Resumed, the encoder goes on (the shell opens the log only after it has printed the process number).
    ASSERT_EQ(testsupport::run(u"kill -CONT %1"_s.arg(pid)), 0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return log().size() > pausedLog && log().contains("Pos:"); }, 10000));
    ASSERT_EQ(testsupport::run(u"kill %1"_s.arg(pid)), 0); // SIGTERM, as a job's stop
    ASSERT_TRUE(testsupport::waitUntil([&] { return !MCHelpers::processIsRunning(pid); }, 10000));
    EXPECT_TRUE(log().contains("stopped by signal")) << log().constData();
    expectFiles({u"front.log"_s, u"long.ac3"_s});
}
