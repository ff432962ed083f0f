#include "Mp4Joiner.h"

#include "Mp4Muxer.h"
#include "Mp4Progress.h"
#include "Mp4Source.h"
#include "PacketRouter.h"
#include "ToolError.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace mediatool {
namespace {

std::vector<const AVStream *> mediaStreams(const AVFormatContext *file)
{
    std::vector<const AVStream *> streams;
    for (unsigned i = 0; i < file->nb_streams; ++i) {
        if (isMediaStream(file->streams[i]))
            streams.push_back(file->streams[i]);
    }
    return streams;
}

std::string otherTrackIn(const AVFormatContext *file)
{
    for (unsigned i = 0; i < file->nb_streams; ++i) {
        const AVStream *stream = file->streams[i];
        if (!isMediaStream(stream) && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC)) {
            const uint32_t tag = stream->codecpar->codec_tag;
            char fourcc[AV_FOURCC_MAX_STRING_SIZE] = {};
            return "track " + std::to_string(i + 1) + " is neither video, audio nor subtitles ("
                   + (tag ? av_fourcc_make_string(fourcc, tag) : avcodec_get_name(stream->codecpar->codec_id)) + ")";
        }
    }
    return {};
}

bool sameCodingParameters(const AVCodecParameters *a, const AVCodecParameters *b)
{
    if (a->codec_type == AVMEDIA_TYPE_SUBTITLE)
        return true; // styles of the first file serve all
    return a->extradata_size == b->extradata_size
           && (a->extradata_size == 0 || std::memcmp(a->extradata, b->extradata, static_cast<size_t>(a->extradata_size)) == 0);
}

std::string streamMismatch(const AVStream *first, const AVStream *other, std::size_t number)
{
    const AVCodecParameters *a = first->codecpar;
    const AVCodecParameters *b = other->codecpar;
    const std::string which = "track " + std::to_string(number);
    if (a->codec_type != b->codec_type || a->codec_id != b->codec_id)
        return which + " is " + describeStream(other) + ", the first file's " + describeStream(first);
    if (a->codec_type == AVMEDIA_TYPE_VIDEO && (a->width != b->width || a->height != b->height))
        return which + " is " + describeStream(other) + ", the first file's " + describeStream(first);
    if (a->codec_type == AVMEDIA_TYPE_AUDIO
        && (a->sample_rate != b->sample_rate || a->ch_layout.nb_channels != b->ch_layout.nb_channels))
        return which + " is " + describeStream(other) + ", the first file's " + describeStream(first);
    if (!sameCodingParameters(a, b))
        return which + " (" + describeStream(other) + ") was coded with other settings than the first file's";
    return {};
}

std::vector<std::string> filesToJoin(const Mp4BoxCommand &command)
{
    std::vector<std::string> files;
    struct stat info {};
    if (!command.createNew && stat(command.file.c_str(), &info) == 0)
        files.push_back(command.file);
    for (const std::string &file : command.joined) {
        if (isSameFile(file, command.file))
            throw ToolError("the output " + command.file + " is one of the files to join; choose another name");
        files.push_back(file);
    }
    if (files.size() < 2)
        throw UsageError("-cat needs two files to join");
    return files;
}

} // namespace

std::string joinMismatch(const AVFormatContext *first, const AVFormatContext *other)
{
    const std::string extra = otherTrackIn(other);
    if (!extra.empty())
        return extra;
    const auto ours = mediaStreams(first);
    const auto theirs = mediaStreams(other);
    if (ours.size() != theirs.size())
        return "it has " + std::to_string(theirs.size()) + " track(s), the first file " + std::to_string(ours.size());
    for (std::size_t i = 0; i < ours.size(); ++i) {
        const std::string mismatch = streamMismatch(ours[i], theirs[i], i + 1);
        if (!mismatch.empty())
            return mismatch;
    }
    return {};
}

int runMp4Join(const Mp4BoxCommand &command)
{
    checkTemporaryFolder(command);
    const std::vector<std::string> files = filesToJoin(command);
    std::vector<std::unique_ptr<Mp4Source>> sources;
    int64_t totalBytes = 0;
    for (const std::string &file : files) {
        sources.push_back(std::make_unique<Mp4Source>(file, std::nullopt));
        totalBytes += sources.back()->bytesTotal();
        const AVFormatContext *first = sources.front()->file();
        const std::string mismatch = sources.size() == 1 ? otherTrackIn(first) : joinMismatch(first, sources.back()->file());
        // Kestrane looks for these words to offer cleaned copies.
        if (!mismatch.empty())
            throw ToolError("Error appending " + file + ": Bad Parameter (" + mismatch + ")");
    }

    Mp4Writer writer(command.file, layoutOf(command));
    Mp4Progress progress("Joining into " + fileNameOf(command.file));
    PacketRouter router(writer, progress, totalBytes);
    for (std::size_t i = 0; i < sources.size(); ++i) {
        Mp4Source &source = *sources[i];
        const std::vector<int> streams = source.streamsFor(0);
        for (std::size_t k = 0; k < streams.size(); ++k) {
            const TrackPipeline &pipeline = source.feed(streams[k], source.needsOf(streams[k], AV_CODEC_ID_MOV_TEXT));
            if (i == 0)
                writer.addTrack(pipeline.parameters(), pipeline.timeBase(), source.file()->streams[streams[k]], {});
            router.route(pipeline, static_cast<int>(k));
        }
    }
    writer.copyFileTagsFrom(sources.front()->file());
    writer.writeHeader();
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const AVFormatContext *file = sources[i]->file();
        const int64_t startUs = file->start_time != AV_NOPTS_VALUE ? file->start_time : 0;
        const int64_t offsetUs = i == 0 ? 0 : router.endUs() - startUs;
        std::printf("%s %s\n", i == 0 ? "Copying" : "Appending", sources[i]->path().c_str());
        std::fflush(stdout);
        router.copyAll({sources[i].get()}, offsetUs);
    }
    writer.complete();
    progress.finish();
    std::printf("Saved %s: %zu files joined, %.1f MB\n", command.file.c_str(), sources.size(), writer.fileBytes() / 1e6);
    return 0;
}

} // namespace mediatool
