#pragma once

#include <cstdint>
#include <deque>

namespace mediatool {

// Puts the frames of a video stream into display order when the stream
// carries no timestamps, only each frame's picture order count (raw H.264).
// Frames are added in decoding order; a frame's rank is its place in display
// order. Counts restart with every new sequence (an IDR picture); a frame is
// never displayed more than `window` frames away from where it is decoded.
class PresentationOrder
{
public:
    explicit PresentationOrder(int window = 32) : window(window) {}

    void add(int64_t orderCount, bool startsSequence);
    // No more frames: every rank is known now.
    void finish() { finished = true; }
    // True when the next frame's rank is known.
    bool hasRank() const;
    // The rank of the next frame in decoding order.
    int64_t takeRank();

private:
    struct Frame
    {
        int64_t sequence;
        int64_t orderCount;
        bool before(const Frame &other) const
        {
            return sequence != other.sequence ? sequence < other.sequence : orderCount < other.orderCount;
        }
    };

    int window;
    std::deque<Frame> frames; // from `window` frames before the next to rank
    int64_t firstIndex = 0;   // decoding index of frames.front()
    int64_t nextIndex = 0;    // decoding index of the next frame to rank
    int64_t sequence = -1;
    bool finished = false;
};

} // namespace mediatool
