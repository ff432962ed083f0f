#pragma once

#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

using namespace Qt::StringLiterals;

// What a finished tool left: its exit status (-1 when it crashed or hung)
// and its output.
struct ProcessResult
{
    int status = -1;
    QByteArray bytes; // standard output as it came
    QString out;
    QString err;

    bool ok() const { return status == 0; }
    // The last non-empty line of standard error, trimmed.
    QString lastErrorLine() const;
};

// Runs a program without a shell and waits for it (from any thread).
ProcessResult runProcess(const QString &program, const QStringList &arguments,
                         const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

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

struct MediaFacts
{
    bool readable = false;
    QString container;
    StreamFacts video; // the first of each kind
    StreamFacts audio;
};

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

    // Half a second in against the last picture: a picture repeated from
    // the start shows as equal hashes, a picture never decoded as none.
    bool pictureMoves() const { return pictureHashes.size() >= 3 && pictureHashes.at(1) != pictureHashes.last(); }
    bool audible() const { return maxVolumeDb > -60; }
};

DecodedFacts decodeMedia(const QString &path);

// One picture at `seconds`, scaled to 80x60 grey (one byte a pixel); empty
// when none could be decoded.
QByteArray greyPicture(const QString &path, double seconds);
constexpr int kGreyWidth = 80;
constexpr int kGreyHeight = 60;

// When the sources' picture flashes white and their sound starts (seconds).
constexpr double kCueSeconds = 1.2;

// One kind of video people have, made at test time with ffmpeg: short,
// small, each with its own frame rate and size.
struct MatrixSource
{
    QString name;     // row label, e.g. "MKV H.264/AC-3 5.1/SRT"
    QString fileName; // the extension decides the container
    QString size;
    QString rate;
    QString codecs;   // ffmpeg's codec options; the output name follows
    bool surround = false;
    QString subtitle = {}; // "srt", "ass" or none
    int sampleRate = 48000;

    bool subtitles() const { return !subtitle.isEmpty(); }
    static QList<MatrixSource> all(); // in table order
};

// Writes the source into dir; answers the path, or an empty text with *why.
QString generateSource(const MatrixSource &source, const QString &dir, QString *why);

// One choice a user makes for a file, as kestrane-cli options, and what the
// result must then hold.
struct MatrixChoice
{
    enum class Video { AsSource, Mpeg4 };
    enum class Audio { AsSource, Mp3, Ac3, AacStereo };
    enum class Into { Avi, Mkv, Mp4 }; // NAME.EXT.avi, NAME.EXT.muxed.mkv, NAME.EXT.mp4 (.m4v with AC-3)

    QString heading;
    QString options;
    Video video = Video::AsSource;
    Audio audio = Audio::AsSource;
    Into into = Into::Avi;
    int width = 0;               // 0: as the source
    bool needsSubtitles = false; // only for sources with a subtitle
    bool extractsSubtitle = false;
    bool burnsSubtitle = false;  // when the source has a subtitle
    bool mustConvert = false;    // a refusal is a fault

    bool appliesTo(const MatrixSource &source) const { return !needsSubtitles || source.subtitles(); }
    // AC-3 5.1 must work from a surround track into an AVI; from stereo it
    // is refused, and into Matroska or MP4 the copied picture may be.
    bool mustConvertFor(const MatrixSource &source) const
    {
        return mustConvert || (audio == Audio::Ac3 && source.surround && into == Into::Avi);
    }
    static QList<MatrixChoice> all(); // in column order
};

// How one source and one choice ended.
struct Verdict
{
    enum class Outcome { NotApplicable, Ok, Refused, Failed };
    Outcome outcome = Outcome::NotApplicable;
    QString detail; // the refusal's reason, or what went wrong
};

// A generated source with the facts its outputs are measured against.
struct PreparedSource
{
    MatrixSource source;
    QString path;
    MediaFacts facts;
    DecodedFacts decoded;
    QString problem; // why it could not be made
};

// Runs kestrane-cli convert for one cell in its own folder (its own
// settings file and save folder) and judges what it left.
Verdict runCell(const PreparedSource &source, const MatrixChoice &choice, const QString &folder, const QString &cli);
