#pragma once

#include "MatrixSource.h"

#include <QList>
#include <QString>
#include <QStringList>

// One choice a user makes for a file, as kestrane-cli options, and what the
// AVI must then hold.
struct MatrixChoice
{
    enum class Video { AsSource, Mpeg4 };
    enum class Audio { AsSource, Mp3, Ac3 };

    QString heading;
    QStringList options;
    Video video = Video::AsSource;
    Audio audio = Audio::AsSource;
    int width = 0;                // 0: as the source
    bool needsSubtitles = false;  // only for sources with a subtitle
    bool extractsSubtitle = false;
    bool burnsSubtitle = false;   // when the source has a subtitle
    bool mustConvert = false;     // a refusal is a fault

    bool appliesTo(const MatrixSource &source) const { return !needsSubtitles || source.subtitles; }
    // AC-3 5.1 must work from a surround track; from stereo it is refused.
    bool mustConvertFor(const MatrixSource &source) const
    {
        return mustConvert || (audio == Audio::Ac3 && source.surround);
    }

    // The choices, in column order.
    static QList<MatrixChoice> all();
};
