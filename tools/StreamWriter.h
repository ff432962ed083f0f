#pragma once

#include "AvHandles.h"
#include "OutputFile.h"

#include <memory>
#include <string>
#include <vector>

namespace mediatool {

// One media file written by stream copy in any format libavformat writes.
// Packets arrive with their source's time base and are interleaved by the
// muxer. Nothing appears under the name until commit().
class StreamWriter
{
public:
    StreamWriter(const std::string &path, const char *format);
    StreamWriter(const StreamWriter &) = delete;
    StreamWriter &operator=(const StreamWriter &) = delete;
    virtual ~StreamWriter();

    // Adds a stream with `parameters`, timed in `timeBase`; answers its index.
    int addStream(const AVCodecParameters *parameters, AVRational timeBase);
    // Adds a stream with the parameters, rates, aspect, disposition and tags
    // of `source`.
    virtual int addStreamLike(const AVStream *source);
    AVStream *stream(int index) const { return context->streams[index]; }
    void copyFileTagsFrom(const AVFormatContext *source);
    // `options` are the muxer's private options; any it does not take is an error.
    void writeHeader(const AVDictionary *options = nullptr);
    // Writes `packet` (timestamps in `sourceTimeBase`) to stream `index`. The
    // packet is consumed. Timestamps that would run backwards are lifted.
    void write(AVPacket *packet, int index, AVRational sourceTimeBase);
    // Finishes the file; then it may be committed.
    void writeTrailer();
    // Finishes the file and gives it its name, unless a stop signal came.
    void complete();
    void commit() { output.commit(); }
    void withdraw() noexcept { output.withdraw(); }

    const std::string &path() const { return output.path(); }
    // Bytes in the file (after writeTrailer(): its final size).
    int64_t fileBytes() { return output.size(); }
    int64_t packetsWritten() const { return packetCount; }

protected:
    // Gives stream `index` the rates, pixel aspect, disposition and tags of `source`.
    void adoptTraits(int index, const AVStream *source);
    // True when a stream may start before zero (the muxer then writes an
    // edit list); otherwise the first packet is lifted to zero.
    virtual bool keepsNegativeStart() const { return false; }

    OutputFile output;
    AVFormatContext *context = nullptr;

private:
    std::vector<int64_t> lastDts;
    int64_t packetCount = 0;
};

// The files a run has completed. Unless the run keeps them, they are taken
// back when it fails, so a failed run leaves nothing.
class CompletedFiles
{
public:
    CompletedFiles() = default;
    CompletedFiles(const CompletedFiles &) = delete;
    CompletedFiles &operator=(const CompletedFiles &) = delete;
    ~CompletedFiles()
    {
        if (!kept) {
            for (auto &file : files)
                file->withdraw();
        }
    }

    void add(std::unique_ptr<StreamWriter> file) { files.push_back(std::move(file)); }
    void keep() { kept = true; }

private:
    std::vector<std::unique_ptr<StreamWriter>> files;
    bool kept = false;
};

} // namespace mediatool
