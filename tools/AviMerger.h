#pragma once

#include <string>
#include <vector>

namespace mediatool {

// avimerge -i FILE.avi -p AUDIO [-p AUDIO]... -o OUT.avi: a copy of FILE.avi
// with the first audio stream of each AUDIO (MP3, AC-3, DTS, WAV, anything
// AVI can carry) added as one more audio stream, in the order given. Every stream is copied, none re-encoded;
// the added audio starts with the video.
int runAviMerge(const std::vector<std::string> &arguments);

} // namespace mediatool
