#pragma once

#include "Mp4BoxCommand.h"

#include <string>
#include <vector>

extern "C" {
#include <libavformat/avformat.h>
}

namespace mediatool {

// -cat A -cat B ... -new OUT: one MP4 holding the files one after the other.
// Without -new the files are added after OUT's own content. The files must
// have the same tracks, with the same codecs and coding parameters;
// otherwise the join is refused with "Bad Parameter", and so is a file
// holding tracks other than video, audio and subtitles (timecode, hint or
// chapter-text tracks): re-adding such a file to a new MP4 leaves those
// behind, and the copies then join.
int runMp4Join(const Mp4BoxCommand &command);

// Why `other` cannot be appended to `first`; empty when it can.
std::string joinMismatch(const AVFormatContext *first, const AVFormatContext *other);

} // namespace mediatool
