#include "AudioEncoder.h"

#include "Interruption.h"
#include "ToolError.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace mediatool {
namespace {

int64_t nowMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

std::string layoutName(const AVChannelLayout &layout)
{
    char name[128] = {};
    av_channel_layout_describe(&layout, name, sizeof name);
    return name;
}

// The layout the encoder takes for `channels` channels: ours when it lists
// it, else its own of the same size.
AVChannelLayout encoderLayout(const AVCodec *codec, int channels)
{
    AVChannelLayout wanted = chainLayout(channels);
    if (!codec->ch_layouts)
        return wanted;
    const AVChannelLayout *sameSize = nullptr;
    for (const AVChannelLayout *layout = codec->ch_layouts; layout->nb_channels; ++layout) {
        if (av_channel_layout_compare(layout, &wanted) == 0)
            return wanted;
        if (!sameSize && layout->nb_channels == channels)
            sameSize = layout;
    }
    if (!sameSize)
        throw UsageError(std::string("the ") + codec->name + " encoder cannot write " + std::to_string(channels)
                         + " channels");
    AVChannelLayout chosen{};
    av_channel_layout_copy(&chosen, sameSize);
    return chosen;
}

int supportedRate(const AVCodec *codec, int rate)
{
    if (!codec->supported_samplerates)
        return rate;
    int best = codec->supported_samplerates[0];
    for (const int *candidate = codec->supported_samplerates; *candidate; ++candidate) {
        if (*candidate == rate)
            return rate;
        if (std::abs(*candidate - rate) < std::abs(best - rate))
            best = *candidate;
    }
    std::printf("mencoder front: the %s encoder has no %d Hz, using %d Hz\n", codec->name, rate, best);
    return best;
}

} // namespace

AudioEncoder::AudioEncoder(const AudioSource &source, const AudioEncoding &encoding)
    : source(source), decodedChannels(encoding.decodedChannels), pan(encoding.pan)
{
    openDecoder();
    openEncoder(encoding);
    const AVStream *stream = source.input->streams[source.stream];
    durationUs = stream->duration != AV_NOPTS_VALUE ? toMicroseconds(stream->duration, stream->time_base)
                                                    : std::max<int64_t>(source.input->duration, 0);
}

AudioEncoder::~AudioEncoder()
{
    if (fifo)
        av_audio_fifo_free(fifo);
    av_channel_layout_uninit(&resamplerInput);
}

void AudioEncoder::openDecoder()
{
    const AVStream *stream = source.input->streams[source.stream];
    const AVCodec *codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!codec)
        throw ToolError(std::string("the ") + avcodec_get_name(stream->codecpar->codec_id)
                        + " audio of " + pathOf(source.input) + " cannot be decoded");
    decoder.reset(avcodec_alloc_context3(codec));
    if (!decoder)
        throw ToolError("out of memory");
    checkAv(avcodec_parameters_to_context(decoder.get(), stream->codecpar), "cannot read the audio's parameters");
    decoder->pkt_timebase = stream->time_base;
    checkAv(avcodec_open2(decoder.get(), codec, nullptr), std::string("cannot decode the audio of ") + pathOf(source.input));
    if (decodedChannels == 0)
        decodedChannels = std::min(stream->codecpar->ch_layout.nb_channels, 8);
    if (decodedChannels < 1)
        throw ToolError(std::string("the audio of ") + pathOf(source.input) + " reports no channels");
}

void AudioEncoder::openEncoder(const AudioEncoding &encoding)
{
    const AVCodec *codec = avcodec_find_encoder_by_name(encoding.encoder.c_str());
    if (!codec || codec->type != AVMEDIA_TYPE_AUDIO)
        throw UsageError("no audio encoder \"" + encoding.encoder + "\" is available");
    encoder.reset(avcodec_alloc_context3(codec));
    if (!encoder)
        throw ToolError("out of memory");
    const int channels = pan ? pan->outputs : decodedChannels;
    encoder->ch_layout = encoderLayout(codec, channels);
    const int sourceRate = source.input->streams[source.stream]->codecpar->sample_rate;
    encoder->sample_rate = supportedRate(codec, encoding.sampleRate > 0 ? encoding.sampleRate : sourceRate);
    encoder->sample_fmt = codec->sample_fmts ? codec->sample_fmts[0] : AV_SAMPLE_FMT_FLTP;
    encoder->bit_rate = encoding.bitRate;
    encoder->time_base = AVRational{1, encoder->sample_rate};
    if (encoding.profile != FF_PROFILE_UNKNOWN)
        encoder->profile = encoding.profile;
    const int opened = avcodec_open2(encoder.get(), codec, nullptr);
    if (opened < 0)
        throw ToolError("the " + encoding.encoder + " encoder refuses " + std::to_string(channels) + " channels at "
                        + std::to_string(encoder->sample_rate) + " Hz and " + std::to_string(encoding.bitRate / 1000)
                        + " kb/s: " + avErrorText(opened));
    fifo = av_audio_fifo_alloc(encoder->sample_fmt, encoder->ch_layout.nb_channels, 4096);
    if (!fifo)
        throw ToolError("out of memory");
}

void AudioEncoder::openResampler(const AVFrame *decoded)
{
    av_channel_layout_uninit(&resamplerInput);
    if (decoded->ch_layout.nb_channels > 0)
        av_channel_layout_copy(&resamplerInput, &decoded->ch_layout);
    else
        resamplerInput = chainLayout(decoder->ch_layout.nb_channels);
    resamplerFormat = decoded->format;
    resamplerRate = decoded->sample_rate;

    SwrContext *raw = nullptr;
    checkAv(swr_alloc_set_opts2(&raw, &encoder->ch_layout, encoder->sample_fmt, encoder->sample_rate, &resamplerInput,
                                static_cast<AVSampleFormat>(decoded->format), decoded->sample_rate, 0, nullptr),
            "cannot set up the audio conversion");
    resampler.reset(raw);
    const std::vector<double> matrix = mixingMatrix(resamplerInput, decodedChannels, pan ? &*pan : nullptr,
                                                    encoder->ch_layout);
    checkAv(swr_set_matrix(resampler.get(), matrix.data(), resamplerInput.nb_channels), "cannot set the channel mix");
    checkAv(swr_init(resampler.get()), "cannot set up the audio conversion");
}

void AudioEncoder::addStreamTo(AVFormatContext *output)
{
    muxer = output;
    outputStream = avformat_new_stream(muxer, nullptr);
    if (!outputStream)
        throw ToolError("out of memory");
    checkAv(avcodec_parameters_from_context(outputStream->codecpar, encoder.get()), "cannot describe the audio");
    outputStream->time_base = encoder->time_base;
}

void AudioEncoder::encodeInto(AVFormatContext *output)
{
    if (muxer != output)
        addStreamTo(output);
    checkAv(avformat_write_header(muxer, nullptr), "cannot start the audio file");
    startMs = nowMs();

    const int64_t offsetSamples = av_rescale(source.offsetUs, encoder->sample_rate, AV_TIME_BASE);
    if (offsetSamples > 0)
        queueSilence(offsetSamples);
    else
        samplesToDrop = -offsetSamples;

    for (unsigned i = 0; i < source.input->nb_streams; ++i)
        source.input->streams[i]->discard = static_cast<int>(i) == source.stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    PacketPtr packet = newPacket();
    const AVRational timeBase = source.input->streams[source.stream]->time_base;
    const int64_t startTs = source.input->streams[source.stream]->start_time;
    int result = 0;
    while ((result = av_read_frame(source.input, packet.get())) >= 0) {
        throwIfInterrupted();
        if (packet->stream_index == source.stream) {
            if (packet->pts != AV_NOPTS_VALUE)
                reportProgress(toMicroseconds(packet->pts - (startTs != AV_NOPTS_VALUE ? startTs : 0), timeBase), false);
            decodePacket(packet.get());
        }
        av_packet_unref(packet.get());
    }
    if (result != AVERROR_EOF)
        throw ToolError(std::string("cannot read ") + pathOf(source.input) + ": " + avErrorText(result));
    decodePacket(nullptr);
    if (resampler)
        queueConverted(nullptr, 0);
    encodeQueued(true);
    sendFrame(nullptr);
    checkAv(av_write_trailer(muxer), "cannot finish the audio file");
    reportProgress(durationUs, true);
    std::printf("\n");
}

void AudioEncoder::decodePacket(const AVPacket *packet)
{
    // A damaged packet is skipped, as a player would.
    if (avcodec_send_packet(decoder.get(), packet) < 0 && packet)
        return;
    FramePtr frame = newFrame();
    while (avcodec_receive_frame(decoder.get(), frame.get()) >= 0) {
        pushSamples(frame.get());
        av_frame_unref(frame.get());
    }
}

void AudioEncoder::pushSamples(const AVFrame *decoded)
{
    if (!resampler || decoded->format != resamplerFormat || decoded->sample_rate != resamplerRate
        || av_channel_layout_compare(&decoded->ch_layout, &resamplerInput) != 0)
        openResampler(decoded);
    queueConverted(const_cast<uint8_t **>(decoded->extended_data), decoded->nb_samples);
}

void AudioEncoder::queueConverted(uint8_t **data, int samples)
{
    const int room = swr_get_out_samples(resampler.get(), samples);
    if (room <= 0)
        return;
    uint8_t **converted = nullptr;
    checkAv(av_samples_alloc_array_and_samples(&converted, nullptr, encoder->ch_layout.nb_channels, room,
                                                encoder->sample_fmt, 0),
            "out of memory");
    const int produced = swr_convert(resampler.get(), converted, room, const_cast<const uint8_t **>(data), samples);
    if (produced > 0) {
        const int written = av_audio_fifo_write(fifo, reinterpret_cast<void **>(converted), produced);
        if (written < produced) {
            av_freep(&converted[0]);
            av_freep(&converted);
            throw ToolError("out of memory");
        }
        const int64_t drop = std::min<int64_t>(samplesToDrop, av_audio_fifo_size(fifo));
        av_audio_fifo_drain(fifo, static_cast<int>(drop));
        samplesToDrop -= drop;
    }
    av_freep(&converted[0]);
    av_freep(&converted);
    if (produced < 0)
        throw ToolError("cannot convert the audio: " + avErrorText(produced));
    encodeQueued(false);
}

void AudioEncoder::queueSilence(int64_t samples)
{
    FramePtr silence = newFrame();
    silence->format = encoder->sample_fmt;
    silence->nb_samples = 4096;
    checkAv(av_channel_layout_copy(&silence->ch_layout, &encoder->ch_layout), "out of memory");
    checkAv(av_frame_get_buffer(silence.get(), 0), "out of memory");
    av_samples_set_silence(silence->extended_data, 0, 4096, encoder->ch_layout.nb_channels, encoder->sample_fmt);
    while (samples > 0) {
        const int now = static_cast<int>(std::min<int64_t>(samples, 4096));
        if (av_audio_fifo_write(fifo, reinterpret_cast<void **>(silence->extended_data), now) < now)
            throw ToolError("out of memory");
        samples -= now;
    }
}

void AudioEncoder::encodeQueued(bool final)
{
    const bool anySize = encoder->frame_size == 0 || (encoder->codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE);
    const int frameSize = encoder->frame_size > 0 ? encoder->frame_size : 1024;
    while (av_audio_fifo_size(fifo) >= frameSize || (final && av_audio_fifo_size(fifo) > 0)) {
        const int available = std::min(av_audio_fifo_size(fifo), frameSize);
        const bool shortAllowed = anySize || (encoder->codec->capabilities & AV_CODEC_CAP_SMALL_LAST_FRAME);
        FramePtr frame = newFrame();
        frame->format = encoder->sample_fmt;
        frame->sample_rate = encoder->sample_rate;
        frame->nb_samples = shortAllowed ? available : frameSize;
        checkAv(av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout), "out of memory");
        checkAv(av_frame_get_buffer(frame.get(), 0), "out of memory");
        av_samples_set_silence(frame->extended_data, 0, frame->nb_samples, encoder->ch_layout.nb_channels,
                               encoder->sample_fmt);
        av_audio_fifo_read(fifo, reinterpret_cast<void **>(frame->extended_data), available);
        frame->pts = samplesEncoded;
        samplesEncoded += frame->nb_samples;
        sendFrame(frame.get());
    }
}

void AudioEncoder::sendFrame(AVFrame *frame)
{
    checkAv(avcodec_send_frame(encoder.get(), frame), "cannot encode the audio");
    PacketPtr packet = newPacket();
    while (true) {
        const int received = avcodec_receive_packet(encoder.get(), packet.get());
        if (received == AVERROR(EAGAIN) || received == AVERROR_EOF)
            return;
        checkAv(received, "cannot encode the audio");
        packet->stream_index = outputStream->index;
        av_packet_rescale_ts(packet.get(), encoder->time_base, outputStream->time_base);
        bytesWritten += packet->size;
        checkAv(av_interleaved_write_frame(muxer, packet.get()), "cannot write the encoded audio");
    }
}

void AudioEncoder::reportProgress(int64_t positionUs, bool force)
{
    const int64_t now = nowMs();
    if (!force && lastReportMs >= 0 && now - lastReportMs < 500)
        return;
    lastReportMs = now;
    const double seconds = std::max<int64_t>(positionUs, 0) / 1e6;
    const double share = durationUs > 0 ? std::clamp(positionUs / static_cast<double>(durationUs), 0.0, 1.0) : 0.0;
    const int percent = force ? 100 : std::min(99, static_cast<int>(share * 100));
    const double elapsed = (now - startMs) / 1000.0;
    const int remainingMinutes = share > 0 ? static_cast<int>(elapsed * (1 - share) / share / 60) : 0;
    const int estimatedMb = share > 0 ? static_cast<int>(bytesWritten / share / 1e6) : 0;
    const long frames = source.framesPerSecond > 0 ? std::lround(seconds * source.framesPerSecond)
                                                   : static_cast<long>(samplesEncoded / std::max(encoder->frame_size, 1));
    const double framesPerSecond = elapsed > 0 ? frames / elapsed : 0;
    std::printf("Pos:%6.1fs %6ldf (%2d%%) %5.2ffps Trem:%4dmin %3dmb  A-V:0.000 [0:%d]\r", seconds, frames, percent,
                framesPerSecond, remainingMinutes, estimatedMb, static_cast<int>(encoder->bit_rate / 1000));
    std::fflush(stdout);
}

std::string AudioEncoder::summary() const
{
    char text[256];
    std::snprintf(text, sizeof text, "%s, %s (%d channels), %d Hz, %lld kb/s", encoder->codec->long_name,
                  layoutName(encoder->ch_layout).c_str(), encoder->ch_layout.nb_channels, encoder->sample_rate,
                  static_cast<long long>(encoder->bit_rate / 1000));
    return text;
}

} // namespace mediatool
