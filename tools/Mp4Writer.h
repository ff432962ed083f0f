#pragma once

#include "StreamWriter.h"

#include <optional>
#include <string>

namespace mediatool {

// The file-wide MP4Box options, as far as FFmpeg's MP4 writer has them.
struct Mp4Layout
{
    bool ipod = false;             // -ipod: the iPod flavour ("M4V " brand, uuid box for H.264)
    bool indexInFront = false;     // -inter: the index (moov) before the media data
    bool objectDescriptor = false; // -isma: an initial object descriptor (iods)
};

// How one track is labelled in the file.
struct TrackLabel
{
    enum class Enabled { AsSource, Yes, No };

    std::string language;             // ISO 639-2; empty keeps the source's
    std::optional<std::string> title; // written as the handler name
    Enabled enabled = Enabled::AsSource;
    AVRational pixelAspect{0, 1};     // {0, 1} keeps the source's
};

// One MP4 file written by stream copy.
class Mp4Writer : public StreamWriter
{
public:
    Mp4Writer(const std::string &path, const Mp4Layout &layout);

    // Adds a track with `parameters` timed in `timeBase`, with the tags and
    // disposition of `source` (may be null) changed by `label`. Throws a
    // ToolError when MP4 cannot hold the codec.
    int addTrack(const AVCodecParameters *parameters, AVRational timeBase, const AVStream *source, const TrackLabel &label);
    // Copies a stream of another MP4 as it is.
    int addStreamLike(const AVStream *source) override { return addTrack(source->codecpar, source->time_base, source, {}); }
    void writeHeader();

protected:
    bool keepsNegativeStart() const override { return true; }

private:
    Mp4Layout layout;
};

} // namespace mediatool
