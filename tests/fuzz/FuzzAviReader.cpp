// Fuzz target for the media tool's AVI reading: any bytes (mutations of
// small real AVIs) opened as an AVI, read packet by packet and planned into
// pieces by size and by time, as avisplit does.
#include "AvHandles.h"
#include "SplitPlanner.h"
#include "ToolError.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

std::string inputPath()
{
    static const std::string path = "/tmp/kestrane-fuzz-avi-" + std::to_string(::getpid()) + ".avi";
    return path;
}

std::vector<mediatool::PacketEntry> readEntries(AVFormatContext *input, int &videoStream)
{
    std::vector<mediatool::PacketEntry> entries;
    mediatool::PacketPtr packet = mediatool::newPacket();
    for (int count = 0; count < 5000 && av_read_frame(input, packet.get()) >= 0; ++count) {
        const AVStream *stream = input->streams[packet->stream_index];
        if (videoStream < 0 && stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO)
            videoStream = packet->stream_index;
        const int64_t timestamp = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
        if (timestamp != AV_NOPTS_VALUE)
            entries.push_back({packet->stream_index, timestamp, mediatool::toMicroseconds(timestamp, stream->time_base),
                               packet->size, (packet->flags & AV_PKT_FLAG_KEY) != 0});
        av_packet_unref(packet.get());
    }
    return entries;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    av_log_set_level(AV_LOG_QUIET);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > 256 * 1024)
        return 0;
    std::FILE *file = std::fopen(inputPath().c_str(), "wb");
    if (!file)
        return 0;
    // An empty input comes with no buffer at all.
    if (size > 0)
        std::fwrite(data, 1, size, file);
    std::fclose(file);
    try {
        mediatool::InputPtr input = mediatool::openAviFile(inputPath());
        int videoStream = -1;
        for (unsigned i = 0; i < input->nb_streams; ++i) {
            std::vector<mediatool::PacketEntry> indexed;
            mediatool::addIndexEntries(input->streams[i], int(i), indexed);
        }
        const std::vector<mediatool::PacketEntry> entries = readEntries(input.get(), videoStream);
        if (videoStream >= 0) {
            (void)mediatool::planBySize(entries, videoStream, 4096, 8, int(input->nb_streams));
            (void)mediatool::planByTime(entries, videoStream, 200000, 900000, 900000);
        }
    } catch (const mediatool::ToolError &) {
    }
    return 0;
}
