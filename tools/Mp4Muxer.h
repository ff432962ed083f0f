#pragma once

#include "Mp4BoxCommand.h"
#include "Mp4Writer.h"

namespace mediatool {

// Writes an MP4 from tracks of other files, by stream copy:
//   -add ... [-new] FILE       the added tracks, after FILE's own unless -new
//   -rem ID ... FILE           FILE without those tracks
//   [-isma] [-inter MS] FILE   FILE written again, its index in front
// A file changed in place is written beside itself and replaces the old one
// only when complete.
int runMp4Mux(const Mp4BoxCommand &command);

// The file-wide layout the options ask for.
Mp4Layout layoutOf(const Mp4BoxCommand &command);

// Throws a ToolError unless -tmp names a folder (nothing is written there:
// every output is made in its own folder).
void checkTemporaryFolder(const Mp4BoxCommand &command);

} // namespace mediatool
