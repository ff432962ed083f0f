#include "MatrixSource.h"

#include "MatrixProcess.h"

#include <QFile>

namespace {

// Two seconds of a moving test picture (every picture differs) that turns
// white for a moment, and sound that starts at that moment: a frozen
// picture, a silent track or picture and sound out of step show in the
// output.
constexpr int kSeconds = 2;

QString picture(const QString &size, const QString &rate)
{
    return QStringLiteral("-f lavfi -i \"testsrc2=s=%1:r=%2:d=%3,drawbox=c=white:t=fill:enable='between(t,%4,%5)'\"")
        .arg(size, rate)
        .arg(kSeconds)
        .arg(kCueSeconds)
        .arg(kCueSeconds + 0.1);
}

QString tone(int sampleRate = 48000)
{
    return QStringLiteral("-f lavfi -i \"aevalsrc='if(gte(t,%1),0.5*sin(2*PI*440*t),0)':s=%2:d=%3\"")
        .arg(kCueSeconds)
        .arg(sampleRate)
        .arg(kSeconds);
}

const QString kSubtitleText = QStringLiteral("1\n00:00:00,100 --> 00:00:01,900\nHello from the matrix\n");

QString withSubtitles(const QString &inputs, const QString &subtitleFile)
{
    return inputs + QStringLiteral(" -i '%1' -map 0 -map 1 -map 2").arg(subtitleFile);
}

const QString kX264 = QStringLiteral("-c:v libx264 -preset ultrafast");
const QString kMpeg2 = QStringLiteral("-c:v mpeg2video -b:v 800k");

} // namespace

QList<MatrixSource> MatrixSource::all()
{
    const QString srt = QStringLiteral("@SRT@");
    const QString ass = QStringLiteral("@ASS@");
    return {
        {QStringLiteral("AVI XviD/MP3 (ffmpeg)"), QStringLiteral("xvid-mp3.avi"),
         picture(QStringLiteral("320x240"), QStringLiteral("25")) + ' ' + tone()
             + QStringLiteral(" -c:v mpeg4 -vtag XVID -q:v 4 -c:a libmp3lame -b:a 128k -ac 2")},
        {QStringLiteral("AVI DivX/AC-3 5.1"), QStringLiteral("divx-ac3.avi"),
         picture(QStringLiteral("320x240"), QStringLiteral("30000/1001")) + ' ' + tone()
             + QStringLiteral(" -c:v mpeg4 -vtag DIVX -q:v 4 -c:a ac3 -b:a 384k -ac 6"),
         true},
        {QStringLiteral("MKV H.264/AC-3 5.1/SRT"), QStringLiteral("h264-ac3-srt.mkv"),
         withSubtitles(picture(QStringLiteral("320x180"), QStringLiteral("24000/1001")) + ' ' + tone(), srt)
             + ' ' + kX264 + QStringLiteral(" -c:a ac3 -ac 6 -b:a 384k -c:s srt"),
         true, true},
        {QStringLiteral("MKV H.264/AAC/ASS"), QStringLiteral("h264-aac-ass.mkv"),
         withSubtitles(picture(QStringLiteral("320x240"), QStringLiteral("30")) + ' ' + tone(), ass) + ' ' + kX264
             + QStringLiteral(" -c:a aac -ac 2 -c:s ass"),
         false, true},
        {QStringLiteral("MKV HEVC/Opus"), QStringLiteral("hevc-opus.mkv"),
         picture(QStringLiteral("256x144"), QStringLiteral("25")) + ' ' + tone()
             + QStringLiteral(" -c:v libx265 -preset ultrafast -x265-params log-level=error -c:a libopus -ac 2")},
        {QStringLiteral("MKV MPEG-4/DTS 5.1"), QStringLiteral("mpeg4-dts.mkv"),
         picture(QStringLiteral("320x240"), QStringLiteral("50")) + ' ' + tone()
             + QStringLiteral(" -c:v mpeg4 -q:v 4 -c:a dca -strict -2 -ac 6"),
         true},
        {QStringLiteral("MKV AV1/E-AC-3 5.1"), QStringLiteral("av1-eac3.mkv"),
         picture(QStringLiteral("256x144"), QStringLiteral("25")) + ' ' + tone()
             + QStringLiteral(" -c:v libsvtav1 -preset 12 -svtav1-params lp=1 -c:a eac3 -ac 6"),
         true},
        {QStringLiteral("MKV H.264/TrueHD"), QStringLiteral("h264-truehd.mkv"),
         picture(QStringLiteral("320x240"), QStringLiteral("25")) + ' ' + tone() + ' ' + kX264
             + QStringLiteral(" -c:a truehd -strict -2 -ac 2")},
        {QStringLiteral("MKV VP9/Vorbis"), QStringLiteral("vp9-vorbis.mkv"),
         picture(QStringLiteral("320x240"), QStringLiteral("24000/1001")) + ' ' + tone()
             + QStringLiteral(" -c:v libvpx-vp9 -deadline realtime -cpu-used 8 -b:v 300k -c:a libvorbis -ac 2")},
        {QStringLiteral("MP4 H.264/AAC"), QStringLiteral("h264-aac.mp4"),
         picture(QStringLiteral("320x240"), QStringLiteral("30000/1001")) + ' ' + tone() + ' ' + kX264
             + QStringLiteral(" -c:a aac -ac 2")},
        {QStringLiteral("MOV H.264/AAC 5.1"), QStringLiteral("h264-aac51.mov"),
         picture(QStringLiteral("320x180"), QStringLiteral("25")) + ' ' + tone() + ' ' + kX264
             + QStringLiteral(" -c:a aac -ac 6"),
         true},
        {QStringLiteral("MPEG-TS MPEG-2/MP2"), QStringLiteral("mpeg2-mp2.ts"),
         picture(QStringLiteral("320x240"), QStringLiteral("25")) + ' ' + tone() + ' ' + kMpeg2
             + QStringLiteral(" -c:a mp2 -ac 2")},
        {QStringLiteral("MPEG-TS H.264/AAC"), QStringLiteral("h264-aac.ts"),
         picture(QStringLiteral("320x240"), QStringLiteral("30000/1001")) + ' ' + tone() + ' ' + kX264
             + QStringLiteral(" -c:a aac -ac 2")},
        {QStringLiteral("VOB MPEG-2/AC-3 5.1"), QStringLiteral("mpeg2-ac3.vob"),
         picture(QStringLiteral("352x288"), QStringLiteral("25")) + ' ' + tone() + ' ' + kMpeg2
             + QStringLiteral(" -c:a ac3 -ac 6 -b:a 384k -f vob"),
         true},
        {QStringLiteral("WMV WMV2/WMA"), QStringLiteral("wmv2-wma.wmv"),
         picture(QStringLiteral("320x240"), QStringLiteral("30")) + ' ' + tone()
             + QStringLiteral(" -c:v wmv2 -b:v 500k -c:a wmav2 -b:a 128k -ac 2")},
        {QStringLiteral("FLV Sorenson/MP3"), QStringLiteral("flv1-mp3.flv"),
         picture(QStringLiteral("320x240"), QStringLiteral("25")) + ' ' + tone(44100)
             + QStringLiteral(" -c:v flv -b:v 500k -c:a libmp3lame -b:a 96k -ac 2")},
        {QStringLiteral("WebM VP8/Vorbis"), QStringLiteral("vp8-vorbis.webm"),
         picture(QStringLiteral("320x240"), QStringLiteral("50")) + ' ' + tone()
             + QStringLiteral(" -c:v libvpx -deadline realtime -cpu-used 8 -b:v 300k -c:a libvorbis -ac 2")},
    };
}

QString generateSource(const MatrixSource &source, const QString &dir, QString *why)
{
    QString args = source.ffmpegArgs;
    if (args.contains(QStringLiteral("@SRT@")) || args.contains(QStringLiteral("@ASS@"))) {
        const QString srt = dir + QStringLiteral("/") + source.fileName + QStringLiteral(".srt");
        QFile file(srt);
        if (!file.open(QIODevice::WriteOnly) || file.write(kSubtitleText.toUtf8()) < 0) {
            *why = QStringLiteral("cannot write %1").arg(srt);
            return {};
        }
        file.close();
        QString subtitle = srt;
        if (args.contains(QStringLiteral("@ASS@"))) {
            subtitle = dir + QStringLiteral("/") + source.fileName + QStringLiteral(".ass");
            const ProcessResult converted = runProcess(
                QStringLiteral("ffmpeg"), {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                                           QStringLiteral("-y"), QStringLiteral("-i"), srt, subtitle});
            if (!converted.ok()) {
                *why = converted.lastErrorLine();
                return {};
            }
        }
        args.replace(QStringLiteral("@SRT@"), subtitle).replace(QStringLiteral("@ASS@"), subtitle);
    }
    const QString path = dir + QStringLiteral("/") + source.fileName;
    const ProcessResult made = runShell(
        QStringLiteral("nice ffmpeg -nostdin -v error -y %1 '%2'").arg(args, path));
    if (!made.ok()) {
        *why = made.lastErrorLine();
        return {};
    }
    return path;
}
