#include "PacketRouter.h"

#include "Interruption.h"
#include "ToolError.h"

#include <algorithm>

namespace mediatool {

void PacketRouter::copyAll(const std::vector<Mp4Source *> &sources, int64_t offsetUs)
{
    while (true) {
        throwIfInterrupted();
        Mp4Source *next = nullptr;
        for (Mp4Source *source : sources) {
            if (source->fillSome() && (!next || source->earliest()->nextTimeUs() < next->earliest()->nextTimeUs()))
                next = source;
        }
        if (!next)
            break;
        copyOne(*next, offsetUs);
        int64_t read = bytesDone;
        for (const Mp4Source *source : sources)
            read += source->bytesRead();
        progress.show(totalBytes > 0 ? static_cast<double>(read) / static_cast<double>(totalBytes) : 0);
    }
    for (const Mp4Source *source : sources)
        bytesDone += source->bytesTotal();
}

void PacketRouter::copyOne(Mp4Source &source, int64_t offsetUs)
{
    TrackPipeline &pipeline = *source.earliest();
    PacketPtr packet = pipeline.take();
    const AVRational timeBase = pipeline.timeBase();
    const int64_t offset = av_rescale_q(offsetUs, AV_TIME_BASE_Q, timeBase);
    if (packet->pts != AV_NOPTS_VALUE) {
        packet->pts += offset;
        latestEndUs = std::max(latestEndUs, toMicroseconds(packet->pts + packet->duration, timeBase));
    }
    if (packet->dts != AV_NOPTS_VALUE)
        packet->dts += offset;
    writer.write(packet.get(), tracks.at(&pipeline), timeBase);
}

} // namespace mediatool
