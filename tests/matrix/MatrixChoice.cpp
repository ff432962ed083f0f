#include "MatrixChoice.h"

namespace {

// Tracks by position: every source has its video first, then its audio,
// then its subtitle.
const QStringList kVideoAndAudio{QStringLiteral("--tracks"), QStringLiteral("1,2")};
const QStringList kWithSubtitle{QStringLiteral("--tracks"), QStringLiteral("1,2,3")};
const QStringList kMpeg4{QStringLiteral("--video"), QStringLiteral("mpeg4"), QStringLiteral("--bitrate"),
                         QStringLiteral("600")};
const QStringList kMp3{QStringLiteral("--audio"), QStringLiteral("mp3")};

} // namespace

QList<MatrixChoice> MatrixChoice::all()
{
    using V = Video;
    using A = Audio;
    QList<MatrixChoice> choices;
    // "First Track" and "Manual": whatever the rules start with, which burns
    // the first subtitle.
    MatrixChoice defaults{QStringLiteral("defaults"), {}, V::AsSource, A::AsSource};
    defaults.burnsSubtitle = true;
    choices.append(defaults);
    choices.append({QStringLiteral("passthru"),
                    kVideoAndAudio + QStringList{QStringLiteral("--video"), QStringLiteral("passthru"),
                                                 QStringLiteral("--audio"), QStringLiteral("passthru")},
                    V::AsSource, A::AsSource});
    // The source's own video bit rate, as the window fills it in, and the
    // audio passed through.
    choices.append({QStringLiteral("MPEG-4"), kVideoAndAudio + QStringList{QStringLiteral("--video"), QStringLiteral("mpeg4")},
                    V::Mpeg4, A::AsSource});
    MatrixChoice twoPasses{QStringLiteral("2 passes"),
                           kVideoAndAudio
                               + QStringList{QStringLiteral("--video"), QStringLiteral("mpeg4-2pass"),
                                             QStringLiteral("--bitrate"), QStringLiteral("600")}
                               + kMp3,
                           V::Mpeg4, A::Mp3};
    twoPasses.mustConvert = true;
    choices.append(twoPasses);
    MatrixChoice narrower{QStringLiteral("width 160"),
                          kVideoAndAudio + kMpeg4 + QStringList{QStringLiteral("--width"), QStringLiteral("160")} + kMp3,
                          V::Mpeg4, A::Mp3, 160};
    narrower.mustConvert = true;
    choices.append(narrower);
    choices.append({QStringLiteral("MP3"), kVideoAndAudio + kMp3, V::AsSource, A::Mp3});
    choices.append({QStringLiteral("AC-3 5.1"),
                    kVideoAndAudio + kMpeg4 + QStringList{QStringLiteral("--audio"), QStringLiteral("ac3")},
                    V::Mpeg4, A::Ac3});
    MatrixChoice burn{QStringLiteral("burn sub"),
                      kWithSubtitle + kMpeg4 + kMp3 + QStringList{QStringLiteral("--subtitles"), QStringLiteral("burn")},
                      V::Mpeg4, A::Mp3};
    burn.needsSubtitles = true;
    burn.burnsSubtitle = true;
    burn.mustConvert = true;
    choices.append(burn);
    MatrixChoice extract{QStringLiteral("extract sub"),
                         kWithSubtitle + kMpeg4 + kMp3
                             + QStringList{QStringLiteral("--subtitles"), QStringLiteral("extract")},
                         V::Mpeg4, A::Mp3};
    extract.needsSubtitles = true;
    extract.extractsSubtitle = true;
    extract.mustConvert = true;
    choices.append(extract);
    // Into Matroska, which holds any picture and sound as it is; the picture
    // is copied, which mkvmerge cannot do out of every container (refused).
    const QStringList kMkv{QStringLiteral("--to"), QStringLiteral("mkv")};
    MatrixChoice mkvAac{QStringLiteral("MKV AAC"), kMkv + kVideoAndAudio + QStringList{QStringLiteral("--audio"), QStringLiteral("aac")},
                        V::AsSource, A::AacStereo};
    mkvAac.intoMkv = true;
    choices.append(mkvAac);
    MatrixChoice mkvAc3{QStringLiteral("MKV AC-3 5.1"), kMkv + kVideoAndAudio + QStringList{QStringLiteral("--audio"), QStringLiteral("ac3")},
                        V::AsSource, A::Ac3};
    mkvAc3.intoMkv = true;
    choices.append(mkvAc3);
    // Into MP4, which takes H.264 or MPEG-4 pictures and AAC or AC-3 sound
    // as they are: copying is refused for the rest, converting never is.
    const QStringList kMp4{QStringLiteral("--to"), QStringLiteral("mp4")};
    MatrixChoice mp4Copy{QStringLiteral("MP4 copy"), kMp4 + kVideoAndAudio, V::AsSource, A::AsSource};
    mp4Copy.intoMp4 = true;
    choices.append(mp4Copy);
    MatrixChoice mp4Aac{QStringLiteral("MP4 MPEG-4/AAC"),
                        kMp4 + kVideoAndAudio + kMpeg4 + QStringList{QStringLiteral("--audio"), QStringLiteral("aac")},
                        V::Mpeg4, A::AacStereo};
    mp4Aac.intoMp4 = true;
    mp4Aac.mustConvert = true;
    choices.append(mp4Aac);
    return choices;
}
