#pragma once

#include <string>
#include <vector>

namespace mediatool {

// The MP4Box stand-in: the command lines Kestrane composes for MP4Box
// (muxing, editing, extraction), carried out with FFmpeg's libraries. One
// process per command; every file it writes appears only when complete.
int runMp4Box(const std::vector<std::string> &arguments);

} // namespace mediatool
