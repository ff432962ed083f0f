#pragma once

#include "AvHandles.h"
#include "PresentationOrder.h"

#include <deque>
#include <limits>

namespace mediatool {

struct ParserCloser { void operator()(AVCodecParserContext *parser) const { av_parser_close(parser); } };
using ParserPtr = std::unique_ptr<AVCodecParserContext, ParserCloser>;

// Gives the frames of a raw H.264 stream their timestamps. The stream has
// none, and with B-frames the display order differs from the stored one:
// each frame's picture order count (read by FFmpeg's H.264 parser) puts it
// in its place, one frame every 1/rate seconds. Decoding timestamps run
// behind by the stream's reordering depth, so no frame is shown before it
// is decoded.
class RawH264Clock
{
public:
    RawH264Clock(const AVCodecParameters *parameters, AVRational frameRate);

    // One frame per tick.
    AVRational timeBase() const { return av_inv_q(rate); }
    // Takes the next access unit in stored order.
    void add(PacketPtr packet);
    // The stream has ended.
    void finish();
    // The next frame with its timestamps, or null while it must wait for
    // the frames after it.
    PacketPtr take();

private:
    struct Ranked
    {
        PacketPtr packet;
        int64_t rank;
    };

    void rankWhatIsKnown();
    void stamp(Ranked &frame);

    AVRational rate;
    ParserPtr parser;
    CodecPtr parserCodec;
    PresentationOrder order;
    std::deque<PacketPtr> unranked;
    std::deque<Ranked> ranked;
    int64_t stampedCount = 0;
    int64_t lastDts = std::numeric_limits<int64_t>::min();
    int minimumDelay = 0;
    int64_t delay = -1; // decided from the first frames
    bool finished = false;
    bool warned = false;
};

// True when the access unit holds an IDR picture, which starts a new
// sequence of picture order counts.
bool holdsIdrPicture(const uint8_t *data, int size);

} // namespace mediatool
