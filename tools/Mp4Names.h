#pragma once

#include "Mp4BoxCommand.h"

#include <string>

namespace mediatool {

// Names of the files MP4Box makes itself beside its input.
//
// Extracted tracks use the short name Kestrane predicts: the file name cut
// before the first "." followed by its lower-cased extension, so
// "clip.mkv.mp4" gives "clip.mkv" and "Movie.MP4" keeps its whole name.
//   -raw 2  ->  SHORT_track2.EXT
//   -srt 3  ->  SHORT_3_text.srt
std::string rawTrackName(const std::string &source, int trackId, const std::string &extension);
std::string srtTrackName(const std::string &source, int trackId);

// Pieces of a split take the name without its last extension:
//   -splits KB       ->  NAME_001.EXT, NAME_002.EXT, ...
//   -splitx 10:20    ->  NAME_10_20.EXT (whole seconds)
std::string sizePieceName(const std::string &source, int number);
std::string rangePieceName(const std::string &source, const SplitRange &range);

} // namespace mediatool
