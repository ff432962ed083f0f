#pragma once

#include "AvHandles.h"
#include "OutputFile.h"

#include <string>
#include <vector>

namespace mediatool {

// One AVI file written by stream copy. Streams are added as copies of input
// streams; packets arrive with the source stream's time base and are
// interleaved and indexed by libavformat's AVI muxer. Nothing appears under
// the name until commit().
class AviWriter
{
public:
    explicit AviWriter(const std::string &path);
    AviWriter(const AviWriter &) = delete;
    AviWriter &operator=(const AviWriter &) = delete;
    ~AviWriter();

    // Adds a stream with the parameters of `source`; answers its index.
    int addStreamLike(const AVStream *source);
    void copyFileTagsFrom(const AVFormatContext *source);
    void writeHeader();
    // Writes `packet` (timestamps in `sourceTimeBase`) to stream `index`. The
    // packet is consumed. Timestamps that would run backwards are lifted.
    void write(AVPacket *packet, int index, AVRational sourceTimeBase);
    // Writes the index and the final header; then the file may be committed.
    void writeTrailer();
    void commit() { output.commit(); }
    void withdraw() noexcept { output.withdraw(); }

    const std::string &path() const { return output.path(); }
    // Bytes in the file (after writeTrailer(): its final size).
    int64_t fileBytes() { return output.size(); }
    int64_t packetsWritten() const { return packetCount; }

private:
    OutputFile output;
    AVFormatContext *context = nullptr;
    std::vector<int64_t> lastDts;
    int64_t packetCount = 0;
    bool headerWritten = false;
    bool trailerWritten = false;
};

} // namespace mediatool
