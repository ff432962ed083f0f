#pragma once

#include <string>
#include <vector>

namespace mediatool {

// The mencoder (and mencodernew) front. Debian's MEncoder cannot encode
// audio with "-oac lavc" (no codec accepts its channel layout) nor with
// "-oac faac" (not built in). For those command lines the front encodes
// the audio itself with FFmpeg's encoders, honouring -channels, -af pan,
// -srate, the bit rate and -aid or -audiofile, then:
//   - with "-of rawaudio" it writes the elementary stream to -o and ends;
//   - otherwise it keeps the encoded audio in an unnamed file beside the
//     output and replaces itself (execv, same process number) by the real
//     MEncoder with "-audiofile /proc/self/fd/N -oac copy" instead of the
//     audio options. The unnamed file disappears when MEncoder ends.
// A command line that copies MPEG audio (-oac copy) that MEncoder would
// read through FFmpeg's demuxers (any container but an AVI read by its own
// reader) gets the same frames as a bare MPEG audio stream in such an
// unnamed file ("-audiofile /proc/self/fd/N -audio-demuxer audio"), which
// MEncoder copies right.
// Every other command line goes to the real MEncoder untouched.
int runMencoderFront(const std::string &name, const std::vector<std::string> &arguments);

} // namespace mediatool
