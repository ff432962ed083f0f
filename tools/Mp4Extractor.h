#pragma once

#include "Mp4BoxCommand.h"

#include <string>

extern "C" {
#include <libavcodec/codec_id.h>
}

namespace mediatool {

// FILE -raw ID   track ID as a file of its own beside FILE, named
//                SHORT_trackID.EXT with the extension Kestrane gives the
//                codec: h264, avi (MPEG-4 video, in an AVI), aac (ADTS),
//                ac3, mp3, ...
// FILE -srt ID   a text subtitle track as SubRip, SHORT_ID_text.srt
int runMp4Extract(const Mp4BoxCommand &command);

// How a -raw extraction stores a codec: the file extension and the
// libavformat writer; empty when it cannot.
struct RawStorage
{
    std::string extension;
    std::string format;
};
RawStorage rawStorageFor(AVCodecID codec);

} // namespace mediatool
