#include "TimeRange.h"

#include "ToolError.h"

#include <cctype>
#include <cstdlib>

namespace mediatool {
namespace {

std::optional<double> numberOf(const std::string &part, bool allowFraction)
{
    if (part.empty())
        return std::nullopt;
    bool separatorSeen = false;
    std::string plain;
    for (const char c : part) {
        if (std::isdigit(static_cast<unsigned char>(c))) {
            plain += c;
        } else if ((c == '.' || c == ',') && allowFraction && !separatorSeen) {
            separatorSeen = true;
            plain += '.';
        } else {
            return std::nullopt;
        }
    }
    if (plain == ".")
        return std::nullopt;
    return std::strtod(plain.c_str(), nullptr);
}

} // namespace

std::optional<double> secondsOfTimeText(const std::string &text)
{
    double total = 0;
    std::size_t begin = 0;
    int fields = 0;
    while (true) {
        const std::size_t colon = text.find(':', begin);
        const bool last = colon == std::string::npos;
        const auto value = numberOf(text.substr(begin, last ? std::string::npos : colon - begin), last);
        if (!value || ++fields > 3)
            return std::nullopt;
        total = total * 60 + *value;
        if (last)
            return total;
        begin = colon + 1;
    }
}

TimeRange parseTimeRange(const std::string &text)
{
    if (text.find(',') != std::string::npos && text.find('-') != text.rfind('-'))
        throw UsageError("-t takes one time range; \"" + text + "\" holds several");
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos)
        throw UsageError("-t needs a range START-END such as 00:10:00-00:20:00, not \"" + text + "\"");
    const auto start = secondsOfTimeText(text.substr(0, dash));
    const auto end = secondsOfTimeText(text.substr(dash + 1));
    if (!start || !end)
        throw UsageError("-t needs times as HH:MM:SS in \"" + text + "\"");
    if (*end <= *start)
        throw UsageError("the range " + text + " ends before it starts");
    return {*start, *end};
}

} // namespace mediatool
