#pragma once

#include "AvHandles.h"
#include "TrackPipeline.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mediatool {

// A file tracks are taken from, read once in stored order. Each stream
// taken feeds a pipeline of its own; the other streams are not read.
class Mp4Source
{
public:
    // Opens `path`. `frameRate` (-fps) times raw video and frame-counted
    // subtitles; files that carry their own timing ignore it.
    Mp4Source(const std::string &path, std::optional<AVRational> frameRate);

    const std::string &path() const { return filePath; }
    AVFormatContext *file() const { return input.get(); }
    // True for MP4, MOV and M4V files.
    bool isMp4() const;
    bool isMatroska() const;

    // The streams that MP4Box's track number `trackId` names: the track ID in
    // an MP4, the track number in a Matroska file, the stream's place
    // (from 1) elsewhere. 0 names every video, audio and subtitle stream.
    std::vector<int> streamsFor(int trackId) const;
    // The track number of stream `index`, as streamsFor() counts.
    int trackIdOf(int index) const;

    // What stream `index` needs to go into a file of `textSubtitles`
    // (mov_text for MP4, subrip for SRT), with its pixel aspect set to
    // `aspect` ({0, 1}: as it is).
    PipelineNeeds needsOf(int index, AVCodecID textSubtitles, AVRational aspect = {0, 1}) const;
    // Sets up a pipeline for stream `index`; the source owns it.
    TrackPipeline &feed(int index, const PipelineNeeds &needs);

    // Reads until a pipeline has a packet ready. False once the file is
    // read and every pipeline is empty.
    bool fillSome();
    // The pipeline whose ready packet comes first, or null.
    TrackPipeline *earliest() const;

    int64_t bytesRead() const;
    int64_t bytesTotal() const { return totalBytes; }

private:
    void readPacket();

    std::string filePath;
    InputPtr input;
    std::optional<AVRational> rate;
    std::vector<std::unique_ptr<TrackPipeline>> pipelines;
    std::vector<int> pipelineStream;
    int64_t totalBytes = 0;
    bool started = false;
    bool ended = false;
};

// True for the video, audio and subtitle streams an MP4 carries (cover
// pictures are not tracks).
bool isMediaStream(const AVStream *stream);

// A short description of a stream for logs: "h264 video 1280x720".
std::string describeStream(const AVStream *stream);

} // namespace mediatool
