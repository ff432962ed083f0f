#include "Mp4Progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace mediatool {

void Mp4Progress::show(double fraction)
{
    if (!std::isfinite(fraction))
        return;
    // 100 only comes with finish(): the file is not written until then.
    const int percent = std::clamp(static_cast<int>(fraction * 100), 0, 99);
    if (percent == shown)
        return;
    shown = percent;
    const int filled = percent / 5;
    // Never zero-padded: Kestrane takes "00" for no number at all.
    std::printf("%s: |%s%s| (%d/100)\r", title.c_str(), std::string(static_cast<size_t>(filled), '=').c_str(),
                std::string(static_cast<size_t>(20 - filled), ' ').c_str(), percent);
    std::fflush(stdout);
}

void Mp4Progress::finish()
{
    std::printf("%s: |====================| (100/100)\n", title.c_str());
    std::fflush(stdout);
}

} // namespace mediatool
