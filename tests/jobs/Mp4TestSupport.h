#pragma once

#include "MkvTestSupport.h"

// Three seconds of 160x120 H.264 declared at the given profile and level
// (e.g. "high", "5.1"), in the container the name's extension says; ffmpeg
// writes an MP4's index after the media data.
inline QString h264Clip(const QString &name, const QString &profile, const QString &level)
{
    const QString path = editingMedia(name);
    if (!QFile::exists(path))
        testsupport::ffmpeg(QFileInfo(path).path(), name,
                            u"-f lavfi -i testsrc2=s=160x120:r=25:d=3 -f lavfi -i sine=f=440:d=3:r=48000 -map 0:v "
                            "%1 -c:v libx264 -preset veryfast -profile:v %2 -level %3 -pix_fmt yuv420p %4"_s
                                .arg(name.endsWith(u".h264"_s) ? QString() : u"-map 1:a -c:a aac -ac 2"_s, profile, level,
                                     name.endsWith(u".mp4"_s) ? u"-metadata:s:a:0 language=spa"_s : QString()));
    return path;
}

// mediainfo's profile of the first video, e.g. "High@L4.1".
inline QString videoProfile(const QString &path)
{
    return testsupport::mediaInfo(path, u"Video"_s, u"Format_Profile"_s);
}
