#pragma once

#include <optional>
#include <string>

namespace mediatool {

// Seconds of "HH:MM:SS", "MM:SS" or "SS", each with an optional fraction
// after "." or "," (the subtitle form). Minutes and seconds may exceed 59,
// as typed. Empty when the text is not a time.
std::optional<double> secondsOfTimeText(const std::string &text);

struct TimeRange
{
    double start = 0;
    double end = 0;
};

// "START-END" as passed to -t. Throws a UsageError for a malformed range,
// an end not after the start, or a list of several ranges.
TimeRange parseTimeRange(const std::string &text);

} // namespace mediatool
