#include "AudioCopier.h"

#include "AvHandles.h"
#include "Interruption.h"
#include "ToolError.h"

namespace mediatool {

void copyAudioStream(AVFormatContext *input, int stream, AVFormatContext *muxer)
{
    const AVStream *source = input->streams[stream];
    AVStream *copy = avformat_new_stream(muxer, nullptr);
    if (!copy)
        throw ToolError("cannot add the audio stream");
    checkAv(avcodec_parameters_copy(copy->codecpar, source->codecpar), "cannot copy the audio parameters");
    copy->codecpar->codec_tag = 0;
    copy->time_base = source->time_base;
    checkAv(avformat_write_header(muxer, nullptr), "cannot start the audio file");
    for (unsigned i = 0; i < input->nb_streams; ++i)
        input->streams[i]->discard = static_cast<int>(i) == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    PacketPtr packet = newPacket();
    int result = 0;
    while ((result = av_read_frame(input, packet.get())) >= 0) {
        throwIfInterrupted();
        if (packet->stream_index == stream) {
            av_packet_rescale_ts(packet.get(), source->time_base, copy->time_base);
            packet->stream_index = copy->index;
            packet->pos = -1;
            checkAv(av_write_frame(muxer, packet.get()), "cannot write the audio");
        }
        av_packet_unref(packet.get());
    }
    if (result != AVERROR_EOF)
        throw ToolError("cannot read " + pathOf(input) + ": " + avErrorText(result));
    checkAv(av_write_trailer(muxer), "cannot finish the audio file");
}

} // namespace mediatool
