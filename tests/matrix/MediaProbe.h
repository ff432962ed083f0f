#pragma once

#include <QString>
#include <QStringList>

// The facts of one stream as mediainfo reports them.
struct StreamFacts
{
    bool present = false;
    QString format;        // "MPEG-4 Visual", "AC-3", "MPEG Audio", ...
    QString formatProfile; // "Layer 3" for MP3
    QString codecId;       // the fourcc or format tag
    double seconds = 0;
    double frameRate = 0;
    int width = 0;
    int channels = 0;
};

// MEncoder's lower-case "xvid" fourcc reads as its own format.
bool isMpeg4Visual(const StreamFacts &video);

struct MediaFacts
{
    bool readable = false;
    QString container;
    StreamFacts video; // the first of each kind
    StreamFacts audio;
};

// mediainfo's plain report of a file.
MediaFacts probeMedia(const QString &path);

// What decoding a whole file with ffmpeg shows: two pictures a second,
// hashed; when the picture first turns white and the sound first starts
// (seconds, negative when never); the loudest sample.
struct DecodedFacts
{
    QStringList pictureHashes;
    double flash = -1;
    double soundStart = -1;
    double maxVolumeDb = -1000; // -1000: no audio decoded
    int brokenPackets = 0;      // packets the decoders refused
    QString error;

    // The picture late in the clip differs from the one early in it.
    bool pictureMoves() const;
    bool audible() const { return maxVolumeDb > -60; }
};

DecodedFacts decodeMedia(const QString &path);

// One picture at `seconds`, scaled to 80x60 grey (one byte a pixel); empty
// when none could be decoded.
QByteArray greyPicture(const QString &path, double seconds);
constexpr int kGreyWidth = 80;
constexpr int kGreyHeight = 60;
