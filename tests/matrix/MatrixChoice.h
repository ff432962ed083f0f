#pragma once

#include "MatrixSource.h"

#include <QList>
#include <QString>
#include <QStringList>

// One choice a user makes for a file, as kestrane-cli options, and what the
// AVI (or, into Matroska or MP4, the MKV or MP4) must then hold.
struct MatrixChoice
{
    enum class Video { AsSource, Mpeg4 };
    enum class Audio { AsSource, Mp3, Ac3, AacStereo };

    QString heading;
    QStringList options;
    Video video = Video::AsSource;
    Audio audio = Audio::AsSource;
    int width = 0;                // 0: as the source
    bool needsSubtitles = false;  // only for sources with a subtitle
    bool extractsSubtitle = false;
    bool burnsSubtitle = false;   // when the source has a subtitle
    bool mustConvert = false;     // a refusal is a fault
    bool intoMkv = false;         // --to mkv: the result is NAME.EXT.muxed.mkv
    bool intoMp4 = false;         // --to mp4: the result is NAME.EXT.mp4, or .m4v with AC-3

    bool appliesTo(const MatrixSource &source) const { return !needsSubtitles || source.subtitles; }
    // AC-3 5.1 must work from a surround track; from stereo it is refused.
    // Into Matroska the copied picture may be refused, whatever the sound.
    bool mustConvertFor(const MatrixSource &source) const
    {
        return mustConvert || (audio == Audio::Ac3 && source.surround && !intoMkv && !intoMp4);
    }

    // The choices, in column order.
    static QList<MatrixChoice> all();
};
