#include "StreamWriter.h"

#include "Interruption.h"
#include "ToolError.h"

#include <limits>

namespace mediatool {

StreamWriter::StreamWriter(const std::string &path, const char *format)
    : output(OutputFile::forResult(path))
{
    checkAv(avformat_alloc_output_context2(&context, nullptr, format, nullptr),
            std::string("cannot prepare a writer for ") + format);
    context->pb = output.io();
    context->flags |= AVFMT_FLAG_CUSTOM_IO;
    // Written in large blocks, not one system call per packet.
    context->flush_packets = 0;
}

// An unfinished file is dropped without its trailer: freeing the muxer
// releases its buffers, and an MP4's second pass over the data is not spent
// on a file nobody gets.
StreamWriter::~StreamWriter()
{
    avformat_free_context(context);
}

int StreamWriter::addStream(const AVCodecParameters *parameters, AVRational timeBase)
{
    AVStream *stream = avformat_new_stream(context, nullptr);
    if (!stream)
        throw ToolError("out of memory");
    checkAv(avcodec_parameters_copy(stream->codecpar, parameters), "cannot copy stream parameters");
    // Keep the source's fourcc or format tag only where this format knows it
    // for the codec (an AVI's "XVID" means nothing in an MP4).
    const uint32_t tag = parameters->codec_tag;
    if (tag != 0 && av_codec_get_id(context->oformat->codec_tag, tag) != parameters->codec_id)
        stream->codecpar->codec_tag = 0;
    stream->time_base = timeBase;
    lastDts.push_back(std::numeric_limits<int64_t>::min());
    return stream->index;
}

int StreamWriter::addStreamLike(const AVStream *source)
{
    const int index = addStream(source->codecpar, source->time_base);
    adoptTraits(index, source);
    return index;
}

void StreamWriter::adoptTraits(int index, const AVStream *source)
{
    AVStream *stream = context->streams[index];
    stream->avg_frame_rate = source->avg_frame_rate;
    stream->r_frame_rate = source->r_frame_rate;
    // The container's pixel aspect wins over the bitstream's, as when
    // ffmpeg copies; the muxers refuse two different ones.
    if (source->sample_aspect_ratio.num > 0) {
        stream->sample_aspect_ratio = source->sample_aspect_ratio;
        stream->codecpar->sample_aspect_ratio = source->sample_aspect_ratio;
    }
    stream->disposition = source->disposition;
    av_dict_copy(&stream->metadata, source->metadata, 0);
}

void StreamWriter::copyFileTagsFrom(const AVFormatContext *source)
{
    av_dict_copy(&context->metadata, source->metadata, 0);
}

void StreamWriter::writeHeader(const AVDictionary *options)
{
    AVDictionary *unused = nullptr;
    av_dict_copy(&unused, options, 0);
    const int result = avformat_write_header(context, &unused);
    const AVDictionaryEntry *left = av_dict_get(unused, "", nullptr, AV_DICT_IGNORE_SUFFIX);
    const std::string leftName = left ? left->key : "";
    av_dict_free(&unused);
    checkAv(result, "cannot write the header of " + output.path());
    if (!leftName.empty())
        throw ToolError("the " + std::string(context->oformat->name) + " writer has no option " + leftName);
}

void StreamWriter::write(AVPacket *packet, int index, AVRational sourceTimeBase)
{
    AVStream *stream = context->streams[index];
    packet->stream_index = index;
    packet->pos = -1;
    av_packet_rescale_ts(packet, sourceTimeBase, stream->time_base);
    // A copied audio packet that straddles a cut may sit a little before
    // zero, and a few files carry repeated timestamps: keep every stream
    // increasing, as the muxers require.
    int64_t &last = lastDts[static_cast<size_t>(index)];
    const bool first = last == std::numeric_limits<int64_t>::min();
    if (packet->dts != AV_NOPTS_VALUE) {
        const int64_t floor = first ? 0 : last + 1;
        if (packet->dts < floor && !(first && keepsNegativeStart())) {
            if (packet->pts != AV_NOPTS_VALUE)
                packet->pts += floor - packet->dts;
            packet->dts = floor;
        }
        last = packet->dts;
    }
    ++packetCount;
    const int written = av_interleaved_write_frame(context, packet);
    if (written < 0)
        throw ToolError("cannot write " + output.path() + ": " + avErrorText(written));
}

void StreamWriter::writeTrailer()
{
    checkAv(av_write_trailer(context), "cannot finish " + output.path());
}

void StreamWriter::complete()
{
    writeTrailer();
    throwIfInterrupted();
    commit();
}

} // namespace mediatool
