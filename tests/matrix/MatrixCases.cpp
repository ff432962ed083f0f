#include "Matrix.h"

#include <QFile>

QList<MatrixSource> MatrixSource::all()
{
    const QString x264 = u"-c:v libx264 -preset ultrafast"_s, mpeg2 = u"-c:v mpeg2video -b:v 800k"_s;
    return {
        {u"AVI XviD/MP3 (ffmpeg)"_s, u"xvid-mp3.avi"_s, u"320x240"_s, u"25"_s,
         u"-c:v mpeg4 -vtag XVID -q:v 4 -c:a libmp3lame -b:a 128k -ac 2"_s},
        {u"AVI DivX/AC-3 5.1"_s, u"divx-ac3.avi"_s, u"320x240"_s, u"30000/1001"_s,
         u"-c:v mpeg4 -vtag DIVX -q:v 4 -c:a ac3 -b:a 384k -ac 6"_s, true},
        {u"MKV H.264/AC-3 5.1/SRT"_s, u"h264-ac3-srt.mkv"_s, u"320x180"_s, u"24000/1001"_s,
         x264 + u" -c:a ac3 -ac 6 -b:a 384k -c:s srt"_s, true, u"srt"_s},
        {u"MKV H.264/AAC/ASS"_s, u"h264-aac-ass.mkv"_s, u"320x240"_s, u"30"_s, x264 + u" -c:a aac -ac 2 -c:s ass"_s, false,
         u"ass"_s},
        {u"MKV HEVC/Opus"_s, u"hevc-opus.mkv"_s, u"256x144"_s, u"25"_s,
         u"-c:v libx265 -preset ultrafast -x265-params log-level=error -c:a libopus -ac 2"_s},
        {u"MKV MPEG-4/DTS 5.1"_s, u"mpeg4-dts.mkv"_s, u"320x240"_s, u"50"_s, u"-c:v mpeg4 -q:v 4 -c:a dca -strict -2 -ac 6"_s, true},
        {u"MKV AV1/E-AC-3 5.1"_s, u"av1-eac3.mkv"_s, u"256x144"_s, u"25"_s,
         u"-c:v libsvtav1 -preset 12 -svtav1-params lp=1 -c:a eac3 -ac 6"_s, true},
        {u"MKV H.264/TrueHD"_s, u"h264-truehd.mkv"_s, u"320x240"_s, u"25"_s, x264 + u" -c:a truehd -strict -2 -ac 2"_s},
        {u"MKV VP9/Vorbis"_s, u"vp9-vorbis.mkv"_s, u"320x240"_s, u"24000/1001"_s,
         u"-c:v libvpx-vp9 -deadline realtime -cpu-used 8 -b:v 300k -c:a libvorbis -ac 2"_s},
        {u"MP4 H.264/AAC"_s, u"h264-aac.mp4"_s, u"320x240"_s, u"30000/1001"_s, x264 + u" -c:a aac -ac 2"_s},
        {u"MOV H.264/AAC 5.1"_s, u"h264-aac51.mov"_s, u"320x180"_s, u"25"_s, x264 + u" -c:a aac -ac 6"_s, true},
        {u"MPEG-TS MPEG-2/MP2"_s, u"mpeg2-mp2.ts"_s, u"320x240"_s, u"25"_s, mpeg2 + u" -c:a mp2 -ac 2"_s},
        {u"MPEG-TS H.264/AAC"_s, u"h264-aac.ts"_s, u"320x240"_s, u"30000/1001"_s, x264 + u" -c:a aac -ac 2"_s},
        {u"VOB MPEG-2/AC-3 5.1"_s, u"mpeg2-ac3.vob"_s, u"352x288"_s, u"25"_s, mpeg2 + u" -c:a ac3 -ac 6 -b:a 384k -f vob"_s, true},
        {u"WMV WMV2/WMA"_s, u"wmv2-wma.wmv"_s, u"320x240"_s, u"30"_s, u"-c:v wmv2 -b:v 500k -c:a wmav2 -b:a 128k -ac 2"_s},
        {u"FLV Sorenson/MP3"_s, u"flv1-mp3.flv"_s, u"320x240"_s, u"25"_s, u"-c:v flv -b:v 500k -c:a libmp3lame -b:a 96k -ac 2"_s,
         false, {}, 44100},
        {u"WebM VP8/Vorbis"_s, u"vp8-vorbis.webm"_s, u"320x240"_s, u"50"_s,
         u"-c:v libvpx -deadline realtime -cpu-used 8 -b:v 300k -c:a libvorbis -ac 2"_s},
    };
}

// Two seconds of a moving test picture (every picture differs) that turns
// white for a moment, and sound that starts at that moment: a frozen
// picture, a silent track or picture and sound out of step show in the
// output.
QString generateSource(const MatrixSource &source, const QString &dir, QString *why)
{
    const QString path = dir + u'/' + source.fileName;
    QString inputs = u"-f lavfi -i \"testsrc2=s=%1:r=%2:d=2,drawbox=c=white:t=fill:enable='between(t,%3,%4)'\" "
                     "-f lavfi -i \"aevalsrc='if(gte(t,%3),0.5*sin(2*PI*440*t),0)':s=%5:d=2\""_s
                         .arg(source.size, source.rate)
                         .arg(kCueSeconds)
                         .arg(kCueSeconds + 0.1)
                         .arg(source.sampleRate);
    if (source.subtitles()) {
        const QString srt = path + u".srt"_s, subtitle = path + u'.' + source.subtitle;
        QFile file(srt);
        if (!file.open(QIODevice::WriteOnly) || file.write("1\n00:00:00,100 --> 00:00:01,900\nHello from the matrix\n") < 0) {
            *why = u"cannot write %1"_s.arg(srt);
            return {};
        }
        file.close();
        const ProcessResult converted
            = subtitle == srt ? ProcessResult{0, {}, {}, {}}
                              : runProcess(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, srt, subtitle});
        if (!converted.ok()) {
            *why = converted.lastErrorLine();
            return {};
        }
        inputs += u" -i '%1' -map 0 -map 1 -map 2"_s.arg(subtitle);
    }
    const ProcessResult made = runProcess(
        u"/bin/bash"_s, {u"-c"_s, u"nice ffmpeg -nostdin -v error -y %1 %2 '%3'"_s.arg(inputs, source.codecs, path)});
    if (!made.ok()) {
        *why = made.lastErrorLine();
        return {};
    }
    return path;
}

QList<MatrixChoice> MatrixChoice::all()
{
    using V = Video;
    using A = Audio;
    // Tracks by position: every source has its video first, then its
    // audio, then its subtitle.
    const QString tracks = u"--tracks 1,2 "_s, mpeg4 = u" --video mpeg4 --bitrate 600"_s;
    return {
        // "First Track" and "Manual": whatever the rules start with, which
        // burns the first subtitle.
        {.heading = u"defaults"_s, .options = {}, .burnsSubtitle = true},
        {u"passthru"_s, tracks + u"--video passthru --audio passthru"_s},
        // The source's own video bit rate, as the window fills it in.
        {u"MPEG-4"_s, tracks + u"--video mpeg4"_s, V::Mpeg4},
        {.heading = u"2 passes"_s, .options = tracks + u"--video mpeg4-2pass --bitrate 600 --audio mp3"_s, .video = V::Mpeg4,
         .audio = A::Mp3, .mustConvert = true},
        {.heading = u"width 160"_s, .options = tracks + mpeg4 + u" --width 160 --audio mp3"_s, .video = V::Mpeg4,
         .audio = A::Mp3, .width = 160, .mustConvert = true},
        {u"MP3"_s, tracks + u"--audio mp3"_s, V::AsSource, A::Mp3},
        {u"AC-3 5.1"_s, tracks + mpeg4 + u" --audio ac3"_s, V::Mpeg4, A::Ac3},
        {.heading = u"burn sub"_s, .options = u"--tracks 1,2,3"_s + mpeg4 + u" --audio mp3 --subtitles burn"_s,
         .video = V::Mpeg4, .audio = A::Mp3, .needsSubtitles = true, .burnsSubtitle = true, .mustConvert = true},
        {.heading = u"extract sub"_s, .options = u"--tracks 1,2,3"_s + mpeg4 + u" --audio mp3 --subtitles extract"_s,
         .video = V::Mpeg4, .audio = A::Mp3, .needsSubtitles = true, .extractsSubtitle = true, .mustConvert = true},
        // Matroska holds any picture and sound as it is; the picture is
        // copied, which mkvmerge cannot do out of every container (refused).
        {u"MKV AAC"_s, u"--to mkv "_s + tracks + u"--audio aac"_s, V::AsSource, A::AacStereo, Into::Mkv},
        {u"MKV AC-3 5.1"_s, u"--to mkv "_s + tracks + u"--audio ac3"_s, V::AsSource, A::Ac3, Into::Mkv},
        // An MP4 takes H.264 or MPEG-4 pictures and AAC or AC-3 sound as
        // they are: copying is refused for the rest, converting never is.
        {u"MP4 copy"_s, u"--to mp4 "_s + tracks, V::AsSource, A::AsSource, Into::Mp4},
        {.heading = u"MP4 MPEG-4/AAC"_s, .options = u"--to mp4 "_s + tracks + mpeg4 + u" --audio aac"_s,
         .video = V::Mpeg4, .audio = A::AacStereo, .into = Into::Mp4, .mustConvert = true},
    };
}
