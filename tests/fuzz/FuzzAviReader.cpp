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
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    av_log_set_level(AV_LOG_QUIET);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const std::string path = "/tmp/kestrane-fuzz-avi-" + std::to_string(::getpid()) + ".avi";
    if (size > 256 * 1024)
        return 0;
    {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        if (size > 0) // an empty input comes with no buffer at all
            file.write(reinterpret_cast<const char *>(data), std::streamsize(size));
    }
    try {
        mediatool::InputPtr input = mediatool::openAviFile(path);
        std::vector<mediatool::PacketEntry> entries;
        for (unsigned i = 0; i < input->nb_streams; ++i)
            mediatool::addIndexEntries(input->streams[i], int(i), entries);
        entries.clear();
        int videoStream = -1;
        mediatool::PacketPtr packet = mediatool::newPacket();
        for (int count = 0; count < 5000 && av_read_frame(input.get(), packet.get()) >= 0; ++count) {
            const AVStream *stream = input->streams[packet->stream_index];
            if (videoStream < 0 && stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO)
                videoStream = packet->stream_index;
            const int64_t timestamp = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
            if (timestamp != AV_NOPTS_VALUE)
                entries.push_back({packet->stream_index, timestamp, mediatool::toMicroseconds(timestamp, stream->time_base),
                                   packet->size, (packet->flags & AV_PKT_FLAG_KEY) != 0});
            av_packet_unref(packet.get());
        }
        if (videoStream >= 0) {
            (void)mediatool::planBySize(entries, videoStream, 4096, 8, int(input->nb_streams));
            (void)mediatool::planByTime(entries, videoStream, 200000, 900000, 900000);
        }
    } catch (const mediatool::ToolError &) {
    }
    return 0;
}
