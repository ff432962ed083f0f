#include "Mp4Extractor.h"

#include "Mp4Muxer.h"
#include "Mp4Names.h"
#include "Mp4Progress.h"
#include "Mp4Source.h"
#include "PacketRouter.h"
#include "ToolError.h"

#include <cstdio>
#include <memory>

namespace mediatool {
namespace {

struct ExtractionPlan
{
    int stream = -1;
    std::string path;
    std::string format;
};

ExtractionPlan planExtraction(const Mp4Source &source, const Extraction &extraction)
{
    const std::vector<int> streams = source.streamsFor(extraction.trackId);
    if (streams.empty())
        throw ToolError(source.path() + " has no track " + std::to_string(extraction.trackId));
    ExtractionPlan plan;
    plan.stream = streams.front();
    const AVCodecParameters *parameters = source.file()->streams[plan.stream]->codecpar;
    const AVCodecDescriptor *descriptor = avcodec_descriptor_get(parameters->codec_id);
    const bool textSubtitle = parameters->codec_type == AVMEDIA_TYPE_SUBTITLE && descriptor
                              && (descriptor->props & AV_CODEC_PROP_TEXT_SUB);
    const std::string which = "track " + std::to_string(extraction.trackId) + " of " + source.path();
    if (extraction.asSrt) {
        if (!textSubtitle)
            throw ToolError("-srt: " + which + " is not a text subtitle track");
        plan.path = srtTrackName(source.path(), extraction.trackId);
        plan.format = "srt";
        return plan;
    }
    if (parameters->codec_type == AVMEDIA_TYPE_SUBTITLE)
        throw ToolError("-raw: " + which + " holds subtitles; extract them with -srt");
    const RawStorage storage = rawStorageFor(parameters->codec_id);
    if (storage.format.empty())
        throw ToolError("-raw: " + which + " holds " + avcodec_get_name(parameters->codec_id)
                        + ", which is not extracted to a file of its own");
    plan.path = rawTrackName(source.path(), extraction.trackId, storage.extension);
    plan.format = storage.format;
    return plan;
}

std::unique_ptr<StreamWriter> extract(const std::string &file, const Extraction &extraction)
{
    Mp4Source source(file, std::nullopt);
    const ExtractionPlan plan = planExtraction(source, extraction);
    if (isSameFile(plan.path, file))
        throw ToolError("the extracted track would replace " + file);
    const AVStream *stream = source.file()->streams[plan.stream];
    std::printf("Extracting %s to %s\n", describeStream(stream).c_str(), plan.path.c_str());
    std::fflush(stdout);

    auto writer = std::make_unique<StreamWriter>(plan.path, plan.format.c_str());
    Mp4Progress progress("Extracting to " + fileNameOf(plan.path));
    PacketRouter router(*writer, progress, source.bytesTotal());
    const TrackPipeline &pipeline = source.feed(plan.stream, source.needsOf(plan.stream, AV_CODEC_ID_SUBRIP));
    router.route(pipeline, writer->addStream(pipeline.parameters(), pipeline.timeBase()));
    writer->writeHeader();
    router.copyAll({&source});
    writer->complete();
    progress.finish();
    return writer;
}

} // namespace

RawStorage rawStorageFor(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_H264: return {"h264", "h264"};
    case AV_CODEC_ID_MPEG4: return {"avi", "avi"};
    case AV_CODEC_ID_MPEG1VIDEO:
    case AV_CODEC_ID_MPEG2VIDEO: return {"mpg", "mpeg"};
    case AV_CODEC_ID_H263: return {"h263", "h263"};
    case AV_CODEC_ID_AAC: return {"aac", "adts"};
    case AV_CODEC_ID_AC3: return {"ac3", "ac3"};
    case AV_CODEC_ID_EAC3: return {"ac3", "eac3"};
    case AV_CODEC_ID_MP3: return {"mp3", "mp3"};
    case AV_CODEC_ID_MP2: return {"mp2", "mp2"};
    case AV_CODEC_ID_DTS: return {"dts", "dts"};
    case AV_CODEC_ID_FLAC: return {"flac", "flac"};
    case AV_CODEC_ID_VORBIS: return {"ogg", "ogg"};
    default: return {};
    }
}

int runMp4Extract(const Mp4BoxCommand &command)
{
    checkTemporaryFolder(command);
    CompletedFiles written;
    for (const Extraction &extraction : command.extractions)
        written.add(extract(command.file, extraction));
    written.keep();
    return 0;
}

} // namespace mediatool
