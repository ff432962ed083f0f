#pragma once

#include "AvHandles.h"
#include "RawH264Clock.h"

extern "C" {
#include <libavcodec/bsf.h>
}

#include <deque>
#include <memory>
#include <optional>

namespace mediatool {

struct ParametersFreer { void operator()(AVCodecParameters *parameters) const { avcodec_parameters_free(&parameters); } };
using ParametersPtr = std::unique_ptr<AVCodecParameters, ParametersFreer>;

// What a source stream needs on its way into the output.
struct PipelineNeeds
{
    std::optional<AVRational> clockRate; // raw H.264: timestamps made at this frame rate
    AVRational h264Aspect{0, 1};         // H.264: pixel aspect written into the stream itself
    AVCodecID subtitleCodec = AV_CODEC_ID_NONE; // text subtitles: converted to this codec
};

// The packets of one source stream on their way into one output track:
// copied as they are, given timestamps, passed through bitstream filters or
// converted (text subtitles). Packets go in in stored order; ready ones come
// out with the parameters and time base the pipeline answers.
class TrackPipeline
{
public:
    TrackPipeline(const AVStream *source, const PipelineNeeds &needs);
    TrackPipeline(const TrackPipeline &) = delete;
    TrackPipeline &operator=(const TrackPipeline &) = delete;
    ~TrackPipeline();

    const AVCodecParameters *parameters() const { return output.get(); }
    AVRational timeBase() const { return outputTimeBase; }
    const AVStream *source() const { return stream; }

    // Takes one packet of the source stream.
    void push(PacketPtr packet);
    // The source has ended: what was held back becomes ready.
    void finish();
    bool hasPacket() const { return !ready.empty(); }
    // Microseconds of the next ready packet (decoding time).
    int64_t nextTimeUs() const;
    PacketPtr take();

private:
    void setUpFilter(const std::string &description);
    void setUpSubtitleConversion(AVCodecID target);
    void filter(PacketPtr packet);
    void convertSubtitle(PacketPtr packet);
    void drainFilter();

    const AVStream *stream;
    ParametersPtr output;
    AVRational outputTimeBase;
    std::unique_ptr<RawH264Clock> clock;
    AVBSFContext *bitstreamFilter = nullptr;
    CodecPtr subtitleDecoder;
    CodecPtr subtitleEncoder;
    std::deque<PacketPtr> ready;
};

} // namespace mediatool
