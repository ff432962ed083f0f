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

// A row of the table: picture and sound in the given codecs, with a
// subtitle ("@SRT@" or "@ASS@", written by generateSource) when one is named.
MatrixSource made(const char *name, const char *fileName, const char *size, const char *rate, const char *codecs,
                  bool surround = false, const char *subtitle = nullptr, int sampleRate = 48000)
{
    QString args = picture(QString::fromLatin1(size), QString::fromLatin1(rate)) + ' ' + tone(sampleRate);
    if (subtitle)
        args += QStringLiteral(" -i '%1' -map 0 -map 1 -map 2").arg(QLatin1String(subtitle));
    return {QString::fromUtf8(name), QString::fromLatin1(fileName), args + ' ' + QLatin1String(codecs), surround, subtitle != nullptr};
}

} // namespace

QList<MatrixSource> MatrixSource::all()
{
    return {
        made("AVI XviD/MP3 (ffmpeg)", "xvid-mp3.avi", "320x240", "25", "-c:v mpeg4 -vtag XVID -q:v 4 -c:a libmp3lame -b:a 128k -ac 2"),
        made("AVI DivX/AC-3 5.1", "divx-ac3.avi", "320x240", "30000/1001", "-c:v mpeg4 -vtag DIVX -q:v 4 -c:a ac3 -b:a 384k -ac 6", true),
        made("MKV H.264/AC-3 5.1/SRT", "h264-ac3-srt.mkv", "320x180", "24000/1001",
             "-c:v libx264 -preset ultrafast -c:a ac3 -ac 6 -b:a 384k -c:s srt", true, "@SRT@"),
        made("MKV H.264/AAC/ASS", "h264-aac-ass.mkv", "320x240", "30", "-c:v libx264 -preset ultrafast -c:a aac -ac 2 -c:s ass",
             false, "@ASS@"),
        made("MKV HEVC/Opus", "hevc-opus.mkv", "256x144", "25",
             "-c:v libx265 -preset ultrafast -x265-params log-level=error -c:a libopus -ac 2"),
        made("MKV MPEG-4/DTS 5.1", "mpeg4-dts.mkv", "320x240", "50", "-c:v mpeg4 -q:v 4 -c:a dca -strict -2 -ac 6", true),
        made("MKV AV1/E-AC-3 5.1", "av1-eac3.mkv", "256x144", "25", "-c:v libsvtav1 -preset 12 -svtav1-params lp=1 -c:a eac3 -ac 6",
             true),
        made("MKV H.264/TrueHD", "h264-truehd.mkv", "320x240", "25", "-c:v libx264 -preset ultrafast -c:a truehd -strict -2 -ac 2"),
        made("MKV VP9/Vorbis", "vp9-vorbis.mkv", "320x240", "24000/1001",
             "-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -b:v 300k -c:a libvorbis -ac 2"),
        made("MP4 H.264/AAC", "h264-aac.mp4", "320x240", "30000/1001", "-c:v libx264 -preset ultrafast -c:a aac -ac 2"),
        made("MOV H.264/AAC 5.1", "h264-aac51.mov", "320x180", "25", "-c:v libx264 -preset ultrafast -c:a aac -ac 6", true),
        made("MPEG-TS MPEG-2/MP2", "mpeg2-mp2.ts", "320x240", "25", "-c:v mpeg2video -b:v 800k -c:a mp2 -ac 2"),
        made("MPEG-TS H.264/AAC", "h264-aac.ts", "320x240", "30000/1001", "-c:v libx264 -preset ultrafast -c:a aac -ac 2"),
        made("VOB MPEG-2/AC-3 5.1", "mpeg2-ac3.vob", "352x288", "25", "-c:v mpeg2video -b:v 800k -c:a ac3 -ac 6 -b:a 384k -f vob", true),
        made("WMV WMV2/WMA", "wmv2-wma.wmv", "320x240", "30", "-c:v wmv2 -b:v 500k -c:a wmav2 -b:a 128k -ac 2"),
        made("FLV Sorenson/MP3", "flv1-mp3.flv", "320x240", "25", "-c:v flv -b:v 500k -c:a libmp3lame -b:a 96k -ac 2", false, nullptr,
             44100),
        made("WebM VP8/Vorbis", "vp8-vorbis.webm", "320x240", "50",
             "-c:v libvpx -deadline realtime -cpu-used 8 -b:v 300k -c:a libvorbis -ac 2"),
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
