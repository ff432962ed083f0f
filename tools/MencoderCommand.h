#pragma once

#include "ChannelMixer.h"

#include <optional>
#include <string>
#include <vector>

namespace mediatool {

// An MEncoder command line as far as the audio front needs it.
struct MencoderCommand
{
    std::vector<std::string> arguments; // as given
    std::string input;                  // the first file name
    std::string output;                 // -o
    std::string outputFormat;           // -of
    std::string audioCodec;             // -oac
    std::string encoder;                // FFmpeg encoder for -oac lavc / faac
    int64_t bitRate = 0;                // bit/s
    int aacProfile = -99;               // FF_PROFILE_UNKNOWN
    int channels = 0;                   // -channels
    int sampleRate = 0;                 // -srate
    std::optional<PanFilter> pan;       // -af pan=...
    std::optional<int> audioId;         // -aid
    std::string audioFile;              // -audiofile
    bool noSound = false;               // -nosound

    // True when Debian's MEncoder cannot encode the audio asked for and the
    // front must do it.
    bool needsFront() const;
    bool wantsRawAudio() const { return outputFormat == "rawaudio"; }

    // The command for the real MEncoder, taking the encoded audio from
    // `encodedAudio` as is: every audio option is replaced by
    // "-audiofile encodedAudio -oac copy"; the video part of -lavcopts stays.
    std::vector<std::string> withEncodedAudio(const std::string &encodedAudio) const;
};

// The -oac value of a command line, found without judging other options.
std::string audioCodecOf(const std::vector<std::string> &arguments);

// Reads the whole command line. Throws a UsageError for options MEncoder
// does not know and for audio settings that cannot be honoured.
MencoderCommand parseMencoderCommand(const std::vector<std::string> &arguments);

} // namespace mediatool
