#include "MencoderCommand.h"

#include "ToolError.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <algorithm>
#include <cstdlib>
#include <set>

namespace mediatool {
namespace {

// MEncoder options that take a value, and those that do not; enough for
// every command Kestrane composes and the usual hand-written ones.
const std::set<std::string> kValueOptions = {
    "-o", "-of", "-oac", "-ovc", "-lavcopts", "-xvidencopts", "-x264encopts", "-lameopts", "-faacopts", "-twolameopts",
    "-vf", "-af", "-vf-add", "-af-add", "-vf-pre", "-af-pre", "-aid", "-vid", "-sid", "-alang", "-slang", "-audiofile",
    "-audiofile-cache", "-sub", "-font", "-subfont", "-subpos", "-subfont-text-scale", "-subfont-osd-scale",
    "-subfont-autoscale", "-subcp", "-subdelay", "-subfps", "-channels", "-srate", "-afm", "-vfm", "-ac", "-vc",
    "-ffourcc", "-passlogfile", "-ss", "-endpos", "-frames", "-ofps", "-fps", "-mc", "-delay", "-audio-delay",
    "-sws", "-demuxer", "-audio-demuxer", "-sub-demuxer", "-lavfopts", "-mpegopts", "-aspect", "-force-avi-aspect",
    "-info", "-ffactor", "-vobsub", "-vobsubid", "-dvd-device", "-cache", "-chapter", "-audio-preload",
    "-audio-density", "-skiplimit", "-autosync", "-sub-bg-alpha", "-sub-bg-color", "-spuaa", "-msglevel",
    "-vobsubout", "-vobsuboutindex", "-vobsuboutid", "-sb", "-sstep", "-dumpfile", "-profile", "-include",
    "-input", "-lavdopts", "-xvidopts", "-pp", "-autoq", "-stereo", "-dvdangle", "-edl", "-tskeepbroken",
};
const std::set<std::string> kFlagOptions = {
    "-idx", "-forceidx", "-noidx", "-utf8", "-unicode", "-noautoexpand", "-nosound", "-novideo", "-noskip", "-quiet",
    "-really-quiet", "-v", "-ni", "-nobps", "-nocache", "-ass", "-noass", "-flip", "-oldpts", "-correct-pts",
    "-nocorrect-pts", "-hr-edl-seek", "-noodml", "-encodedups", "-noencodedups", "-fixed-vo", "-nofontconfig",
    "-fontconfig", "-noautosub", "-nosub", "-overlapsub", "-forcedsubsonly", "-noconfig", "-extbased",
    "-noextbased", "-mixer-channel", "-rawaudio", "-rawvideo", "-nograyscale", "-grayscale",
};
// Options the encoded audio replaces (each with its value).
const std::set<std::string> kAudioOptions = {"-oac", "-faacopts", "-channels", "-srate", "-af", "-aid",
                                             "-audiofile", "-afm"};
const std::set<std::string> kLavcAudioKeys = {"acodec", "abitrate", "atag", "aglobal"};

struct SubOption
{
    std::string key;
    std::string value;
};

std::vector<SubOption> subOptionsOf(const std::string &text)
{
    std::vector<SubOption> options;
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const std::size_t colon = text.find(':', begin);
        const std::string part = text.substr(begin, colon == std::string::npos ? std::string::npos : colon - begin);
        if (!part.empty()) {
            const std::size_t equals = part.find('=');
            options.push_back({part.substr(0, equals), equals == std::string::npos ? "" : part.substr(equals + 1)});
        }
        if (colon == std::string::npos)
            break;
        begin = colon + 1;
    }
    return options;
}

long wholeNumber(const std::string &text, const std::string &what, long low, long high)
{
    char *end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || value < low || value > high)
        throw UsageError(what + " needs a whole number from " + std::to_string(low) + " to " + std::to_string(high)
                         + ", not \"" + text + "\"");
    return value;
}

void readLavcAudio(MencoderCommand &command, const std::string &value)
{
    for (const SubOption &option : subOptionsOf(value)) {
        if (option.key == "acodec")
            command.encoder = option.value;
        else if (option.key == "abitrate")
            command.bitRate = wholeNumber(option.value, "abitrate", 1, 100000) * 1000;
    }
}

void readFaac(MencoderCommand &command, const std::string &value)
{
    for (const SubOption &option : subOptionsOf(value)) {
        if (option.key == "br") {
            command.bitRate = wholeNumber(option.value, "br", 1, 100000) * 1000;
        } else if (option.key == "object") {
            const long object = wholeNumber(option.value, "object", 1, 4);
            if (object == 3)
                throw UsageError("the AAC object type 3 (SSR) cannot be encoded; use 1, 2 or 4");
            command.aacProfile = object == 1 ? FF_PROFILE_AAC_MAIN : object == 2 ? FF_PROFILE_AAC_LOW : FF_PROFILE_AAC_LTP;
        } else if (option.key == "mpeg") {
            wholeNumber(option.value, "mpeg", 2, 4); // the stream is written as MPEG-4 AAC either way
        } else if (option.key != "tns" && option.key != "raw" && option.key != "quality" && option.key != "cutoff") {
            throw UsageError("unknown -faacopts setting \"" + option.key + "\"");
        }
    }
}

std::string withoutAudioKeys(const std::string &value)
{
    std::string kept;
    for (const SubOption &option : subOptionsOf(value)) {
        if (kLavcAudioKeys.count(option.key))
            continue;
        if (!kept.empty())
            kept += ':';
        kept += option.key + (option.value.empty() ? "" : "=" + option.value);
    }
    return kept;
}

void readOption(MencoderCommand &command, const std::string &option, const std::string &value)
{
    if (option == "-o")
        command.output = value;
    else if (option == "-of")
        command.outputFormat = value;
    else if (option == "-oac")
        command.audioCodec = value;
    else if (option == "-lavcopts")
        readLavcAudio(command, value);
    else if (option == "-faacopts")
        readFaac(command, value);
    else if (option == "-channels")
        command.channels = static_cast<int>(wholeNumber(value, "-channels", 1, 8));
    else if (option == "-srate")
        command.sampleRate = static_cast<int>(wholeNumber(value, "-srate", 1000, 384000));
    else if (option == "-af")
        command.pan = parseAudioFilters(value);
    else if (option == "-aid")
        command.audioId = static_cast<int>(wholeNumber(value, "-aid", 0, 8191));
    else if (option == "-audiofile")
        command.audioFile = value;
    else if (option == "-demuxer")
        command.demuxer = value;
}

} // namespace

std::string optionValueOf(const std::vector<std::string> &arguments, const std::string &option)
{
    std::string value;
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == option)
            value = arguments[i + 1];
    }
    return value;
}

bool MencoderCommand::needsFront() const
{
    return !noSound && (audioCodec == "lavc" || audioCodec == "faac");
}

MencoderCommand parseMencoderCommand(const std::vector<std::string> &arguments)
{
    MencoderCommand command;
    command.arguments = arguments;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument.size() < 2 || argument[0] != '-') {
            if (command.input.empty())
                command.input = argument;
            continue;
        }
        if (kFlagOptions.count(argument)) {
            command.noSound = command.noSound || argument == "-nosound";
            continue;
        }
        if (!kValueOptions.count(argument))
            throw UsageError("unknown option \"" + argument + "\"");
        if (i + 1 >= arguments.size())
            throw UsageError(argument + " needs a value");
        readOption(command, argument, arguments[++i]);
    }
    if (command.audioCodec == "lavc" && command.encoder.empty())
        command.encoder = "mp2"; // MEncoder's default
    if (command.audioCodec == "lavc" && command.bitRate == 0)
        command.bitRate = 224000;
    if (command.audioCodec == "faac")
        command.encoder = "aac";
    return command;
}

std::vector<std::string> MencoderCommand::withEncodedAudio(const std::string &encodedAudio,
                                                          const std::vector<std::string> &readerOptions) const
{
    std::vector<std::string> result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        const bool hasValue = kValueOptions.count(argument) && i + 1 < arguments.size();
        if (hasValue && kAudioOptions.count(argument)) {
            ++i;
            continue;
        }
        if (hasValue && argument == "-lavcopts") {
            const std::string videoPart = withoutAudioKeys(arguments[++i]);
            if (!videoPart.empty()) {
                result.push_back(argument);
                result.push_back(videoPart);
            }
            continue;
        }
        result.push_back(argument);
        if (hasValue)
            result.push_back(arguments[++i]);
    }
    for (const char *extra : {"-audiofile", encodedAudio.c_str(), "-oac", "copy"})
        result.emplace_back(extra);
    result.insert(result.end(), readerOptions.begin(), readerOptions.end());
    return result;
}

} // namespace mediatool
