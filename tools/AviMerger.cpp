#include "AviMerger.h"

#include "AviWriter.h"
#include "Interruption.h"
#include "ToolError.h"

#include <cstdio>
#include <limits>

namespace mediatool {
namespace {

const char kUsage[] = "usage: avimerge -i FILE.avi -p AUDIO -o OUT.avi";

struct MergeRequest
{
    std::string input;
    std::string audio;
    std::string output;
};

MergeRequest parseArguments(const std::vector<std::string> &arguments)
{
    MergeRequest request;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &option = arguments[i];
        if (option == "-h" || option == "--help")
            throw UsageError(kUsage);
        if (option != "-i" && option != "-p" && option != "-o")
            throw UsageError("unknown option \"" + option + "\"\n" + kUsage);
        if (i + 1 >= arguments.size())
            throw UsageError(option + " needs a value\n" + kUsage);
        std::string &field = option == "-i" ? request.input : option == "-p" ? request.audio : request.output;
        if (!field.empty())
            throw UsageError(option + " given twice\n" + kUsage);
        field = arguments[++i];
    }
    if (request.input.empty() || request.audio.empty() || request.output.empty())
        throw UsageError(std::string("-i, -p and -o are all needed\n") + kUsage);
    return request;
}

// Decodes the first packets of the audio: a file that only looks like audio
// is refused before anything is written.
void requireDecodableAudio(AVFormatContext *audio, int streamIndex, const std::string &path)
{
    const AVStream *stream = audio->streams[streamIndex];
    const AVCodec *decoder = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!decoder)
        throw ToolError("the audio in " + path + " cannot be decoded (no decoder for it)");
    CodecPtr context(avcodec_alloc_context3(decoder));
    if (!context || avcodec_parameters_to_context(context.get(), stream->codecpar) < 0
        || avcodec_open2(context.get(), decoder, nullptr) < 0)
        throw ToolError("the audio in " + path + " cannot be decoded");
    PacketPtr packet = newPacket();
    FramePtr frame = newFrame();
    for (int read = 0; read < 64 && av_read_frame(audio, packet.get()) >= 0; ++read) {
        const bool ours = packet->stream_index == streamIndex;
        if (ours && avcodec_send_packet(context.get(), packet.get()) >= 0
            && avcodec_receive_frame(context.get(), frame.get()) >= 0)
            return;
        av_packet_unref(packet.get());
    }
    throw ToolError("the audio in " + path + " cannot be decoded");
}

// Reads one input ahead by one packet so two inputs can be merged in time order.
class PacketSource
{
public:
    PacketSource(AVFormatContext *input, int onlyStream) : input(input), onlyStream(onlyStream) { advance(); }

    bool exhausted() const { return done; }
    int64_t timeUs() const { return nextTimeUs; }
    AVPacket *packet() { return current.get(); }

    void advance()
    {
        av_packet_unref(current.get());
        while (true) {
            const int result = av_read_frame(input, current.get());
            if (result == AVERROR_EOF) {
                done = true;
                return;
            }
            if (result < 0)
                throw ToolError("cannot read " + pathOf(input) + ": " + avErrorText(result));
            if (onlyStream < 0 || current->stream_index == onlyStream)
                break;
            av_packet_unref(current.get());
        }
        const int64_t timestamp = current->dts != AV_NOPTS_VALUE ? current->dts : current->pts;
        if (timestamp != AV_NOPTS_VALUE)
            nextTimeUs = toMicroseconds(timestamp, input->streams[current->stream_index]->time_base);
    }

private:
    AVFormatContext *input;
    int onlyStream;
    PacketPtr current = newPacket();
    int64_t nextTimeUs = std::numeric_limits<int64_t>::min();
    bool done = false;
};

void requireAviCanCarry(const AVStream *stream, const std::string &path)
{
    const AVOutputFormat *avi = av_guess_format("avi", nullptr, nullptr);
    if (avformat_query_codec(avi, stream->codecpar->codec_id, FF_COMPLIANCE_NORMAL) != 1)
        throw ToolError("AVI cannot hold the " + std::string(avcodec_get_name(stream->codecpar->codec_id)) + " audio of "
                        + path);
}

} // namespace

int runAviMerge(const std::vector<std::string> &arguments)
{
    const MergeRequest request = parseArguments(arguments);
    InputPtr video = openAviFile(request.input);
    InputPtr audio = openMediaFile(request.audio);
    const int audioStream = av_find_best_stream(audio.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (audioStream < 0)
        throw ToolError(request.audio + " holds no audio stream");
    requireAviCanCarry(audio->streams[audioStream], request.audio);
    requireDecodableAudio(audio.get(), audioStream, request.audio);
    audio = openMediaFile(request.audio); // back to its start
    if (isSameFile(request.output, request.input) || isSameFile(request.output, request.audio))
        throw ToolError("the output " + request.output + " is one of the inputs; choose another -o name");

    const AVCodecParameters *added = audio->streams[audioStream]->codecpar;
    std::printf("avimerge: adding %s (%s, %d channels, %d Hz) to %s as %s\n", request.audio.c_str(),
                avcodec_get_name(added->codec_id), added->ch_layout.nb_channels, added->sample_rate,
                request.input.c_str(), request.output.c_str());
    std::fflush(stdout);

    AviWriter writer(request.output);
    std::vector<int> outputIndex(video->nb_streams);
    for (unsigned i = 0; i < video->nb_streams; ++i)
        outputIndex[i] = writer.addStreamLike(video->streams[i]);
    const int addedIndex = writer.addStreamLike(audio->streams[audioStream]);
    writer.copyFileTagsFrom(video.get());
    writer.writeHeader();

    PacketSource fromVideo(video.get(), -1);
    PacketSource fromAudio(audio.get(), audioStream);
    const AVRational audioTimeBase = audio->streams[audioStream]->time_base;
    while (!fromVideo.exhausted() || !fromAudio.exhausted()) {
        throwIfInterrupted();
        const bool takeAudio = fromVideo.exhausted() || (!fromAudio.exhausted() && fromAudio.timeUs() < fromVideo.timeUs());
        PacketSource &source = takeAudio ? fromAudio : fromVideo;
        AVPacket *packet = source.packet();
        if (takeAudio)
            writer.write(packet, addedIndex, audioTimeBase);
        else
            writer.write(packet, outputIndex[packet->stream_index], video->streams[packet->stream_index]->time_base);
        source.advance();
    }
    writer.writeTrailer();
    writer.commit();
    std::printf("avimerge: done, %s holds %u stream(s), %.1f MB\n", request.output.c_str(), video->nb_streams + 1,
                writer.fileBytes() / 1e6);
    return 0;
}

} // namespace mediatool
