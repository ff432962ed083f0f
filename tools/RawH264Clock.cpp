#include "RawH264Clock.h"

#include "ToolError.h"

#include <algorithm>
#include <cstdio>

namespace mediatool {
namespace {

// Frames looked at before the decoding delay is fixed.
constexpr std::size_t kDelaySample = 64;

} // namespace

bool holdsIdrPicture(const uint8_t *data, int size)
{
    for (int i = 0; i + 3 < size; ++i) {
        if (data[i] == 0 && data[i + 1] == 0 && data[i + 2] == 1) {
            const int type = data[i + 3] & 0x1f;
            // The first slice tells; the picture data after it need not be searched.
            if (type >= 1 && type <= 5)
                return type == 5;
            i += 2;
        }
    }
    return false;
}

RawH264Clock::RawH264Clock(const AVCodecParameters *parameters, AVRational frameRate)
    : rate(frameRate), parser(av_parser_init(AV_CODEC_ID_H264)), parserCodec(avcodec_alloc_context3(nullptr)),
      minimumDelay(std::max(0, parameters->video_delay))
{
    if (!parser || !parserCodec)
        throw ToolError("out of memory");
    // Each packet of the raw demuxer is one whole access unit.
    parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    checkAv(avcodec_parameters_to_context(parserCodec.get(), parameters), "cannot read the H.264 parameters");
}

void RawH264Clock::add(PacketPtr packet)
{
    uint8_t *data = nullptr;
    int size = 0;
    av_parser_parse2(parser.get(), parserCodec.get(), &data, &size, packet->data, packet->size, AV_NOPTS_VALUE,
                     AV_NOPTS_VALUE, 0);
    order.add(parser->output_picture_number, holdsIdrPicture(packet->data, packet->size));
    unranked.push_back(std::move(packet));
    rankWhatIsKnown();
}

void RawH264Clock::finish()
{
    finished = true;
    order.finish();
    rankWhatIsKnown();
}

void RawH264Clock::rankWhatIsKnown()
{
    while (order.hasRank()) {
        const int64_t rank = order.takeRank();
        ranked.push_back({std::move(unranked.front()), rank});
        unranked.pop_front();
    }
    if (delay >= 0 || (ranked.size() < kDelaySample && !finished))
        return;
    // The deepest reordering among the first frames, so that the first
    // B-frames are not shown before their reference is decoded.
    delay = minimumDelay;
    for (std::size_t i = 0; i < ranked.size(); ++i)
        delay = std::max(delay, static_cast<int64_t>(i) - ranked[i].rank);
}

void RawH264Clock::stamp(Ranked &frame)
{
    AVPacket *packet = frame.packet.get();
    packet->pts = frame.rank;
    packet->dts = stampedCount++ - delay;
    if (packet->dts > packet->pts || packet->dts <= lastDts) {
        // Deeper reordering than the first frames showed: keep the decoding
        // order and give up this frame's exact display time.
        packet->dts = std::max(lastDts + 1, std::min(packet->dts, packet->pts));
        packet->pts = std::max(packet->pts, packet->dts);
        if (!warned)
            std::printf("warning: the H.264 stream reorders frames more deeply later on; some frames are shown up to a frame late\n");
        warned = true;
    }
    lastDts = packet->dts;
    packet->duration = 1;
}

PacketPtr RawH264Clock::take()
{
    if (delay < 0 || ranked.empty())
        return nullptr;
    stamp(ranked.front());
    PacketPtr packet = std::move(ranked.front().packet);
    ranked.pop_front();
    return packet;
}

} // namespace mediatool
