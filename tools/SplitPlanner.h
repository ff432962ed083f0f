#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

struct AVStream;

namespace mediatool {

// What the planner knows of one stored packet.
struct PacketEntry
{
    int stream = 0;
    int64_t timestamp = 0; // in its stream's time base (video cut points use these)
    int64_t timeUs = 0;
    int64_t size = 0;
    bool key = false;
};

// One output piece: main-video packets with timestamps in [startTs, endTs)
// and other packets whose middle lies in [startUs, endUs). The piece's
// timestamps are moved back by shiftUs (by startTs for the main video).
struct PiecePlan
{
    static constexpr int64_t kOpenStart = std::numeric_limits<int64_t>::min();
    static constexpr int64_t kOpenEnd = std::numeric_limits<int64_t>::max();

    std::string path;
    int64_t startTs = kOpenStart;
    int64_t endTs = kOpenEnd;
    int64_t startUs = kOpenStart;
    int64_t endUs = kOpenEnd;
    int64_t plannedBytes = 0;
};

// Adds the packets the demuxer's index lists for `stream` (number `index`
// of its file) to `entries`; answers how many it listed.
int addIndexEntries(AVStream *stream, int index, std::vector<PacketEntry> &entries);

// Estimated bytes a container spends on its headers and on one packet.
struct ContainerCosts
{
    int64_t headerBytes;
    int64_t headerBytesPerStream;
    int64_t (*packetCost)(int64_t size);
};

// An AVI packet carries a chunk header, padding and index entries.
constexpr int64_t aviPacketCost(int64_t size) { return size + 8 + (size & 1) + 24; }
constexpr ContainerCosts kAviCosts{16 * 1024, 8 * 1024, aviPacketCost};

struct SizePlan
{
    std::vector<PiecePlan> pieces;
    int64_t droppedFromUs = PiecePlan::kOpenEnd; // where an -H limit cut the rest off
};

// Groups the key-frame intervals of `videoStream` into pieces of at most
// `maxBytes` (a single longer interval becomes a piece of its own), at most
// `maxPieces` pieces (0: no limit).
SizePlan planBySize(const std::vector<PacketEntry> &entries, int videoStream, int64_t maxBytes, int maxPieces,
                    int streamCount, const ContainerCosts &costs = kAviCosts);

// The piece from the last key frame at or before startUs up to endUs (endTs
// is the same end in the video time base).
// Throws a ToolError when the range starts after the video ends.
PiecePlan planByTime(const std::vector<PacketEntry> &entries, int videoStream, int64_t startUs, int64_t endUs,
                     int64_t endTs);

} // namespace mediatool
