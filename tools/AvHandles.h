#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

#include <memory>
#include <string>

namespace mediatool {

struct InputCloser { void operator()(AVFormatContext *context) const { avformat_close_input(&context); } };
struct CodecFreer { void operator()(AVCodecContext *context) const { avcodec_free_context(&context); } };
struct PacketFreer { void operator()(AVPacket *packet) const { av_packet_free(&packet); } };
struct FrameFreer { void operator()(AVFrame *frame) const { av_frame_free(&frame); } };
struct ResamplerFreer { void operator()(SwrContext *context) const { swr_free(&context); } };
struct DictionaryFreer { void operator()(AVDictionary *dictionary) const { av_dict_free(&dictionary); } };

using InputPtr = std::unique_ptr<AVFormatContext, InputCloser>;
using CodecPtr = std::unique_ptr<AVCodecContext, CodecFreer>;
using PacketPtr = std::unique_ptr<AVPacket, PacketFreer>;
using FramePtr = std::unique_ptr<AVFrame, FrameFreer>;
using ResamplerPtr = std::unique_ptr<SwrContext, ResamplerFreer>;
using DictionaryPtr = std::unique_ptr<AVDictionary, DictionaryFreer>;

PacketPtr newPacket();
FramePtr newFrame();

// Opens a media file for reading and reads its stream parameters. A file
// that is missing, unreadable or not media at all gives a ToolError naming it.
// `options` go to the demuxer; those it does not know are ignored.
InputPtr openMediaFile(const std::string &path, const AVDictionary *options = nullptr);

// The file name of an input opened by openMediaFile.
std::string pathOf(const AVFormatContext *input);

// True when libavformat recognised the file as AVI.
bool isAvi(const AVFormatContext *input);

// Throws a ToolError unless `path` is a readable AVI file; answers it opened.
InputPtr openAviFile(const std::string &path);

// Seconds as "HH:MM:SS.mmm" for messages.
std::string clockText(double seconds);

// Microseconds of a stream timestamp.
int64_t toMicroseconds(int64_t timestamp, AVRational timeBase);

} // namespace mediatool
