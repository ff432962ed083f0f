#include "Mp4Splitter.h"

#include "Interruption.h"
#include "Mp4Muxer.h"
#include "Mp4Names.h"
#include "Mp4Progress.h"
#include "Mp4Source.h"
#include "SplitPlanner.h"
#include "ToolError.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

namespace mediatool {
namespace {

// An MP4 sample costs its size plus its entries in the sample tables.
constexpr int64_t mp4PacketCost(int64_t size) { return size + 20; }
constexpr ContainerCosts kMp4Costs{4 * 1024, 1024, mp4PacketCost};

std::vector<PacketEntry> indexEntries(AVFormatContext *input)
{
    std::vector<PacketEntry> entries;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        if (isMediaStream(input->streams[i]))
            addIndexEntries(input->streams[i], static_cast<int>(i), entries);
    }
    return entries;
}

// Copies the packets of one planned piece into its own file.
class PieceWriter
{
public:
    // `keyDelay` is how far (in the video's time base) a key frame is shown
    // after it is decoded: pieces are cut at key frames in decoding order,
    // the other streams where those frames are shown.
    PieceWriter(AVFormatContext *input, int video, const PiecePlan &plan, int64_t keyDelay, const Mp4Layout &layout)
        : input(input), video(video), plan(plan), keyDelay(keyDelay),
          startUs(shown(plan.startUs, PiecePlan::kOpenStart)), endUs(shown(plan.endUs, PiecePlan::kOpenEnd)),
          endShownTs(plan.endTs == PiecePlan::kOpenEnd ? plan.endTs : plan.endTs + keyDelay),
          writer(std::make_unique<Mp4Writer>(plan.path, layout)),
          progress("Splitting into " + fileNameOf(plan.path)), outputIndex(input->nb_streams, -1),
          done(input->nb_streams, true)
    {
        for (unsigned i = 0; i < input->nb_streams; ++i) {
            if (isMediaStream(input->streams[i])) {
                outputIndex[i] = writer->addStreamLike(input->streams[i]);
                done[i] = false;
            }
        }
        writer->copyFileTagsFrom(input);
    }

    std::unique_ptr<Mp4Writer> write()
    {
        seekToStart();
        writer->writeHeader();
        PacketPtr packet = newPacket();
        int result = 0;
        while (std::find(done.begin(), done.end(), false) != done.end() && (result = av_read_frame(input, packet.get())) >= 0) {
            throwIfInterrupted();
            route(packet.get());
            av_packet_unref(packet.get());
        }
        if (result < 0 && result != AVERROR_EOF)
            throw ToolError("cannot read " + pathOf(input) + ": " + avErrorText(result));
        writer->complete();
        progress.finish();
        return std::move(writer);
    }

private:
    int64_t shown(int64_t decodedUs, int64_t open) const
    {
        return decodedUs == open ? open : decodedUs + toMicroseconds(keyDelay, input->streams[video]->time_base);
    }

    void seekToStart()
    {
        int64_t start = plan.startTs;
        if (start == PiecePlan::kOpenStart) {
            const AVIndexEntry *first = avformat_index_get_entry(input->streams[video], 0);
            start = first ? first->timestamp : 0;
        }
        checkAv(av_seek_frame(input, video, start, AVSEEK_FLAG_BACKWARD), "cannot find the piece's start in " + pathOf(input));
    }

    void showProgress(int64_t timeUs)
    {
        const int64_t from = startUs == PiecePlan::kOpenStart ? 0 : startUs;
        const int64_t to = endUs == PiecePlan::kOpenEnd ? input->duration : endUs;
        if (to > from)
            progress.show(static_cast<double>(timeUs - from) / static_cast<double>(to - from));
    }

    void route(AVPacket *packet)
    {
        const int index = packet->stream_index;
        if (outputIndex[index] < 0 || done[index])
            return;
        const int64_t timestamp = packet->dts != AV_NOPTS_VALUE ? packet->dts : packet->pts;
        if (timestamp == AV_NOPTS_VALUE)
            return;
        if (index == video)
            routeVideo(packet, timestamp);
        else
            routeOther(packet, timestamp);
    }

    // Video goes by decoding order from the key frame on, up to the last
    // frame shown before the end: reference frames decoded before the end
    // but shown after it are left out, unless a frame shown in time needs them.
    void routeVideo(AVPacket *packet, int64_t dts)
    {
        const int64_t pts = packet->pts != AV_NOPTS_VALUE ? packet->pts : dts;
        if (dts >= endShownTs) {
            done[video] = true;
            heldBack.clear();
            return;
        }
        if (dts < plan.startTs)
            return;
        showProgress(toMicroseconds(dts, input->streams[video]->time_base));
        PacketPtr owned = newPacket();
        av_packet_move_ref(owned.get(), packet);
        if (pts >= endShownTs) {
            heldBack.push_back(std::move(owned));
            return;
        }
        for (PacketPtr &held : heldBack)
            writeShifted(held.get(), plan.startTs + keyDelay);
        heldBack.clear();
        writeShifted(owned.get(), plan.startTs + keyDelay);
    }

    // Other streams go by the middle of each packet, against display time.
    void routeOther(AVPacket *packet, int64_t timestamp)
    {
        const AVStream *stream = input->streams[packet->stream_index];
        const int64_t middleUs = toMicroseconds(timestamp, stream->time_base) + toMicroseconds(packet->duration, stream->time_base) / 2;
        if (middleUs >= endUs) {
            done[packet->stream_index] = true;
            return;
        }
        if (middleUs >= startUs)
            writeShifted(packet, av_rescale_q(startUs, AV_TIME_BASE_Q, stream->time_base));
    }

    // The piece's first key frame is shown at zero.
    void writeShifted(AVPacket *packet, int64_t shift)
    {
        if (plan.startTs != PiecePlan::kOpenStart) {
            if (packet->dts != AV_NOPTS_VALUE)
                packet->dts -= shift;
            if (packet->pts != AV_NOPTS_VALUE)
                packet->pts -= shift;
        }
        writer->write(packet, outputIndex[packet->stream_index], input->streams[packet->stream_index]->time_base);
    }

    AVFormatContext *input;
    int video;
    const PiecePlan &plan;
    int64_t keyDelay;
    int64_t startUs;
    int64_t endUs;
    int64_t endShownTs;
    std::vector<PacketPtr> heldBack;
    std::unique_ptr<Mp4Writer> writer;
    Mp4Progress progress;
    std::vector<int> outputIndex;
    std::vector<bool> done;
};

// How long the first key frame waits for display after decoding (B-frame
// reordering); every key frame of a stream waits as long.
int64_t keyFrameDelay(AVFormatContext *input, int video)
{
    PacketPtr packet = newPacket();
    int64_t delay = 0;
    while (av_read_frame(input, packet.get()) >= 0) {
        const bool found = packet->stream_index == video;
        if (found && packet->pts != AV_NOPTS_VALUE && packet->dts != AV_NOPTS_VALUE)
            delay = std::max<int64_t>(0, packet->pts - packet->dts);
        av_packet_unref(packet.get());
        if (found)
            break;
    }
    return delay;
}

// Pieces are planned in decoding time (key frames are found by it); a
// range's end, a display time, is moved back by the key frames' delay.
std::vector<PiecePlan> planPieces(const Mp4BoxCommand &command, AVFormatContext *input, int video, int64_t keyDelay)
{
    const std::vector<PacketEntry> entries = indexEntries(input);
    const AVStream *videoStream = input->streams[video];
    if (command.splitRange) {
        const int64_t delayUs = toMicroseconds(keyDelay, videoStream->time_base);
        const auto startUs = static_cast<int64_t>(std::llround(command.splitRange->start * 1e6)) - delayUs;
        const auto endUs = static_cast<int64_t>(std::llround(command.splitRange->end * 1e6)) - delayUs;
        const int64_t endTs = av_rescale_q_rnd(endUs + delayUs, AV_TIME_BASE_Q, videoStream->time_base, AV_ROUND_UP) - keyDelay;
        PiecePlan piece = planByTime(entries, video, startUs, endUs, endTs);
        piece.path = rangePieceName(command.file, *command.splitRange);
        return {piece};
    }
    int streams = 0;
    for (unsigned i = 0; i < input->nb_streams; ++i)
        streams += isMediaStream(input->streams[i]) ? 1 : 0;
    SizePlan plan = planBySize(entries, video, command.splitKilobytes * 1000, 0, streams, kMp4Costs);
    for (std::size_t i = 0; i < plan.pieces.size(); ++i)
        plan.pieces[i].path = sizePieceName(command.file, static_cast<int>(i + 1));
    return plan.pieces;
}

} // namespace

int runMp4Split(const Mp4BoxCommand &command)
{
    checkTemporaryFolder(command);
    const Mp4Source source(command.file, std::nullopt);
    if (!source.isMp4())
        throw ToolError(command.file + " is not an MP4 file (it reads as " + source.file()->iformat->name + ")");
    AVFormatContext *input = source.file();
    const int video = av_find_best_stream(input, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video < 0)
        throw ToolError(command.file + " has no video track to cut at key frames");
    const int64_t keyDelay = keyFrameDelay(input, video);
    const std::vector<PiecePlan> pieces = planPieces(command, input, video, keyDelay);
    for (const PiecePlan &piece : pieces) {
        if (isSameFile(piece.path, command.file))
            throw ToolError("the piece " + piece.path + " would replace the file split; rename it first");
    }
    std::printf("Splitting %s into %zu piece(s)\n", command.file.c_str(), pieces.size());
    std::fflush(stdout);

    CompletedFiles written;
    for (const PiecePlan &piece : pieces) {
        std::unique_ptr<Mp4Writer> file = PieceWriter(input, video, piece, keyDelay, layoutOf(command)).write();
        std::printf("Wrote %s (%.1f MB)\n", piece.path.c_str(), file->fileBytes() / 1e6);
        written.add(std::move(file));
    }
    written.keep();
    return 0;
}

} // namespace mediatool
