#pragma once

#include "Mp4BoxCommand.h"

namespace mediatool {

// -splitx START:END FILE   one piece from the key frame at or before START
//                          up to END (seconds), named FILE_START_END.mp4
// -splits KB FILE          pieces of at most KB kilobytes (1000 bytes), each
//                          starting at a key frame: FILE_001.mp4, ...
// The pieces lie beside FILE; every stream is copied.
int runMp4Split(const Mp4BoxCommand &command);

} // namespace mediatool
