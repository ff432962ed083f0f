#pragma once

#include "TimeRange.h"

#include <optional>
#include <string>
#include <vector>

namespace mediatool {

// avisplit: copies a time range of an AVI, or the whole AVI in pieces of a
// given size, into new AVI files. Every piece starts at a key frame of the
// video, no stream is re-encoded, the input is only read.
//
//   avisplit -i FILE -t START-END [-c] -o OUT    one file OUT
//   avisplit -i FILE -s MB [-H N] -o OUT         OUT-0000.avi, OUT-0001.avi, ...
//
// The pieces are named from OUT without a trailing ".avi", so "x.split.avi"
// gives x.split-0000.avi. A megabyte is 1,000,000 bytes; -H 0 means no limit.
struct SplitRequest
{
    std::string input;
    std::string output;
    std::optional<TimeRange> range;
    double megabytes = 0;
    int maxPieces = 0;
};

SplitRequest parseSplitArguments(const std::vector<std::string> &arguments);

// The name of piece `index` for the -o name `base`.
std::string pieceName(const std::string &base, int index);

int runAviSplit(const std::vector<std::string> &arguments);

} // namespace mediatool
