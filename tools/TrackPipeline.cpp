#include "TrackPipeline.h"

#include "ToolError.h"

#include <cstring>
#include <functional>
#include <vector>

namespace mediatool {
namespace {

constexpr int kSubtitleBufferSize = 64 * 1024;

CodecPtr openCodec(const AVCodec *codec, const std::string &what, const std::function<void(AVCodecContext *)> &setUp)
{
    if (!codec)
        throw ToolError("no " + what + " in this FFmpeg");
    CodecPtr context(avcodec_alloc_context3(codec));
    if (!context)
        throw ToolError("out of memory");
    setUp(context.get());
    checkAv(avcodec_open2(context.get(), codec, nullptr), "cannot open the " + what);
    return context;
}

} // namespace

TrackPipeline::TrackPipeline(const AVStream *source, const PipelineNeeds &needs)
    : stream(source), output(avcodec_parameters_alloc()), outputTimeBase(source->time_base)
{
    if (!output)
        throw ToolError("out of memory");
    checkAv(avcodec_parameters_copy(output.get(), source->codecpar), "cannot copy stream parameters");
    if (needs.clockRate) {
        clock = std::make_unique<RawH264Clock>(source->codecpar, *needs.clockRate);
        outputTimeBase = clock->timeBase();
    }
    if (needs.h264Aspect.num > 0)
        setUpFilter("h264_metadata=sample_aspect_ratio=" + std::to_string(needs.h264Aspect.num) + "/"
                    + std::to_string(needs.h264Aspect.den));
    if (needs.subtitleCodec != AV_CODEC_ID_NONE)
        setUpSubtitleConversion(needs.subtitleCodec);
}

TrackPipeline::~TrackPipeline()
{
    av_bsf_free(&bitstreamFilter);
}

void TrackPipeline::setUpFilter(const std::string &description)
{
    checkAv(av_bsf_list_parse_str(description.c_str(), &bitstreamFilter), "cannot set up " + description);
    checkAv(avcodec_parameters_copy(bitstreamFilter->par_in, output.get()), "cannot set up " + description);
    bitstreamFilter->time_base_in = outputTimeBase;
    checkAv(av_bsf_init(bitstreamFilter), "cannot set up " + description);
    checkAv(avcodec_parameters_copy(output.get(), bitstreamFilter->par_out), "cannot set up " + description);
    outputTimeBase = bitstreamFilter->time_base_out;
}

void TrackPipeline::setUpSubtitleConversion(AVCodecID target)
{
    const AVCodecParameters *parameters = stream->codecpar;
    const std::string from = avcodec_get_name(parameters->codec_id);
    subtitleDecoder = openCodec(avcodec_find_decoder(parameters->codec_id), from + " subtitle decoder",
                                [&](AVCodecContext *decoder) {
                                    avcodec_parameters_to_context(decoder, parameters);
                                    decoder->pkt_timebase = stream->time_base;
                                });
    const std::string to = avcodec_get_name(target);
    subtitleEncoder = openCodec(avcodec_find_encoder(target), to + " subtitle encoder", [&](AVCodecContext *encoder) {
        encoder->time_base = stream->time_base;
        // The encoders read the styles from the decoder's ASS header.
        const AVCodecContext *decoder = subtitleDecoder.get();
        if (decoder->subtitle_header_size > 0) {
            encoder->subtitle_header = static_cast<uint8_t *>(av_mallocz(decoder->subtitle_header_size + 1));
            if (encoder->subtitle_header) {
                memcpy(encoder->subtitle_header, decoder->subtitle_header, decoder->subtitle_header_size);
                encoder->subtitle_header_size = decoder->subtitle_header_size;
            }
        }
    });
    output.reset(avcodec_parameters_alloc());
    if (!output)
        throw ToolError("out of memory");
    checkAv(avcodec_parameters_from_context(output.get(), subtitleEncoder.get()), "cannot set up the " + to + " encoder");
}

void TrackPipeline::push(PacketPtr packet)
{
    if (subtitleEncoder) {
        convertSubtitle(std::move(packet));
    } else if (clock) {
        clock->add(std::move(packet));
        while (PacketPtr stamped = clock->take())
            filter(std::move(stamped));
    } else {
        filter(std::move(packet));
    }
}

void TrackPipeline::finish()
{
    if (clock) {
        clock->finish();
        while (PacketPtr stamped = clock->take())
            filter(std::move(stamped));
    }
    if (bitstreamFilter) {
        av_bsf_send_packet(bitstreamFilter, nullptr);
        drainFilter();
    }
}

void TrackPipeline::filter(PacketPtr packet)
{
    if (!bitstreamFilter) {
        ready.push_back(std::move(packet));
        return;
    }
    checkAv(av_bsf_send_packet(bitstreamFilter, packet.get()), "cannot filter the stream");
    drainFilter();
}

void TrackPipeline::drainFilter()
{
    while (true) {
        PacketPtr filtered = newPacket();
        const int result = av_bsf_receive_packet(bitstreamFilter, filtered.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        checkAv(result, "cannot filter the stream");
        ready.push_back(std::move(filtered));
    }
}

void TrackPipeline::convertSubtitle(PacketPtr packet)
{
    AVSubtitle subtitle{};
    int got = 0;
    if (avcodec_decode_subtitle2(subtitleDecoder.get(), &subtitle, &got, packet.get()) < 0 || !got)
        return; // an unreadable cue is left out, as players do
    std::vector<uint8_t> buffer(kSubtitleBufferSize);
    const int size = avcodec_encode_subtitle(subtitleEncoder.get(), buffer.data(), kSubtitleBufferSize, &subtitle);
    avsubtitle_free(&subtitle);
    if (size <= 0)
        return;
    PacketPtr converted = newPacket();
    checkAv(av_new_packet(converted.get(), size), "out of memory");
    memcpy(converted->data, buffer.data(), static_cast<size_t>(size));
    converted->pts = packet->pts;
    converted->dts = packet->pts;
    converted->duration = packet->duration;
    converted->flags = AV_PKT_FLAG_KEY;
    ready.push_back(std::move(converted));
}

int64_t TrackPipeline::nextTimeUs() const
{
    const AVPacket *packet = ready.front().get();
    const int64_t timestamp = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
    return timestamp == AV_NOPTS_VALUE ? 0 : toMicroseconds(timestamp, outputTimeBase);
}

PacketPtr TrackPipeline::take()
{
    if (ready.empty())
        return nullptr;
    PacketPtr packet = std::move(ready.front());
    ready.pop_front();
    return packet;
}

} // namespace mediatool
