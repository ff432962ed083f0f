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
    std::string demuxer;                // -demuxer
    bool noSound = false;               // -nosound

    // True when Debian's MEncoder cannot encode the audio asked for and the
    // front must do it.
    bool needsFront() const;
    bool wantsRawAudio() const { return outputFormat == "rawaudio"; }
    // MEncoder reads the input through FFmpeg's demuxers (and numbers its
    // audio streams from 0 in file order).
    bool readsThroughLavf() const { return demuxer == "lavf"; }

    // The command for the real MEncoder, taking the encoded audio from
    // `encodedAudio` as is: every audio option is replaced by
    // "-audiofile encodedAudio -oac copy" and readerOptions; the video part
    // of -lavcopts stays.
    std::vector<std::string> withEncodedAudio(const std::string &encodedAudio,
                                              const std::vector<std::string> &readerOptions = {}) const;
};

// The value of an option in a command line (the last one given), found
// without judging other options; empty when it is not there.
std::string optionValueOf(const std::vector<std::string> &arguments, const std::string &option);

// Reads the whole command line. Throws a UsageError for options MEncoder
// does not know and for audio settings that cannot be honoured.
MencoderCommand parseMencoderCommand(const std::vector<std::string> &arguments);

} // namespace mediatool
