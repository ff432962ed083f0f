#include "AviMerger.h"

#include "AviWriter.h"
#include "Interruption.h"
#include "ToolError.h"

#include <cstdio>
#include <limits>

namespace mediatool {
namespace {

const char kUsage[] = "usage: avimerge -i FILE.avi -p AUDIO [-p AUDIO]... -o OUT.avi";

struct MergeRequest
{
    std::string input;
    std::vector<std::string> audio;
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
        // Every -p adds one more audio track, in the order given.
        if (option == "-p") {
            request.audio.push_back(arguments[++i]);
            continue;
        }
        std::string &field = option == "-i" ? request.input : request.output;
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

// One audio file to add: its best audio stream, checked before anything is written.
struct AddedAudio
{
    std::string path;
    InputPtr file;
    int stream = -1;
};

AddedAudio openAddedAudio(const std::string &path)
{
    AddedAudio added{path, openMediaFile(path), -1};
    added.stream = av_find_best_stream(added.file.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (added.stream < 0)
        throw ToolError(path + " holds no audio stream");
    requireAviCanCarry(added.file->streams[added.stream], path);
    requireDecodableAudio(added.file.get(), added.stream, path);
    added.file = openMediaFile(path); // back to its start
    const AVCodecParameters *codec = added.file->streams[added.stream]->codecpar;
    std::printf("avimerge: adding %s (%s, %d channels, %d Hz)\n", path.c_str(), avcodec_get_name(codec->codec_id),
                codec->ch_layout.nb_channels, codec->sample_rate);
    return added;
}

} // namespace

int runAviMerge(const std::vector<std::string> &arguments)
{
    const MergeRequest request = parseArguments(arguments);
    InputPtr video = openAviFile(request.input);
    std::vector<AddedAudio> audio;
    for (const std::string &path : request.audio) {
        if (isSameFile(request.output, path))
            throw ToolError("the output " + request.output + " is one of the inputs; choose another -o name");
        audio.push_back(openAddedAudio(path));
    }
    if (isSameFile(request.output, request.input))
        throw ToolError("the output " + request.output + " is one of the inputs; choose another -o name");
    std::printf("avimerge: writing %s as %s\n", request.input.c_str(), request.output.c_str());
    std::fflush(stdout);

    AviWriter writer(request.output);
    std::vector<int> outputIndex(video->nb_streams);
    for (unsigned i = 0; i < video->nb_streams; ++i)
        outputIndex[i] = writer.addStreamLike(video->streams[i]);
    std::vector<int> addedIndex;
    for (const AddedAudio &added : audio)
        addedIndex.push_back(writer.addStreamLike(added.file->streams[added.stream]));
    writer.copyFileTagsFrom(video.get());
    writer.writeHeader();

    // The film and every added file, written in time order.
    std::vector<PacketSource> sources;
    sources.reserve(audio.size() + 1);
    sources.emplace_back(video.get(), -1);
    for (const AddedAudio &added : audio)
        sources.emplace_back(added.file.get(), added.stream);
    while (true) {
        throwIfInterrupted();
        std::size_t next = sources.size();
        for (std::size_t k = 0; k < sources.size(); ++k) {
            if (!sources[k].exhausted() && (next == sources.size() || sources[k].timeUs() < sources[next].timeUs()))
                next = k;
        }
        if (next == sources.size())
            break;
        AVPacket *packet = sources[next].packet();
        if (next == 0)
            writer.write(packet, outputIndex[packet->stream_index], video->streams[packet->stream_index]->time_base);
        else
            writer.write(packet, addedIndex[next - 1], audio[next - 1].file->streams[audio[next - 1].stream]->time_base);
        sources[next].advance();
    }
    writer.writeTrailer();
    writer.commit();
    std::printf("avimerge: done, %s holds %zu stream(s), %.1f MB\n", request.output.c_str(),
                video->nb_streams + audio.size(), writer.fileBytes() / 1e6);
    return 0;
}

} // namespace mediatool
