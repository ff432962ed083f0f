#pragma once

extern "C" {
#include <libavformat/avformat.h>
}

namespace mediatool {

// Writes the packets of one stream of `input`, as they are, into `muxer`
// (a muxer whose pb is set): header, every packet, trailer.
void copyAudioStream(AVFormatContext *input, int stream, AVFormatContext *muxer);

} // namespace mediatool
