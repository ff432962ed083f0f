#include "MCHelpers.h"
#include "StandInSupport.h"

#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {

const QString kIdentityPan = QStringLiteral("-af pan=6:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1");
// MEncoder's order is L R Ls Rs C LFE: this sends the centre (input 4) to
// the left (output 0) and leaves the left out.
const QString kCentreToLeftPan = QStringLiteral("-af pan=6:0:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:1:0:0:0:0:0:0:0:0:0:0:1");
const QString kXvidVideo = QStringLiteral("-vf harddup -ovc lavc -ffourcc xvid -lavcopts threads=8:vcodec=mpeg4:autoaspect:vbitrate=300");

QString processState(const QString &pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    return QString::fromLatin1(stat.readAll()).section(QLatin1Char(')'), 1).trimmed().section(QLatin1Char(' '), 0, 0);
}

class MencoderFrontTest : public ::testing::Test
{
protected:
    // An XviD AVI with stereo MP3 and one with 5.1 AC-3 at 44.1 kHz whose
    // only sound is in the centre channel.
    void SetUp() override
    {
        stereoAvi = testsupport::ffmpeg(dir.path(), QStringLiteral("stereo.avi"),
                                        QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=f=440:r=44100 "
                                                       "-t 4 -c:v mpeg4 -vtag XVID -g 25 -ac 2 -c:a libmp3lame"));
        centreAvi = testsupport::ffmpeg(dir.path(), QStringLiteral("centre.avi"),
                                        QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 "
                                                       "-f lavfi -i 'aevalsrc=0|0|0.5*sin(2*PI*440*t)|0|0|0:c=5.1:s=44100' "
                                                       "-t 4 -c:v mpeg4 -vtag XVID -g 25 -c:a ac3 -b:a 448k"));
    }

    static testing::AssertionResult mencoder(const QString &arguments, QString *log = nullptr)
    {
        return standin::runs(QStringLiteral("mencoder"), arguments, log);
    }

    void expectFiles(const QStringList &names)
    {
        QStringList expected = names + QStringList{QStringLiteral("centre.avi"), QStringLiteral("stereo.avi")};
        expected.sort();
        EXPECT_EQ(standin::filesIn(dir.path()), expected) << "a temporary file was left behind";
    }

    QTemporaryDir dir;
    QString stereoAvi;
    QString centreAvi;
};

} // namespace

TEST_F(MencoderFrontTest, XvidAviGetsAc3SurroundFromAnAudioFile)
{
    const QString surround = testsupport::ffmpeg(dir.path(), QStringLiteral("surround.wav"),
                                                 QStringLiteral("-f lavfi -i sine=f=300:r=48000 -t 4 -ac 6 -c:a pcm_s16le"));
    const QString output = dir.path() + QStringLiteral("/stereo.avi.avi");
    QString log;
    ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" %2 -oac lavc -lavcopts acodec=ac3:abitrate=384 -channels 6 %3 -srate 48000 "
                                        "-audiofile \"%4\" -noautoexpand -o \"%5\"")
                             .arg(stereoAvi, kXvidVideo, kIdentityPan, surround, output),
                         &log));
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Video"), QStringLiteral("CodecID")).toUpper(), QStringLiteral("XVID"));
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("AC-3"));
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("Channels")), 6);
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("BitRate")), 384000);
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("SamplingRate")), 48000);
    EXPECT_NEAR(standin::seconds(output, QStringLiteral("Audio")), standin::seconds(output, QStringLiteral("Video")), 0.15);
    // The job's progress row reads MEncoder's "Pos:" lines.
    EXPECT_TRUE(log.contains(QStringLiteral("Pos:   4.0s"))) << log.toStdString();
    expectFiles({QStringLiteral("stereo.avi.avi"), QStringLiteral("surround.wav")});
}

TEST_F(MencoderFrontTest, SixChannelTrackOfTheVideoIsPannedInMencodersChannelOrder)
{
    const QString output = dir.path() + QStringLiteral("/centre.avi.avi");
    ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" %2 -oac lavc -lavcopts acodec=ac3:abitrate=448 -channels 6 %3 -srate 48000 "
                                        "-aid 1 -noautoexpand -o \"%4\"")
                             .arg(centreAvi, kXvidVideo, kCentreToLeftPan, output)));
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("AC-3"));
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("BitRate")), 448000);
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("SamplingRate")), 48000);
    EXPECT_GT(standin::channelLoudness(output, QStringLiteral("FL")), -30.0);
    EXPECT_LT(standin::channelLoudness(output, QStringLiteral("FC")), -80.0);
    EXPECT_LT(standin::channelLoudness(output, QStringLiteral("FR")), -80.0);
    expectFiles({QStringLiteral("centre.avi.avi")});
}

TEST_F(MencoderFrontTest, RawAacStereoDownMixFromAMatroskaTrack)
{
    const QString mkv = testsupport::ffmpeg(dir.path(), QStringLiteral("clip.mkv"),
                                            QStringLiteral("-i '%1' -c:v copy -c:a aac -b:a 256k").arg(centreAvi));
    const QString output = dir.path() + QStringLiteral("/clip.mkv.temp.Audio.t0.added.aac");
    // Matroska numbers -aid by audio track: 0 is the first.
    ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" -aid 0 -ovc copy -oac faac -faacopts br=160:mpeg=4:object=2 -channels 2 "
                                        "-srate 48000 -of rawaudio  -o \"%2\"")
                             .arg(mkv, output)));
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("General"), QStringLiteral("Format")), QStringLiteral("ADTS"));
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format_AdditionalFeatures")),
              QStringLiteral("LC"));
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("Channels")), 2);
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("SamplingRate")), 48000);
    // The centre is mixed into both sides.
    EXPECT_NEAR(standin::channelLoudness(output, QStringLiteral("FL")), standin::channelLoudness(output, QStringLiteral("FR")), 1.0);
    EXPECT_GT(standin::channelLoudness(output, QStringLiteral("FL")), -40.0);
    expectFiles({QStringLiteral("clip.mkv"), QStringLiteral("clip.mkv.temp.Audio.t0.added.aac")});
}

TEST_F(MencoderFrontTest, AudioIdIsReadAsMencoderNumbersEachContainer)
{
    // A silent first audio track and a sounding second one.
    const QString twoTracks = QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i anullsrc=r=48000:cl=stereo "
                                             "-f lavfi -i sine=f=440:r=48000 -t 2 -map 0 -map 1 -map 2 -c:v mpeg4 -ac 2 -c:a %1");
    const struct
    {
        QString name;
        QString inputs;
        QString reader;
        QString audioId;
    } files[] = {{QStringLiteral("two.avi"), twoTracks.arg(QStringLiteral("ac3")), QString(), QStringLiteral("2")}, // the stream number
                 {QStringLiteral("two.mkv"), twoTracks.arg(QStringLiteral("ac3")), QString(), QStringLiteral("1")}, // the audio track
                 // FFmpeg's readers count audio tracks, whatever the container.
                 {QStringLiteral("lavf.avi"), twoTracks.arg(QStringLiteral("ac3")), QStringLiteral("-demuxer lavf"), QStringLiteral("1")},
                 // A program stream: AC-3 by its sub-stream id, MPEG audio from 0.
                 {QStringLiteral("two.vob"), twoTracks.arg(QStringLiteral("ac3 -f vob")), QString(), QStringLiteral("129")},
                 {QStringLiteral("two.mpg"), twoTracks.arg(QStringLiteral("mp2 -f vob")), QString(), QStringLiteral("1")},
                 // MPlayer reads Flash Video through FFmpeg too.
                 {QStringLiteral("one.flv"),
                  QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=f=440:r=44100 -t 2 -c:v flv -c:a libmp3lame"),
                  QString(), QStringLiteral("0")}};
    for (const auto &file : files) {
        const QString input = testsupport::ffmpeg(dir.path(), file.name, file.inputs);
        const QString output = input + QStringLiteral(".ac3");
        ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" %2 -aid %3 -ovc copy -oac lavc -lavcopts acodec=ac3:abitrate=192 -channels 2 "
                                            "-srate 48000 -of rawaudio -o \"%4\"")
                                 .arg(input, file.reader, file.audioId, output)));
        EXPECT_GT(standin::channelLoudness(output, QStringLiteral("FL")), -40.0) << file.name.toStdString();
    }
}

TEST_F(MencoderFrontTest, MpegAudioCopiedThroughFfmpegsReadersKeepsItsLength)
{
    // MEncoder alone writes MP3 read through FFmpeg with a header that
    // stretches it to minutes (from Matroska), or to a third (from an AVI).
    const QString mkv = testsupport::ffmpeg(dir.path(), QStringLiteral("mp3.mkv"),
                                            QStringLiteral("-i '%1' -c copy").arg(stereoAvi));
    const struct
    {
        QString input;
        QString options;
    } cases[] = {{stereoAvi, QStringLiteral("-demuxer lavf ") + kXvidVideo},
                 {mkv, QStringLiteral("-ovc copy")}};
    for (const auto &c : cases) {
        const QString output = c.input + QStringLiteral(".avi");
        QString log;
        ASSERT_TRUE(
            mencoder(QStringLiteral("\"%1\" %2 -oac copy -aid 0 -noautoexpand -o \"%3\"").arg(c.input, c.options, output), &log));
        EXPECT_TRUE(log.contains(QStringLiteral("-audio-demuxer audio"))) << log.toStdString();
        QString decoded;
        testsupport::run(QStringLiteral("ffmpeg -hide_banner -nostdin -i '%1' -map 0:a:0 -f null - 2>&1 "
                                        "| grep -o 'time=[0-9:.]*' | tail -1").arg(output),
                         &decoded);
        EXPECT_EQ(decoded.trimmed().left(13), QStringLiteral("time=00:00:04")) << c.input.toStdString();
        EXPECT_NEAR(standin::seconds(output, QStringLiteral("Audio")), 4.0, 0.15);
    }

    // AC-3, and MP3 that MEncoder reads with its own AVI reader, reach it as they are.
    for (const QString &input : {centreAvi, stereoAvi}) {
        QString log;
        const QString output = dir.path() + QStringLiteral("/untouched.avi");
        ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" -ovc copy -oac copy -o \"%2\"").arg(input, output), &log));
        EXPECT_TRUE(log.startsWith(QStringLiteral("MEncoder"))) << log.toStdString();
    }
    expectFiles({QStringLiteral("mp3.mkv"), QStringLiteral("mp3.mkv.avi"), QStringLiteral("stereo.avi.avi"),
                 QStringLiteral("untouched.avi")});
}

TEST_F(MencoderFrontTest, AudioStartingAfterTheVideoKeepsItsPlace)
{
    const QString mkv = testsupport::ffmpeg(dir.path(), QStringLiteral("late.mkv"),
                                            QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -itsoffset 0.5 "
                                                           "-f lavfi -i sine=f=440:r=48000 -t 3 -c:v mpeg4 -ac 2 -c:a ac3"));
    const QString output = dir.path() + QStringLiteral("/late.ac3");
    ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" -aid 0 -ovc copy -oac lavc -lavcopts acodec=ac3:abitrate=192 -channels 2 "
                                        "-srate 48000 -of rawaudio -o \"%2\"")
                             .arg(mkv, output)));
    QString silence;
    testsupport::run(QStringLiteral("ffmpeg -hide_banner -nostdin -i '%1' -af 'pan=mono|c0=FL,silencedetect=n=-50dB:d=0.1' "
                                    "-f null - 2>&1 | grep -o 'silence_end: [0-9.]*'").arg(output),
                     &silence);
    EXPECT_NEAR(silence.section(QLatin1Char(' '), 1, 1).toDouble(), 0.5, 0.04) << silence.toStdString();
}

TEST_F(MencoderFrontTest, OtherCommandLinesReachMencoderUntouched)
{
    const QString output = dir.path() + QStringLiteral("/stereo.avi.avi");
    QString log;
    ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" -ovc copy -lavcopts threads=8 -oac mp3lame -srate 48000 -lameopts preset=128 "
                                        "-o \"%2\"")
                             .arg(stereoAvi, output),
                         &log));
    EXPECT_TRUE(log.startsWith(QStringLiteral("MEncoder"))) << log.toStdString();
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("MPEG Audio"));
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("SamplingRate")), 48000);
}

TEST_F(MencoderFrontTest, BadAudioRequestsFailBeforeMencoderRuns)
{
    QFile junk(dir.path() + QStringLiteral("/noise.ac3"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write(QByteArray(30000, '\x33'));
    junk.close();
    const QString output = dir.path() + QStringLiteral("/out.avi");
    const QString ac3 = QStringLiteral("-ovc copy -oac lavc -lavcopts acodec=ac3:abitrate=384");
    const QStringList commands = {
        QStringLiteral("\"%1\" %2 -audiofile \"%3\" -o \"%4\"").arg(stereoAvi, ac3, junk.fileName(), output),
        QStringLiteral("\"%1\" %2 -aid 5 -o \"%3\"").arg(stereoAvi, ac3, output),
        QStringLiteral("\"%1\" %2 -af volume=3 -o \"%3\"").arg(stereoAvi, ac3, output),
        QStringLiteral("\"%1\" %2 -frobnicate -o \"%3\"").arg(stereoAvi, ac3, output),
        QStringLiteral("\"%1\" %2 -of rawaudio -o \"%3/missing/out.ac3\"").arg(stereoAvi, ac3, dir.path()),
    };
    for (const QString &command : commands) {
        QString log;
        EXPECT_FALSE(mencoder(command, &log)) << command.toStdString();
        EXPECT_FALSE(log.contains(QStringLiteral("MEncoder"))) << log.toStdString();
        expectFiles({QStringLiteral("noise.ac3")});
    }
}

TEST_F(MencoderFrontTest, TwoPassEncodeKeepsThePassOptions)
{
    const QString output = dir.path() + QStringLiteral("/centre.avi.avi");
    const QString passLog = dir.path() + QStringLiteral("/pass.log");
    for (const QString &pass : {QStringLiteral("vpass=1:turbo"), QStringLiteral("vpass=2")}) {
        QString log;
        ASSERT_TRUE(mencoder(QStringLiteral("\"%1\" -vf harddup -ovc lavc -ffourcc xvid -lavcopts "
                                            "threads=8:vcodec=mpeg4:autoaspect:vbitrate=300:%2 -passlogfile \"%3\" "
                                            "-oac lavc -lavcopts acodec=ac3:abitrate=384 -channels 6 %4 -srate 48000 -aid 1 "
                                            "-noautoexpand -o \"%5\"")
                                 .arg(centreAvi, pass, passLog, kIdentityPan, output),
                             &log));
        EXPECT_TRUE(log.contains(QStringLiteral("-passlogfile"))) << log.toStdString();
    }
    EXPECT_GT(QFileInfo(passLog).size(), 0);
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("AC-3"));
    EXPECT_NEAR(standin::seconds(output, QStringLiteral("Audio")), standin::seconds(output, QStringLiteral("Video")), 0.15);
    expectFiles({QStringLiteral("centre.avi.avi"), QStringLiteral("pass.log")});
}

namespace {

// Starts a front encoding a minute of 5.1 audio in the background, as a
// job does; answers its process number.
QString startLongEncode(const QString &folder, const QString &output)
{
    const QString longer = testsupport::ffmpeg(folder, QStringLiteral("long.ac3"),
                                               QStringLiteral("-f lavfi -i sine=f=440:r=48000 -t 60 -ac 6 -c:a ac3 -b:a 448k"));
    QString pid;
    testsupport::run(QStringLiteral("\"%1\" \"%2\" -aid 0 -ovc copy -oac lavc -lavcopts acodec=ac3:abitrate=384 -channels 6 %3 "
                                    "-srate 48000 -of rawaudio -o \"%4\" &> \"%5/front.log\" & echo $!")
                         .arg(standin::toolPath(QStringLiteral("mencoder")), longer, kIdentityPan, output, folder),
                     &pid);
    return pid.trimmed();
}

} // namespace

TEST_F(MencoderFrontTest, StoppedEncodingLeavesNothingBehind)
{
    const QString pid = startLongEncode(dir.path(), dir.path() + QStringLiteral("/long.ac3.temp.Audio.t0.ac3"));
    // The shell opens the log only after it has printed the process number.
    auto log = [&] {
        QFile file(dir.path() + QStringLiteral("/front.log"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    ASSERT_TRUE(testsupport::waitUntil([&] { return log().contains("Pos:"); }, 10000));
    ASSERT_EQ(testsupport::run(QStringLiteral("kill %1").arg(pid)), 0); // SIGTERM, as a job's stop
    ASSERT_TRUE(testsupport::waitUntil([&] { return !MCHelpers::processIsRunning(pid); }, 10000));
    EXPECT_TRUE(log().contains("stopped by signal")) << log().constData();
    expectFiles({QStringLiteral("front.log"), QStringLiteral("long.ac3")});
}

TEST_F(MencoderFrontTest, PausedEncodingResumesAndFinishes)
{
    const QString output = dir.path() + QStringLiteral("/long.ac3.temp.Audio.t0.ac3");
    const QString pid = startLongEncode(dir.path(), output);
    ASSERT_EQ(testsupport::run(QStringLiteral("kill -STOP %1").arg(pid)), 0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return processState(pid) == QStringLiteral("T"); }, 5000));
    QThread::msleep(300);
    EXPECT_EQ(processState(pid), QStringLiteral("T"));
    EXPECT_FALSE(QFileInfo::exists(output));

    ASSERT_EQ(testsupport::run(QStringLiteral("kill -CONT %1").arg(pid)), 0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !MCHelpers::processIsRunning(pid); }, 60000));
    EXPECT_EQ(standin::integer(output, QStringLiteral("Audio"), QStringLiteral("Channels")), 6);
    EXPECT_NEAR(standin::seconds(output, QStringLiteral("Audio")), 60.0, 0.2);
    expectFiles({QStringLiteral("front.log"), QStringLiteral("long.ac3"), QStringLiteral("long.ac3.temp.Audio.t0.ac3")});
}
