#include "PresentationOrder.h"

namespace mediatool {

void PresentationOrder::add(int64_t orderCount, bool startsSequence)
{
    if (startsSequence || sequence < 0)
        ++sequence;
    frames.push_back({sequence, orderCount});
}

bool PresentationOrder::hasRank() const
{
    const int64_t known = firstIndex + static_cast<int64_t>(frames.size());
    return nextIndex < known && (finished || known > nextIndex + window);
}

int64_t PresentationOrder::takeRank()
{
    const auto at = static_cast<std::size_t>(nextIndex - firstIndex);
    const Frame &frame = frames[at];
    // Every frame decoded earlier is shown earlier, and every later one
    // later, except those close by that the order count says otherwise of.
    int64_t rank = nextIndex;
    for (std::size_t i = 0; i < at; ++i)
        rank -= frame.before(frames[i]) ? 1 : 0;
    for (std::size_t i = at + 1; i < frames.size() && i <= at + static_cast<std::size_t>(window); ++i)
        rank += frames[i].before(frame) ? 1 : 0;
    ++nextIndex;
    while (nextIndex - firstIndex > window) {
        frames.pop_front();
        ++firstIndex;
    }
    return rank;
}

} // namespace mediatool
