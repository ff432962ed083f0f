#include "AviSplitter.h"

#include "AviWriter.h"
#include "Interruption.h"
#include "SplitPlanner.h"
#include "ToolError.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <strings.h>

namespace mediatool {
namespace {

// A stream that has gone this far past a piece's end lets the piece close
// even if another stream (an audio track that ends early) never gets there.
constexpr int64_t kCloseSlackUs = 10'000'000;

const char kUsage[] = "usage: avisplit -i FILE -t HH:MM:SS-HH:MM:SS [-c] -o OUT\n"
                      "       avisplit -i FILE -s MB [-H N] -o OUT";

double positiveNumber(const std::string &text, const std::string &option)
{
    char *end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(value > 0) || !std::isfinite(value))
        throw UsageError(option + " needs a positive number, not \"" + text + "\"");
    return value;
}

int countOf(const std::string &text, const std::string &option)
{
    char *end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || value < 0 || value > 100000)
        throw UsageError(option + " needs a whole number, not \"" + text + "\"");
    return static_cast<int>(value);
}

bool copiesStream(const AVStream *stream)
{
    const AVMediaType type = stream->codecpar->codec_type;
    return type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_SUBTITLE;
}

// The packets as the AVI index lists them; empty when a copied stream has no
// index or the video's index misses frames the header counts (a file cut
// short loses its index, and the demuxer then only knows the packets it
// has read so far): the file must then be read once to learn its packets.
std::vector<PacketEntry> entriesFromIndex(AVFormatContext *input, int videoStream)
{
    const AVStream *video = input->streams[videoStream];
    const int videoEntries = avformat_index_get_entries_count(video);
    if (videoEntries < 2 || (video->nb_frames > 0 && videoEntries < video->nb_frames * 0.98))
        return {};
    std::vector<PacketEntry> entries;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        AVStream *stream = input->streams[i];
        if (!copiesStream(stream))
            continue;
        if (addIndexEntries(stream, static_cast<int>(i), entries) <= 0)
            return {};
    }
    return entries;
}

std::vector<PacketEntry> entriesFromPackets(const std::string &path)
{
    std::printf("avisplit: %s has no usable index, reading it once to find its key frames\n", path.c_str());
    InputPtr input = openAviFile(path);
    PacketPtr packet = newPacket();
    std::vector<PacketEntry> entries;
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        throwIfInterrupted();
        const AVStream *stream = input->streams[packet->stream_index];
        const int64_t timestamp = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
        if (copiesStream(stream) && timestamp != AV_NOPTS_VALUE)
            entries.push_back({packet->stream_index, timestamp, toMicroseconds(timestamp, stream->time_base), packet->size,
                               (packet->flags & AV_PKT_FLAG_KEY) != 0});
        av_packet_unref(packet.get());
    }
    return entries;
}

// Copies the planned pieces out of one pass over the input.
class PieceCopier
{
public:
    PieceCopier(AVFormatContext *input, int videoStream, std::vector<PiecePlan> pieces)
        : input(input), videoStream(videoStream), plans(std::move(pieces)), writers(plans.size()),
          closed(plans.size(), false), reachedUs(input->nb_streams, PiecePlan::kOpenStart)
    {
    }

    ~PieceCopier()
    {
        if (!succeeded) {
            for (auto &writer : finished)
                writer->withdraw();
        }
    }

    void run()
    {
        PacketPtr packet = newPacket();
        int result = 0;
        while (openPieces() > 0 && (result = av_read_frame(input, packet.get())) >= 0) {
            throwIfInterrupted();
            route(packet.get());
            av_packet_unref(packet.get());
            closeFinishedPieces(false);
        }
        if (result < 0 && result != AVERROR_EOF)
            throw ToolError("cannot read " + pathOf(input) + ": " + avErrorText(result));
        closeFinishedPieces(true);
        succeeded = true;
    }

    int piecesWritten() const { return static_cast<int>(finished.size()); }

private:
    std::size_t openPieces() const { return static_cast<std::size_t>(std::count(closed.begin(), closed.end(), false)); }

    int pieceFor(const AVPacket *packet) const
    {
        const AVStream *stream = input->streams[packet->stream_index];
        const int64_t timestamp = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
        if (timestamp == AV_NOPTS_VALUE)
            return lastPiece;
        const bool video = packet->stream_index == videoStream;
        const int64_t position = video ? timestamp
                                       : toMicroseconds(timestamp, stream->time_base)
                                             + toMicroseconds(packet->duration, stream->time_base) / 2;
        for (std::size_t i = 0; i < plans.size(); ++i) {
            const PiecePlan &plan = plans[i];
            const int64_t start = video ? plan.startTs : plan.startUs;
            const int64_t end = video ? plan.endTs : plan.endUs;
            if (position >= start && position < end)
                return static_cast<int>(i);
        }
        return -1;
    }

    void route(AVPacket *packet)
    {
        const int streamIndex = packet->stream_index;
        AVStream *stream = input->streams[streamIndex];
        if (!copiesStream(stream))
            return;
        const int64_t timestamp = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
        if (timestamp != AV_NOPTS_VALUE)
            reachedUs[streamIndex] = std::max(reachedUs[streamIndex], toMicroseconds(timestamp, stream->time_base));
        const int piece = pieceFor(packet);
        if (piece < 0 || closed[piece])
            return;
        if (streamIndex == videoStream)
            lastPiece = piece;
        AviWriter &writer = writerFor(piece);
        shiftBack(packet, stream, plans[piece]);
        writer.write(packet, outputIndex[streamIndex], stream->time_base);
        if (streamIndex == videoStream)
            ++videoFrames[piece];
    }

    void shiftBack(AVPacket *packet, const AVStream *stream, const PiecePlan &plan) const
    {
        if (plan.startUs == PiecePlan::kOpenStart)
            return;
        const int64_t shift = packet->stream_index == videoStream
                                  ? plan.startTs
                                  : av_rescale_q(plan.startUs, AV_TIME_BASE_Q, stream->time_base);
        if (packet->dts != AV_NOPTS_VALUE)
            packet->dts -= shift;
        if (packet->pts != AV_NOPTS_VALUE)
            packet->pts -= shift;
    }

    AviWriter &writerFor(int piece)
    {
        if (!writers[piece]) {
            auto writer = std::make_unique<AviWriter>(plans[piece].path);
            outputIndex.assign(input->nb_streams, -1);
            for (unsigned i = 0; i < input->nb_streams; ++i) {
                if (copiesStream(input->streams[i]))
                    outputIndex[i] = writer->addStreamLike(input->streams[i]);
            }
            writer->copyFileTagsFrom(input);
            writer->writeHeader();
            writers[piece] = std::move(writer);
            videoFrames.resize(plans.size(), 0);
        }
        return *writers[piece];
    }

    void closeFinishedPieces(bool atEnd)
    {
        for (std::size_t i = 0; i < plans.size(); ++i) {
            if (closed[i] || !(atEnd || isPast(plans[i].endUs)))
                continue;
            closed[i] = true;
            if (writers[i])
                finish(i);
        }
    }

    // True when the video has passed `endUs` and every other stream has too
    // (or the video is far beyond it).
    bool isPast(int64_t endUs) const
    {
        if (endUs == PiecePlan::kOpenEnd || reachedUs[videoStream] < endUs)
            return false;
        if (reachedUs[videoStream] >= endUs + kCloseSlackUs)
            return true;
        for (unsigned i = 0; i < input->nb_streams; ++i) {
            if (copiesStream(input->streams[i]) && reachedUs[i] < endUs)
                return false;
        }
        return true;
    }

    void finish(std::size_t piece)
    {
        std::unique_ptr<AviWriter> writer = std::move(writers[piece]);
        writer->writeTrailer();
        writer->commit();
        const int64_t bytes = writer->fileBytes();
        const PiecePlan &plan = plans[piece];
        std::printf("avisplit: wrote %s: from %s, %lld video frames, %.1f MB\n", writer->path().c_str(),
                    clockText(plan.startUs == PiecePlan::kOpenStart ? 0 : plan.startUs / 1e6).c_str(),
                    static_cast<long long>(videoFrames[piece]), bytes / 1e6);
        finished.push_back(std::move(writer));
        lastBytes.push_back(bytes);
    }

public:
    std::vector<int64_t> lastBytes;

private:
    AVFormatContext *input;
    int videoStream;
    std::vector<PiecePlan> plans;
    std::vector<std::unique_ptr<AviWriter>> writers;
    std::vector<std::unique_ptr<AviWriter>> finished;
    std::vector<bool> closed;
    std::vector<int64_t> reachedUs;
    std::vector<int> outputIndex;
    std::vector<int64_t> videoFrames;
    int lastPiece = 0;
    bool succeeded = false;
};

void refuseOverwritingInput(const std::string &input, const std::vector<PiecePlan> &pieces)
{
    for (const PiecePlan &piece : pieces) {
        if (isSameFile(input, piece.path))
            throw ToolError("the output " + piece.path + " is the input itself; choose another -o name");
    }
}

} // namespace

std::string pieceName(const std::string &base, int index)
{
    std::string stem = base;
    if (stem.size() > 4 && strcasecmp(stem.c_str() + stem.size() - 4, ".avi") == 0)
        stem.resize(stem.size() - 4);
    char number[16];
    std::snprintf(number, sizeof number, "-%04d.avi", index);
    return stem + number;
}

SplitRequest parseSplitArguments(const std::vector<std::string> &arguments)
{
    SplitRequest request;
    bool sizeGiven = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &option = arguments[i];
        if (option == "-c")
            continue; // one range always gives one file
        if (option == "-h" || option == "--help")
            throw UsageError(kUsage);
        if (option != "-i" && option != "-o" && option != "-t" && option != "-s" && option != "-H")
            throw UsageError("unknown option \"" + option + "\"\n" + kUsage);
        if (i + 1 >= arguments.size())
            throw UsageError(option + " needs a value\n" + kUsage);
        const std::string &value = arguments[++i];
        if (option == "-i")
            request.input = value;
        else if (option == "-o")
            request.output = value;
        else if (option == "-t")
            request.range = parseTimeRange(value);
        else if (option == "-s")
            request.megabytes = positiveNumber(value, "-s"), sizeGiven = true;
        else
            request.maxPieces = countOf(value, "-H");
    }
    if (request.input.empty())
        throw UsageError(std::string("no input file (-i)\n") + kUsage);
    if (request.output.empty())
        throw UsageError(std::string("no output name (-o)\n") + kUsage);
    if (request.range.has_value() == sizeGiven)
        throw UsageError(std::string("give either -t or -s\n") + kUsage);
    return request;
}

int runAviSplit(const std::vector<std::string> &arguments)
{
    const SplitRequest request = parseSplitArguments(arguments);
    InputPtr input = openAviFile(request.input);
    const int video = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video < 0)
        throw ToolError(request.input + " has no video stream to cut at key frames");

    std::vector<PacketEntry> entries = entriesFromIndex(input.get(), video);
    if (entries.empty())
        entries = entriesFromPackets(request.input);
    const AVStream *videoStream = input->streams[video];
    int streams = 0;
    for (unsigned i = 0; i < input->nb_streams; ++i)
        streams += copiesStream(input->streams[i]) ? 1 : 0;

    std::vector<PiecePlan> pieces;
    if (request.range) {
        const auto startUs = static_cast<int64_t>(std::llround(request.range->start * 1e6));
        const auto endUs = static_cast<int64_t>(std::llround(request.range->end * 1e6));
        const int64_t endTs = av_rescale_q_rnd(endUs, AV_TIME_BASE_Q, videoStream->time_base, AV_ROUND_UP);
        pieces.push_back(planByTime(entries, video, startUs, endUs, endTs));
        pieces.back().path = request.output;
        std::printf("avisplit: %s from %s (key frame at or before %s) to %s\n", request.input.c_str(),
                    clockText(pieces.back().startUs / 1e6).c_str(), clockText(request.range->start).c_str(),
                    clockText(request.range->end).c_str());
        // Start reading at the key frame instead of the top of the file.
        if (av_seek_frame(input.get(), video, pieces.back().startTs, AVSEEK_FLAG_BACKWARD) < 0)
            av_seek_frame(input.get(), -1, 0, AVSEEK_FLAG_BACKWARD);
    } else {
        const auto maxBytes = static_cast<int64_t>(request.megabytes * 1e6);
        SizePlan plan = planBySize(entries, video, maxBytes, request.maxPieces, streams);
        for (std::size_t i = 0; i < plan.pieces.size(); ++i)
            plan.pieces[i].path = pieceName(request.output, static_cast<int>(i));
        pieces = std::move(plan.pieces);
        std::printf("avisplit: %s in %zu piece(s) of at most %g MB\n", request.input.c_str(), pieces.size(),
                    request.megabytes);
        if (plan.droppedFromUs != PiecePlan::kOpenEnd)
            std::printf("avisplit: -H %d: the rest from %s is not written\n", request.maxPieces,
                        clockText(plan.droppedFromUs / 1e6).c_str());
    }
    std::fflush(stdout);
    refuseOverwritingInput(request.input, pieces);

    PieceCopier copier(input.get(), video, pieces);
    copier.run();
    if (!request.range) {
        const auto maxBytes = static_cast<int64_t>(request.megabytes * 1e6);
        for (std::size_t i = 0; i < copier.lastBytes.size(); ++i) {
            if (copier.lastBytes[i] > maxBytes)
                std::printf("avisplit: warning: %s is larger than %g MB: its key frames lie further apart than that\n",
                            pieceName(request.output, static_cast<int>(i)).c_str(), request.megabytes);
        }
    }
    std::printf("avisplit: done, %d file(s) written\n", copier.piecesWritten());
    return 0;
}

} // namespace mediatool
