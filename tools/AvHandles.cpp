#include "AvHandles.h"

#include "ToolError.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace mediatool {

std::string avErrorText(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

int checkAv(int result, const std::string &what)
{
    if (result < 0)
        throw ToolError(what + ": " + avErrorText(result));
    return result;
}

PacketPtr newPacket()
{
    PacketPtr packet(av_packet_alloc());
    if (!packet)
        throw ToolError("out of memory");
    return packet;
}

FramePtr newFrame()
{
    FramePtr frame(av_frame_alloc());
    if (!frame)
        throw ToolError("out of memory");
    return frame;
}

InputPtr openMediaFile(const std::string &path, const AVDictionary *options)
{
    struct stat info {};
    if (stat(path.c_str(), &info) != 0)
        throw ToolError("cannot open " + path + ": " + std::strerror(errno));
    if (!S_ISREG(info.st_mode))
        throw ToolError(path + " is not a regular file");
    if (access(path.c_str(), R_OK) != 0)
        throw ToolError("cannot read " + path + ": " + std::strerror(errno));

    AVFormatContext *raw = nullptr;
    AVDictionary *demuxerOptions = nullptr;
    av_dict_copy(&demuxerOptions, options, 0);
    // "file:" keeps names with a colon from being read as protocols.
    const int opened = avformat_open_input(&raw, ("file:" + path).c_str(), nullptr, &demuxerOptions);
    av_dict_free(&demuxerOptions);
    if (opened < 0)
        throw ToolError(path + " is not a media file libavformat can read (" + avErrorText(opened) + ")");
    InputPtr input(raw);
    const int probed = avformat_find_stream_info(input.get(), nullptr);
    if (probed < 0)
        throw ToolError("cannot read the streams of " + path + ": " + avErrorText(probed));
    return input;
}

std::string pathOf(const AVFormatContext *input)
{
    const std::string url = input && input->url ? input->url : "";
    return url.rfind("file:", 0) == 0 ? url.substr(5) : url;
}

bool isAvi(const AVFormatContext *input)
{
    return input && input->iformat && std::strcmp(input->iformat->name, "avi") == 0;
}

InputPtr openAviFile(const std::string &path)
{
    InputPtr input = openMediaFile(path);
    if (!isAvi(input.get()))
        throw ToolError(path + " is not an AVI file (it reads as " + input->iformat->name + ")");
    return input;
}

std::string clockText(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0)
        seconds = 0;
    const auto millis = static_cast<long long>(std::llround(seconds * 1000));
    char text[48];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld.%03lld", millis / 3600000, millis / 60000 % 60,
                  millis / 1000 % 60, millis % 1000);
    return text;
}

int64_t toMicroseconds(int64_t timestamp, AVRational timeBase)
{
    return av_rescale_q(timestamp, timeBase, AV_TIME_BASE_Q);
}

} // namespace mediatool
