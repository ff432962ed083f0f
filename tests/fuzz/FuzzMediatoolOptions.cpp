// Fuzz target for the media tool's command lines: the input's lines are the
// arguments of avisplit, of the MEncoder front and of the MP4Box stand-in
// (chosen by the first byte). A bad command line must end in a usage or
// tool error, never in a crash.
#include "AviSplitter.h"
#include "MencoderCommand.h"
#include "Mp4BoxCommand.h"
#include "ToolError.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1 || size > 4096)
        return 0;
    std::vector<std::string> arguments(1);
    for (size_t i = 1; i < size; ++i) {
        if (data[i] == '\n')
            arguments.emplace_back();
        else
            arguments.back() += char(data[i]);
    }
    // Names ending in ".mp4" or ".avi" count as files, so imports are read on.
    const mediatool::FileTest isFile = [](const std::string &name) {
        return name.size() > 4 && (name.ends_with(".mp4") || name.ends_with(".avi"));
    };
    try {
        switch (data[0] % 3) {
        case 0:
            (void)mediatool::parseSplitArguments(arguments);
            break;
        case 1:
            (void)mediatool::parseMencoderCommand(arguments);
            break;
        default:
            (void)mediatool::parseMp4BoxCommand(arguments, isFile);
            break;
        }
    } catch (const mediatool::ToolError &) {
    }
    return 0;
}
