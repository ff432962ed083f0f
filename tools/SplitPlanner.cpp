#include "SplitPlanner.h"

#include "AvHandles.h"
#include "ToolError.h"

#include <algorithm>

namespace mediatool {
namespace {

struct KeyFrames
{
    std::vector<int64_t> timestamps;
    std::vector<int64_t> micros;
};

KeyFrames keyFramesOf(const std::vector<PacketEntry> &entries, int videoStream)
{
    KeyFrames keys;
    for (const PacketEntry &entry : entries) {
        if (entry.stream == videoStream && entry.key) {
            keys.timestamps.push_back(entry.timestamp);
            keys.micros.push_back(entry.timeUs);
        }
    }
    if (keys.timestamps.empty())
        throw ToolError("the video has no key frames to cut at");
    return keys;
}

// Index of the key-frame interval holding an entry (entries before the first
// key frame count to the first interval).
std::size_t intervalOf(const PacketEntry &entry, const KeyFrames &keys, int videoStream)
{
    const auto &axis = entry.stream == videoStream ? keys.timestamps : keys.micros;
    const int64_t value = entry.stream == videoStream ? entry.timestamp : entry.timeUs;
    const auto after = std::upper_bound(axis.begin(), axis.end(), value);
    return after == axis.begin() ? 0 : static_cast<std::size_t>(after - axis.begin() - 1);
}

} // namespace

int addIndexEntries(AVStream *stream, int index, std::vector<PacketEntry> &entries)
{
    const int count = avformat_index_get_entries_count(stream);
    for (int n = 0; n < count; ++n) {
        const AVIndexEntry *entry = avformat_index_get_entry(stream, n);
        entries.push_back({index, entry->timestamp, toMicroseconds(entry->timestamp, stream->time_base), entry->size,
                           (entry->flags & AVINDEX_KEYFRAME) != 0});
    }
    return count;
}

SizePlan planBySize(const std::vector<PacketEntry> &entries, int videoStream, int64_t maxBytes, int maxPieces,
                    int streamCount, const ContainerCosts &costs)
{
    const KeyFrames keys = keyFramesOf(entries, videoStream);
    const std::size_t intervals = keys.timestamps.size();
    std::vector<int64_t> cost(intervals, 0);
    for (const PacketEntry &entry : entries)
        cost[intervalOf(entry, keys, videoStream)] += costs.packetCost(entry.size);

    const int64_t header = costs.headerBytes + costs.headerBytesPerStream * streamCount;
    SizePlan plan;
    std::size_t first = 0;
    while (first < intervals) {
        if (maxPieces > 0 && static_cast<int>(plan.pieces.size()) == maxPieces) {
            plan.droppedFromUs = keys.micros[first];
            break;
        }
        std::size_t next = first;
        int64_t bytes = header;
        do {
            bytes += cost[next++];
        } while (next < intervals && bytes + cost[next] <= maxBytes);

        PiecePlan piece;
        if (first > 0) {
            piece.startTs = keys.timestamps[first];
            piece.startUs = keys.micros[first];
        }
        if (next < intervals) {
            piece.endTs = keys.timestamps[next];
            piece.endUs = keys.micros[next];
        }
        piece.plannedBytes = bytes;
        plan.pieces.push_back(piece);
        first = next;
    }
    return plan;
}

PiecePlan planByTime(const std::vector<PacketEntry> &entries, int videoStream, int64_t startUs, int64_t endUs,
                     int64_t endTs)
{
    const KeyFrames keys = keyFramesOf(entries, videoStream);
    int64_t lastVideoUs = PiecePlan::kOpenStart;
    for (const PacketEntry &entry : entries) {
        if (entry.stream == videoStream)
            lastVideoUs = std::max(lastVideoUs, entry.timeUs);
    }
    if (startUs > lastVideoUs)
        throw ToolError("the range starts at " + clockText(startUs / 1e6) + ", after the video's last frame at "
                        + clockText(lastVideoUs / 1e6));
    // A millisecond of slack: a key frame at 10.0399999 s counts as 10.04 s.
    const auto after = std::upper_bound(keys.micros.begin(), keys.micros.end(), startUs + 1000);
    const std::size_t key = after == keys.micros.begin() ? 0 : static_cast<std::size_t>(after - keys.micros.begin() - 1);

    PiecePlan piece;
    piece.startTs = keys.timestamps[key];
    piece.startUs = keys.micros[key];
    piece.endTs = endTs;
    piece.endUs = endUs;
    return piece;
}

} // namespace mediatool
