#include "Mp4Muxer.h"

#include "Mp4Progress.h"
#include "Mp4Source.h"
#include "PacketRouter.h"
#include "ToolError.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sys/stat.h>

namespace mediatool {
namespace {

struct PlannedTrack
{
    Mp4Source *source;
    int stream;
    TrackLabel label;
};

bool exists(const std::string &path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0;
}

// Each file is opened and read once, however many tracks come from it.
class SourceSet
{
public:
    explicit SourceSet(std::optional<AVRational> rate) : rate(rate) {}

    Mp4Source &open(const std::string &path)
    {
        for (const auto &source : sources) {
            if (source->path() == path)
                return *source;
        }
        sources.push_back(std::make_unique<Mp4Source>(path, rate));
        return *sources.back();
    }

    std::vector<Mp4Source *> all() const
    {
        std::vector<Mp4Source *> list;
        for (const auto &source : sources)
            list.push_back(source.get());
        return list;
    }

    int64_t totalBytes() const
    {
        int64_t total = 0;
        for (const auto &source : sources)
            total += source->bytesTotal();
        return total;
    }

private:
    std::optional<AVRational> rate;
    std::vector<std::unique_ptr<Mp4Source>> sources;
};

AVRational aspectOf(const Ratio &ratio)
{
    AVRational aspect{ratio.num, ratio.den};
    av_reduce(&aspect.num, &aspect.den, aspect.num, aspect.den, 1 << 16);
    return aspect;
}

TrackLabel labelOf(const TrackImport &import)
{
    TrackLabel label;
    label.language = import.language;
    label.title = import.title;
    // One track of an alternate group is enabled, the rest are marked off.
    if (import.disabled)
        label.enabled = TrackLabel::Enabled::No;
    else if (import.group > 0)
        label.enabled = TrackLabel::Enabled::Yes;
    return label;
}

bool isVideo(const PlannedTrack &track)
{
    return track.source->file()->streams[track.stream]->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
}

void planExistingTracks(std::vector<PlannedTrack> &plan, Mp4Source &file, const std::vector<int> &removed)
{
    for (const int id : removed) {
        if (file.streamsFor(id).empty())
            throw ToolError(file.path() + " has no track " + std::to_string(id));
    }
    for (const int stream : file.streamsFor(0)) {
        if (std::find(removed.begin(), removed.end(), file.trackIdOf(stream)) == removed.end())
            plan.push_back({&file, stream, {}});
    }
}

void planImports(std::vector<PlannedTrack> &plan, const Mp4BoxCommand &command, SourceSet &sources)
{
    for (const TrackImport &import : command.imports) {
        Mp4Source &source = sources.open(import.file);
        const std::vector<int> streams = source.streamsFor(import.trackId);
        if (streams.empty())
            throw ToolError(import.trackId > 0 ? import.file + " has no track " + std::to_string(import.trackId)
                                               : import.file + " has no video, audio or subtitle track");
        for (const int stream : streams) {
            if (!isMediaStream(source.file()->streams[stream]))
                throw ToolError("track " + std::to_string(import.trackId) + " of " + import.file
                                + " is neither video, audio nor subtitles");
            PlannedTrack track{&source, stream, labelOf(import)};
            if (import.pixelAspect && isVideo(track))
                track.label.pixelAspect = aspectOf(*import.pixelAspect);
            plan.push_back(track);
        }
    }
}

// "-par ID=N:D" counts the tracks of the file written.
void applyTrackAspects(std::vector<PlannedTrack> &plan, const Mp4BoxCommand &command)
{
    for (const auto &[id, ratio] : command.trackAspects) {
        if (id > static_cast<int>(plan.size()) || !isVideo(plan[static_cast<size_t>(id - 1)]))
            throw ToolError("-par " + std::to_string(id) + "=...: track " + std::to_string(id) + " of "
                            + command.file + " would not be a video track");
        plan[static_cast<size_t>(id - 1)].label.pixelAspect = aspectOf(ratio);
    }
}

std::string describeLabel(const TrackLabel &label)
{
    std::string text;
    if (!label.language.empty())
        text += ", language " + label.language;
    if (label.title)
        text += ", named \"" + *label.title + "\"";
    if (label.enabled == TrackLabel::Enabled::No)
        text += ", disabled";
    if (label.pixelAspect.num > 0)
        text += ", pixel aspect " + std::to_string(label.pixelAspect.num) + ":" + std::to_string(label.pixelAspect.den);
    return text;
}

void refuseInputsAsOutput(const Mp4BoxCommand &command)
{
    for (const TrackImport &import : command.imports) {
        if (isSameFile(import.file, command.file))
            throw ToolError("the output " + command.file + " is one of the inputs; choose another name");
    }
}

// The tracks of the file written, in order: the named file's own (when it
// is written again), then those -add takes.
std::vector<PlannedTrack> planTracks(const Mp4BoxCommand &command, SourceSet &sources)
{
    const bool inPlace = command.operation != Mp4Operation::Import || !command.createNew;
    if (!inPlace)
        refuseInputsAsOutput(command);
    std::vector<PlannedTrack> plan;
    if (command.operation != Mp4Operation::Import || (inPlace && exists(command.file)))
        planExistingTracks(plan, sources.open(command.file), command.removedTracks);
    planImports(plan, command, sources);
    applyTrackAspects(plan, command);
    if (plan.empty())
        throw ToolError("no track would be left in " + command.file);
    return plan;
}

} // namespace

Mp4Layout layoutOf(const Mp4BoxCommand &command)
{
    Mp4Layout layout;
    layout.ipod = command.ipod;
    layout.indexInFront = command.interleaveMs >= 0;
    layout.objectDescriptor = command.isma;
    return layout;
}

void checkTemporaryFolder(const Mp4BoxCommand &command)
{
    struct stat info {};
    if (!command.temporaryFolder.empty() && (stat(command.temporaryFolder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)))
        throw ToolError("-tmp " + command.temporaryFolder + " is not a folder");
}

int runMp4Mux(const Mp4BoxCommand &command)
{
    checkTemporaryFolder(command);
    const std::optional<Ratio> rate = command.frameRate;
    SourceSet sources(rate ? std::optional<AVRational>(AVRational{rate->num, rate->den}) : std::nullopt);
    const std::vector<PlannedTrack> plan = planTracks(command, sources);

    Mp4Writer writer(command.file, layoutOf(command));
    Mp4Progress progress("Writing " + fileNameOf(command.file));
    PacketRouter router(writer, progress, sources.totalBytes());
    for (std::size_t i = 0; i < plan.size(); ++i) {
        const PlannedTrack &track = plan[i];
        const AVStream *stream = track.source->file()->streams[track.stream];
        TrackPipeline &pipeline = track.source->feed(
            track.stream, track.source->needsOf(track.stream, AV_CODEC_ID_MOV_TEXT, track.label.pixelAspect));
        router.route(pipeline, writer.addTrack(pipeline.parameters(), pipeline.timeBase(), stream, track.label));
        std::printf("Track %zu: %s from %s%s\n", i + 1, describeStream(stream).c_str(), track.source->path().c_str(),
                    describeLabel(track.label).c_str());
    }
    // The file's own tags (title, date) stay when it is written again or re-added.
    const Mp4Source *first = plan.front().source;
    if (first->isMp4() || first->isMatroska())
        writer.copyFileTagsFrom(first->file());
    std::fflush(stdout);

    writer.writeHeader();
    router.copyAll(sources.all());
    writer.complete();
    progress.finish();
    std::printf("Saved %s: %zu track(s), %.1f MB\n", command.file.c_str(), plan.size(), writer.fileBytes() / 1e6);
    return 0;
}

} // namespace mediatool
