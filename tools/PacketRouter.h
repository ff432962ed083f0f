#pragma once

#include "Mp4Progress.h"
#include "Mp4Source.h"
#include "StreamWriter.h"

#include <limits>
#include <map>
#include <vector>

namespace mediatool {

// Moves the packets of the sources' pipelines into the tracks of one
// writer, earliest first across all sources, showing the progress by the
// bytes read.
class PacketRouter
{
public:
    PacketRouter(StreamWriter &writer, Mp4Progress &progress, int64_t totalBytes)
        : writer(writer), progress(progress), totalBytes(totalBytes)
    {
    }

    // Packets of `pipeline` go to track `track` of the writer.
    void route(const TrackPipeline &pipeline, int track) { tracks[&pipeline] = track; }
    // Copies everything `sources` hold, every timestamp moved by `offsetUs`.
    void copyAll(const std::vector<Mp4Source *> &sources, int64_t offsetUs = 0);
    // Where the latest packet written so far ends, in microseconds.
    int64_t endUs() const { return latestEndUs; }

private:
    void copyOne(Mp4Source &source, int64_t offsetUs);

    StreamWriter &writer;
    Mp4Progress &progress;
    std::map<const TrackPipeline *, int> tracks;
    int64_t totalBytes;
    int64_t bytesDone = 0;
    int64_t latestEndUs = std::numeric_limits<int64_t>::min();
};

} // namespace mediatool
