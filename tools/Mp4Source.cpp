#include "Mp4Source.h"

#include "ToolError.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

namespace mediatool {
namespace {

constexpr AVRational kDefaultRate{25, 1};

InputPtr openWithRate(const std::string &path, std::optional<AVRational> rate)
{
    AVDictionary *raw = nullptr;
    if (rate) {
        const std::string text = std::to_string(rate->num) + "/" + std::to_string(rate->den);
        av_dict_set(&raw, "framerate", text.c_str(), 0); // raw video
        av_dict_set(&raw, "subfps", text.c_str(), 0);    // MicroDVD subtitles
    }
    DictionaryPtr options(raw);
    return openMediaFile(path, options.get());
}

} // namespace

bool isMediaStream(const AVStream *stream)
{
    const AVMediaType type = stream->codecpar->codec_type;
    if (stream->disposition & AV_DISPOSITION_ATTACHED_PIC)
        return false;
    return type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_SUBTITLE;
}

Mp4Source::Mp4Source(const std::string &path, std::optional<AVRational> frameRate)
    : filePath(path), input(openWithRate(path, frameRate)), rate(frameRate)
{
    // AVI stores no display times for B-frames; libavformat works them out.
    if (!isMp4() && !isMatroska())
        input->flags |= AVFMT_FLAG_GENPTS;
    struct stat info {};
    if (stat(path.c_str(), &info) == 0)
        totalBytes = info.st_size;
}

bool Mp4Source::isMp4() const
{
    return std::strstr(input->iformat->name, "mp4") != nullptr;
}

bool Mp4Source::isMatroska() const
{
    return std::strstr(input->iformat->name, "matroska") != nullptr;
}

int Mp4Source::trackIdOf(int index) const
{
    const AVStream *stream = input->streams[index];
    const bool ownIds = isMp4() || isMatroska();
    return ownIds && stream->id > 0 ? stream->id : index + 1;
}

std::vector<int> Mp4Source::streamsFor(int trackId) const
{
    std::vector<int> streams;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const int index = static_cast<int>(i);
        if (trackId == 0 ? isMediaStream(input->streams[i]) : trackIdOf(index) == trackId)
            streams.push_back(index);
    }
    return streams;
}

PipelineNeeds Mp4Source::needsOf(int index, AVCodecID textSubtitles, AVRational aspect) const
{
    const AVStream *stream = input->streams[index];
    const AVCodecID codec = stream->codecpar->codec_id;
    PipelineNeeds needs;
    if (codec == AV_CODEC_ID_H264 && std::strcmp(input->iformat->name, "h264") == 0) {
        AVRational own = stream->avg_frame_rate.num > 0 ? stream->avg_frame_rate : stream->r_frame_rate;
        needs.clockRate = rate ? *rate : own.num > 0 ? own : kDefaultRate;
    }
    if (codec == AV_CODEC_ID_H264 && aspect.num > 0)
        needs.h264Aspect = aspect;
    const AVCodecDescriptor *descriptor = avcodec_descriptor_get(codec);
    if (stream->codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE && codec != textSubtitles && descriptor
        && (descriptor->props & AV_CODEC_PROP_TEXT_SUB))
        needs.subtitleCodec = textSubtitles;
    return needs;
}

TrackPipeline &Mp4Source::feed(int index, const PipelineNeeds &needs)
{
    pipelines.push_back(std::make_unique<TrackPipeline>(input->streams[index], needs));
    pipelineStream.push_back(index);
    return *pipelines.back();
}

void Mp4Source::readPacket()
{
    if (!started) {
        // Streams nobody takes are skipped by the demuxer.
        for (unsigned i = 0; i < input->nb_streams; ++i) {
            const bool taken = std::find(pipelineStream.begin(), pipelineStream.end(), static_cast<int>(i)) != pipelineStream.end();
            input->streams[i]->discard = taken ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
        }
        started = true;
    }
    PacketPtr packet = newPacket();
    const int result = av_read_frame(input.get(), packet.get());
    if (result == AVERROR_EOF) {
        ended = true;
        for (auto &pipeline : pipelines)
            pipeline->finish();
        return;
    }
    if (result < 0)
        throw ToolError("cannot read " + filePath + ": " + avErrorText(result));
    std::vector<TrackPipeline *> targets;
    for (std::size_t i = 0; i < pipelines.size(); ++i) {
        if (pipelineStream[i] == packet->stream_index)
            targets.push_back(pipelines[i].get());
    }
    for (std::size_t i = 0; i < targets.size(); ++i) {
        PacketPtr copy = newPacket();
        if (i + 1 == targets.size())
            copy = std::move(packet);
        else
            checkAv(av_packet_ref(copy.get(), packet.get()), "out of memory");
        targets[i]->push(std::move(copy));
    }
}

bool Mp4Source::fillSome()
{
    while (!earliest() && !ended)
        readPacket();
    return earliest() != nullptr;
}

TrackPipeline *Mp4Source::earliest() const
{
    TrackPipeline *first = nullptr;
    for (const auto &pipeline : pipelines) {
        if (pipeline->hasPacket() && (!first || pipeline->nextTimeUs() < first->nextTimeUs()))
            first = pipeline.get();
    }
    return first;
}

int64_t Mp4Source::bytesRead() const
{
    if (ended)
        return totalBytes;
    const int64_t position = input->pb ? avio_tell(input->pb) : 0;
    return std::min(std::max<int64_t>(position, 0), totalBytes);
}

std::string describeStream(const AVStream *stream)
{
    const AVCodecParameters *parameters = stream->codecpar;
    const char *type = av_get_media_type_string(parameters->codec_type);
    std::string text = std::string(avcodec_get_name(parameters->codec_id)) + " " + (type ? type : "data");
    if (parameters->codec_type == AVMEDIA_TYPE_VIDEO)
        text += " " + std::to_string(parameters->width) + "x" + std::to_string(parameters->height);
    if (parameters->codec_type == AVMEDIA_TYPE_AUDIO)
        text += ", " + std::to_string(parameters->ch_layout.nb_channels) + " channels, " + std::to_string(parameters->sample_rate) + " Hz";
    return text;
}

} // namespace mediatool
