#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mediatool {

struct Ratio
{
    int num = 0;
    int den = 1;
    bool operator==(const Ratio &other) const = default;
};

// One -add: a file, one of its tracks or all of them, and how the new
// tracks are labelled.
struct TrackImport
{
    std::string file;
    int trackId = 0;                  // "#ID"; 0 takes every track of the file
    std::string language;             // ISO 639-2 code; empty keeps the source's
    std::optional<std::string> title; // ":name="
    int group = 0;                    // ":group="; 0 when not given
    bool disabled = false;            // ":disable"
    std::optional<Ratio> pixelAspect; // ":par=N:D"
};

struct SplitRange
{
    double start = 0;
    double end = 0;
};

struct Extraction
{
    int trackId = 0;
    bool asSrt = false; // -srt, else -raw
};

enum class Mp4Operation { Import, Join, Split, Remove, Extract, Rewrite };

// An MP4Box command line as Kestrane composes it: the options and the one
// file it names (the output, or the input of -split and extractions).
struct Mp4BoxCommand
{
    Mp4Operation operation = Mp4Operation::Rewrite;
    std::string file;
    std::vector<TrackImport> imports;             // -add
    std::vector<std::string> joined;              // -cat
    std::vector<std::pair<int, Ratio>> trackAspects; // -par ID=N:D
    std::vector<int> removedTracks;               // -rem
    std::vector<Extraction> extractions;          // -raw, -srt
    std::optional<SplitRange> splitRange;         // -splitx
    int64_t splitKilobytes = 0;                   // -splits
    std::optional<Ratio> frameRate;               // -fps
    std::string temporaryFolder;                  // -tmp
    int interleaveMs = -1;                        // -inter; -1 when not given
    bool createNew = false;                       // -new
    bool keepAll = false;                         // -keepall
    bool ipod = false;                            // -ipod
    bool isma = false;                            // -isma
};

using FileTest = std::function<bool(const std::string &)>;

// Reads a whole command line. Throws a UsageError for an unknown option, a
// missing or malformed value, options of different jobs mixed, or no file.
Mp4BoxCommand parseMp4BoxCommand(const std::vector<std::string> &arguments, const FileTest &isFile);

// Reads one -add value, "FILE[#ID][:lang=CODE][:name=TITLE][:group=N][:disable][:par=N:D]"
// as it arrives after the shell has taken the quotes away. The file is the
// longest leading part that `isFile` accepts, so names holding ":" or "#"
// work; a title may hold ":" too. Throws a ToolError when no file is found.
TrackImport parseTrackImport(const std::string &importText, const FileTest &isFile);

// The ISO 639-2 code for a two- or three-letter language code ("en" gives
// "eng"). Throws a UsageError for a code no language has.
std::string isoLanguageCode(const std::string &code);

// The frame rate "-fps" means: NTSC rates typed as 23.976, 29.97 or 59.94
// become their exact fractions (24000/1001...). Empty for "none" and "0",
// which stand for an unknown rate. Throws a UsageError for anything else
// that is not a positive number.
std::optional<Ratio> frameRateOf(const std::string &text);

} // namespace mediatool
