#include "MencoderFront.h"

#include "AudioCopier.h"
#include "AudioEncoder.h"
#include "MencoderCommand.h"
#include "OutputFile.h"
#include "ToolError.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <unistd.h>

extern "C" {
#include <libavutil/opt.h>
}

namespace mediatool {
namespace {

constexpr const char *kRealMencoder = "/usr/bin/mencoder";

std::string resolved(const char *path)
{
    char buffer[PATH_MAX];
    return realpath(path, buffer) ? std::string(buffer) : std::string();
}

[[noreturn]] void becomeRealMencoder(const std::vector<std::string> &arguments)
{
    const std::string real = resolved(kRealMencoder);
    if (real.empty() || access(real.c_str(), X_OK) != 0)
        throw ToolError(std::string("MEncoder is not installed (") + kRealMencoder + ")");
    if (real == resolved("/proc/self/exe"))
        throw ToolError(std::string(kRealMencoder) + " leads back to this front, not to MEncoder");
    std::vector<char *> argv;
    argv.push_back(const_cast<char *>("mencoder"));
    for (const std::string &argument : arguments)
        argv.push_back(const_cast<char *>(argument.c_str()));
    argv.push_back(nullptr);
    std::fflush(stdout);
    std::fflush(stderr);
    execv(kRealMencoder, argv.data());
    throw ToolError(std::string("cannot start ") + kRealMencoder + ": " + std::strerror(errno));
}

bool isContainer(const AVFormatContext *input, std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        if (std::strstr(input->iformat->name, name))
            return true;
    }
    return false;
}

int nthAudioStream(const AVFormatContext *input, int wanted)
{
    int seen = 0;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        if (input->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO && seen++ == wanted)
            return static_cast<int>(i);
    }
    return -1;
}

// The stream MEncoder's -aid N names. Its demuxers number streams
// differently: AVI by stream number, Matroska, MP4/MOV, Ogg and FLV (read
// through FFmpeg) by audio track (0 = the first), ASF, MPEG-PS and MPEG-TS
// by the stream's own id (TS PID, PS sub-stream id; MPEG audio in a PS from
// 0 for stream 0xC0). Elsewhere the stream's id is tried, then the Nth audio
// track. Read through FFmpeg's demuxers (-demuxer lavf), every file numbers
// by audio track.
int streamForAudioId(const AVFormatContext *input, int id, bool throughLavf)
{
    auto isAudio = [input](int index) {
        return index >= 0 && index < static_cast<int>(input->nb_streams)
               && input->streams[index]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
    };
    if (throughLavf || isContainer(input, {"matroska", "mov", "ogg", "flv"}))
        return nthAudioStream(input, id);
    if (isContainer(input, {"avi"}))
        return isAudio(id) ? id : -1;
    constexpr int kFirstMpegAudio = 0x1C0;
    const bool programStream = std::strcmp(input->iformat->name, "mpeg") == 0;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const int streamId = input->streams[i]->id;
        const bool named = streamId == id || (programStream && id < 32 && streamId == kFirstMpegAudio + id);
        if (named && isAudio(static_cast<int>(i)))
            return static_cast<int>(i);
    }
    return nthAudioStream(input, id);
}

struct ChosenAudio
{
    InputPtr file;
    AudioSource source;
};

ChosenAudio chooseAudio(const MencoderCommand &command)
{
    const bool external = !command.audioFile.empty();
    ChosenAudio chosen;
    chosen.file = openMediaFile(external ? command.audioFile : command.input);
    AVFormatContext *file = chosen.file.get();
    const std::string &path = external ? command.audioFile : command.input;
    const int stream = command.audioId ? streamForAudioId(file, *command.audioId, command.readsThroughLavf() && !external)
                                       : av_find_best_stream(file, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (stream < 0)
        throw ToolError(command.audioId ? path + " has no audio stream with -aid " + std::to_string(*command.audioId)
                                        : path + " holds no audio");
    chosen.source.input = file;
    chosen.source.stream = stream;

    // Audio from the video's own file keeps its place against the video; an
    // audio file is taken to start with the video, as MEncoder takes it.
    if (!external) {
        const int video = av_find_best_stream(file, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
        if (video >= 0) {
            const AVStream *videoStream = file->streams[video];
            const AVStream *audioStream = file->streams[stream];
            if (videoStream->start_time != AV_NOPTS_VALUE && audioStream->start_time != AV_NOPTS_VALUE)
                chosen.source.offsetUs = toMicroseconds(audioStream->start_time, audioStream->time_base)
                                         - toMicroseconds(videoStream->start_time, videoStream->time_base);
            chosen.source.framesPerSecond = av_q2d(videoStream->avg_frame_rate);
        }
    }
    return chosen;
}

AudioEncoding encodingOf(const MencoderCommand &command)
{
    AudioEncoding encoding;
    encoding.encoder = command.encoder;
    encoding.bitRate = command.bitRate;
    encoding.decodedChannels = command.channels;
    encoding.sampleRate = command.sampleRate;
    encoding.pan = command.pan;
    encoding.profile = command.aacProfile;
    return encoding;
}

// The elementary-stream format for -of rawaudio.
std::string rawFormatFor(const std::string &encoder)
{
    if (encoder == "aac")
        return "adts";
    if (encoder == "ac3" || encoder == "eac3" || encoder == "mp2")
        return encoder;
    if (encoder == "libmp3lame")
        return "mp3";
    throw UsageError("-of rawaudio cannot hold " + encoder + " audio");
}

struct MuxerFreer { void operator()(AVFormatContext *context) const { avformat_free_context(context); } };
using MuxerPtr = std::unique_ptr<AVFormatContext, MuxerFreer>;

MuxerPtr newMuxer(const std::string &format, OutputFile &file)
{
    AVFormatContext *raw = nullptr;
    checkAv(avformat_alloc_output_context2(&raw, nullptr, format.c_str(), nullptr), "cannot write " + format);
    raw->pb = file.io();
    raw->flags |= AVFMT_FLAG_CUSTOM_IO;
    return MuxerPtr(raw);
}

int writeRawAudio(const MencoderCommand &command, AudioEncoder &encoder)
{
    OutputFile file = OutputFile::forResult(command.output);
    MuxerPtr muxer = newMuxer(rawFormatFor(command.encoder), file);
    encoder.encodeInto(muxer.get());
    file.commit();
    std::printf("Audio stream: %s\nmencoder front: wrote %s\n", encoder.summary().c_str(), command.output.c_str());
    return 0;
}

[[noreturn]] void encodeThenRunMencoder(const MencoderCommand &command, AudioEncoder &encoder)
{
    // The encoded audio goes into an audio-only AVI: MEncoder reads AC-3 from
    // it with the right timing, while a bare .ac3 file makes it drop frames.
    OutputFile file = OutputFile::scratch(folderOf(command.output));
    MuxerPtr muxer = newMuxer("avi", file);
    encoder.encodeInto(muxer.get());
    muxer.reset();
    const std::string handle = file.handOverAcrossExec();
    const std::vector<std::string> arguments = command.withEncodedAudio(handle);
    std::printf("mencoder front: audio encoded (%s); running MEncoder with it:\nmencoder", encoder.summary().c_str());
    for (const std::string &argument : arguments)
        std::printf(" %s", argument.c_str());
    std::printf("\n");
    becomeRealMencoder(arguments);
}


// MEncoder copies MPEG audio right only from its own AVI reader. Read
// through FFmpeg's demuxers (Matroska, MP4, FLV, or -demuxer lavf) it writes
// MP3 with a header that makes players stretch two seconds to minutes, and
// MP2 from a transport stream in broken frames. From a bare MPEG audio
// stream it copies right, so the frames go over to it in one, unchanged.
[[noreturn]] void copyMpegAudioThenRunMencoder(const MencoderCommand &command, ChosenAudio &audio)
{
    const bool mp3 = audio.file->streams[audio.source.stream]->codecpar->codec_id == AV_CODEC_ID_MP3;
    OutputFile file = OutputFile::scratch(folderOf(command.output));
    MuxerPtr muxer = newMuxer(mp3 ? "mp3" : "mp2", file);
    if (mp3) {
        AVDictionary *plain = nullptr;
        av_dict_set(&plain, "id3v2_version", "0", 0);
        av_dict_set(&plain, "write_xing", "0", 0);
        av_opt_set_dict(muxer->priv_data, &plain);
        av_dict_free(&plain);
    }
    copyAudioStream(audio.file.get(), audio.source.stream, muxer.get());
    muxer.reset();
    const std::vector<std::string> arguments =
        command.withEncodedAudio(file.handOverAcrossExec(), {"-audio-demuxer", "audio"});
    std::printf("mencoder front: MPEG audio taken out as it is; running MEncoder with it:\nmencoder");
    for (const std::string &argument : arguments)
        std::printf(" %s", argument.c_str());
    std::printf("\n");
    becomeRealMencoder(arguments);
}

bool isMpegAudio(const AVStream *stream)
{
    const AVCodecID codec = stream->codecpar->codec_id;
    return codec == AV_CODEC_ID_MP3 || codec == AV_CODEC_ID_MP2;
}

// A copied audio track of the input: MPEG audio that MEncoder would not
// read with its own AVI reader goes through the front; anything else, and
// any command line the front cannot follow, to MEncoder as it is.
[[noreturn]] void copyAudio(const std::vector<std::string> &arguments)
{
    std::optional<MencoderCommand> command;
    std::optional<ChosenAudio> audio;
    try {
        command = parseMencoderCommand(arguments);
        if (!command->input.empty() && !command->output.empty() && command->audioFile.empty() && !command->noSound)
            audio = chooseAudio(*command);
    } catch (const std::exception &) {
        becomeRealMencoder(arguments);
    }
    if (!audio || !isMpegAudio(audio->file->streams[audio->source.stream])
        || (isAvi(audio->file.get()) && !command->readsThroughLavf()))
        becomeRealMencoder(arguments);
    copyMpegAudioThenRunMencoder(*command, *audio);
}

} // namespace

int runMencoderFront(const std::string &name, const std::vector<std::string> &arguments)
{
    const std::string codec = optionValueOf(arguments, "-oac");
    if (codec == "copy")
        copyAudio(arguments);
    if (codec != "lavc" && codec != "faac")
        becomeRealMencoder(arguments);
    const MencoderCommand command = parseMencoderCommand(arguments);
    if (!command.needsFront())
        becomeRealMencoder(arguments);
    if (command.input.empty())
        throw UsageError("no input file");
    if (command.output.empty())
        throw UsageError("no output file (-o)");
    if (isSameFile(command.output, command.input) || isSameFile(command.output, command.audioFile))
        throw ToolError("the output " + command.output + " is one of the inputs; choose another -o name");

    // MEncoder copies MPEG audio and AC-3 into an AVI in step; AAC and the
    // rest it either refuses or times wrongly.
    if (!command.wantsRawAudio() && command.encoder != "ac3" && command.encoder != "mp2"
        && command.encoder != "libmp3lame")
        throw UsageError(command.encoder + " audio can only be written with -of rawaudio; in an AVI use AC-3, MP2 or MP3");

    ChosenAudio audio = chooseAudio(command);
    AudioEncoder encoder(audio.source, encodingOf(command));
    std::printf("%s front: encoding audio stream %d of %s to %s\n", name.c_str(), audio.source.stream,
                pathOf(audio.file.get()).c_str(), encoder.summary().c_str());
    std::fflush(stdout);
    if (command.wantsRawAudio())
        return writeRawAudio(command, encoder);
    encodeThenRunMencoder(command, encoder);
}

} // namespace mediatool
