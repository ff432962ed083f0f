#include "Mp4Box.h"

#include "Mp4BoxCommand.h"
#include "Mp4Extractor.h"
#include "Mp4Joiner.h"
#include "Mp4Muxer.h"
#include "Mp4Splitter.h"

#include <sys/stat.h>

namespace mediatool {
namespace {

bool isRegularFile(const std::string &path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

} // namespace

int runMp4Box(const std::vector<std::string> &arguments)
{
    const Mp4BoxCommand command = parseMp4BoxCommand(arguments, isRegularFile);
    switch (command.operation) {
    case Mp4Operation::Join: return runMp4Join(command);
    case Mp4Operation::Split: return runMp4Split(command);
    case Mp4Operation::Extract: return runMp4Extract(command);
    case Mp4Operation::Import:
    case Mp4Operation::Remove:
    case Mp4Operation::Rewrite: break;
    }
    return runMp4Mux(command);
}

} // namespace mediatool
