#pragma once

#include <QList>
#include <QString>

// When the sources' picture flashes white and their sound starts (seconds).
constexpr double kCueSeconds = 1.2;

// One kind of video people have, made at test time with ffmpeg: short,
// small, each with its own frame rate and size.
struct MatrixSource
{
    QString name;        // row label, e.g. "MKV H.264/AC-3 5.1/SRT"
    QString fileName;    // the extension decides the container
    QString ffmpegArgs;  // inputs and codecs; the output name follows
    bool surround = false;
    bool subtitles = false;

    // The sources the matrix converts, in table order.
    static QList<MatrixSource> all();
};

// Writes the source into dir; answers the path, or an empty text with *why.
QString generateSource(const MatrixSource &source, const QString &dir, QString *why);
