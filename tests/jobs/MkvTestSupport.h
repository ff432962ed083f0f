#pragma once

#include "EditingTestSupport.h"
#include "MCVideoFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

// Three seconds of H.264 at 160x120 (a key frame every second) with AC-3 5.1
// "Surround" (German), stereo AAC "Commentary" (English), an SRT "French"
// and an ASS "Signs" (English).
inline QString fullMkv()
{
    const QString srt = writeFile(editingMedia(u"fr.srt"_s), "1\n00:00:00,300 --> 00:00:02,000\nBonjour\n\n");
    const QString ass = writeFile(editingMedia(u"signs.ass"_s),
                                  "[Script Info]\nScriptType: v4.00+\n\n[V4+ Styles]\nFormat: Name, Fontname, Fontsize, PrimaryColour\n"
                                  "Style: Default,DejaVu Sans,20,&H00FFFFFF\n\n[Events]\n"
                                  "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
                                  "Dialogue: 0,0:00:00.50,0:00:02.00,Default,,0,0,0,,Sign\n");
    return clip(u"all.mkv"_s,
                u"-f lavfi -i testsrc2=s=160x120:r=25:d=3 -f lavfi -i sine=f=440:d=3:r=48000 "
                "-f lavfi -i sine=f=660:d=3:r=48000 -i '%1' -i '%2' "
                "-filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[s];[2:a]pan=stereo|c0=c0|c1=c0[c]' "
                "-map 0:v -map '[s]' -map '[c]' -map 3 -map 4 -c:v libx264 -preset ultrafast -g 25 "
                "-c:a:0 ac3 -b:a:0 384k -c:a:1 aac -b:a:1 128k -c:s:0 srt -c:s:1 ass "
                "-metadata:s:a:0 language=ger -metadata:s:a:0 title=Surround "
                "-metadata:s:a:1 language=eng -metadata:s:a:1 title=Commentary "
                "-metadata:s:s:0 language=fre -metadata:s:s:0 title=French "
                "-metadata:s:s:1 language=eng -metadata:s:s:1 title=Signs"_s.arg(srt, ass));
}

// Three seconds of 160x120 H.264 declared at the given profile and level
// (e.g. "high", "5.1") with stereo AAC, in the container the name's
// extension says; ffmpeg writes an MP4's index after the media data.
inline QString h264Clip(const QString &name, const QString &profile, const QString &level)
{
    return clip(name, testInputs(u"160x120"_s, 3)
                          + u"-map 0:v -map 1:a -c:a aac -ac 2 -c:v libx264 -preset veryfast -profile:v %1 -level %2 -pix_fmt yuv420p %3"_s
                                .arg(profile, level, name.endsWith(u".mp4"_s) ? u"-metadata:s:a:0 language=spa"_s : QString()));
}

// The file as inspected, every track selected for a job of the given type.
inline MCSelectionPtr inspectedSelection(const QString &path, const QString &jobType)
{
    MCVideoFile file;
    EXPECT_EQ(file.initializeForURL(QUrl::fromLocalFile(path)), u"OK"_s) << path.toStdString();
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    selection->initializeFrom(file);
    selection->trackList = file.trackList;
    selection->jobType = jobType;
    for (const MCVideoTrackPtr &track : selection->trackList)
        track->trackSelected = true;
    return selection;
}

// The first track of the selection with that title.
inline MCVideoTrackPtr titled(const MCSelection &selection, const QString &title)
{
    for (const MCVideoTrackPtr &track : selection.trackList) {
        if (track->trackTitle == title)
            return track;
    }
    ADD_FAILURE() << "no track " << title.toStdString();
    return std::make_shared<MCVideoTrack>();
}

// mediainfo's sections of one kind ("Video", "Audio", "Text"), in file order.
inline QList<QJsonObject> mediaTracks(const QString &path, const QString &kind)
{
    QString json;
    testsupport::run(u"mediainfo --Output=JSON '%1'"_s.arg(path), &json);
    QList<QJsonObject> tracks;
    for (const QJsonValue &track : QJsonDocument::fromJson(json.toUtf8())["media"_L1]["track"_L1].toArray()) {
        if (track["@type"_L1].toString() == kind)
            tracks << track.toObject();
    }
    return tracks;
}

// "Format/Channels/Language/Title" of each mediainfo section of a kind,
// e.g. "AAC/2/de/Surround", with "/Default" when asked.
inline QStringList described(const QString &path, const QString &kind, bool withDefault = false)
{
    QStringList described;
    for (const QJsonObject &track : mediaTracks(path, kind)) {
        QStringList parts;
        for (const char *key : {"Format", "Channels", "Language", "Title", "Default"})
            parts << track.value(QLatin1String(key)).toString();
        described << parts.mid(0, withDefault ? 5 : 4).join(u'/');
    }
    return described;
}

// Every video and audio stream decodes from start to end.
inline bool decodesCleanly(const QString &path)
{
    QString errors;
    return testsupport::run(u"ffmpeg -nostdin -v error -i '%1' -map 0:v? -map 0:a? -f null - 2>&1"_s.arg(path), &errors) == 0
           && errors.trimmed().isEmpty();
}

// An MKV whose video track uses header removal compression, and whether a
// file's tracks still do.
inline QString headerRemovalMkv()
{
    const QString path = editingMedia(u"hr.mkv"_s);
    if (!QFile::exists(path))
        testsupport::run(u"mkvmerge -o '%1' --compression 0:mpeg4_p2 '%2'"_s.arg(path, xvidAvi(u"hr.avi"_s, u"160x120"_s, 2)));
    return path;
}

inline bool usesHeaderRemoval(const QString &path)
{
    QString info;
    testsupport::run(u"mkvinfo '%1'"_s.arg(path), &info);
    EXPECT_TRUE(info.contains(u"Track type: video"_s)) << path.toStdString();
    return info.contains(u"header removal"_s);
}
