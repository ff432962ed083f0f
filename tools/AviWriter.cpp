#include "AviWriter.h"

#include "ToolError.h"

#include <limits>

namespace mediatool {

AviWriter::AviWriter(const std::string &path)
    : output(OutputFile::forResult(path))
{
    checkAv(avformat_alloc_output_context2(&context, nullptr, "avi", nullptr), "cannot prepare an AVI writer");
    context->pb = output.io();
    context->flags |= AVFMT_FLAG_CUSTOM_IO;
}

AviWriter::~AviWriter()
{
    if (context && headerWritten && !trailerWritten)
        av_write_trailer(context); // releases the muxer's buffers; the file is discarded anyway
    avformat_free_context(context);
}

int AviWriter::addStreamLike(const AVStream *source)
{
    AVStream *stream = avformat_new_stream(context, nullptr);
    if (!stream)
        throw ToolError("out of memory");
    checkAv(avcodec_parameters_copy(stream->codecpar, source->codecpar), "cannot copy stream parameters");
    // Keep the source's fourcc or format tag where AVI knows it for the codec.
    const uint32_t tag = source->codecpar->codec_tag;
    if (tag != 0 && av_codec_get_id(context->oformat->codec_tag, tag) != source->codecpar->codec_id)
        stream->codecpar->codec_tag = 0;
    // AVI keeps an MP3 or AC-3 stream's length in blocks; a block size taken
    // over from the source (1152 for VBR MP3) would make players read the
    // length wrong, so the muxer chooses it, as ffmpeg does when copying.
    const AVCodecID codec = source->codecpar->codec_id;
    const int blockAlign = source->codecpar->block_align;
    if ((codec == AV_CODEC_ID_MP3 && (blockAlign == 1 || blockAlign == 1152 || blockAlign == 576)) || codec == AV_CODEC_ID_AC3)
        stream->codecpar->block_align = 0;
    stream->time_base = source->time_base;
    stream->avg_frame_rate = source->avg_frame_rate;
    stream->r_frame_rate = source->r_frame_rate;
    stream->sample_aspect_ratio = source->sample_aspect_ratio;
    stream->disposition = source->disposition;
    av_dict_copy(&stream->metadata, source->metadata, 0);
    lastDts.push_back(std::numeric_limits<int64_t>::min());
    return stream->index;
}

void AviWriter::copyFileTagsFrom(const AVFormatContext *source)
{
    av_dict_copy(&context->metadata, source->metadata, 0);
}

void AviWriter::writeHeader()
{
    checkAv(avformat_write_header(context, nullptr), "cannot write the header of " + output.path());
    headerWritten = true;
}

void AviWriter::write(AVPacket *packet, int index, AVRational sourceTimeBase)
{
    AVStream *stream = context->streams[index];
    packet->stream_index = index;
    packet->pos = -1;
    av_packet_rescale_ts(packet, sourceTimeBase, stream->time_base);
    // A copied audio packet that straddles a cut may sit a little before
    // zero, and a few AVI files carry repeated timestamps: keep every
    // stream non-negative and strictly increasing, as the muxer requires.
    int64_t &last = lastDts[static_cast<size_t>(index)];
    if (packet->dts != AV_NOPTS_VALUE) {
        const int64_t floor = last == std::numeric_limits<int64_t>::min() ? 0 : last + 1;
        if (packet->dts < floor) {
            if (packet->pts != AV_NOPTS_VALUE)
                packet->pts += floor - packet->dts;
            packet->dts = floor;
        }
        last = packet->dts;
    }
    ++packetCount;
    checkAv(av_interleaved_write_frame(context, packet), "cannot write " + output.path());
}

void AviWriter::writeTrailer()
{
    trailerWritten = true;
    checkAv(av_write_trailer(context), "cannot finish " + output.path());
}

} // namespace mediatool
