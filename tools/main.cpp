// kestrane-mediatool: the stand-ins for avisplit, avimerge, MP4Box and
// MEncoder's missing audio encoders. The resource folder links each name to
// this program; it acts on the name it was started under, or on the name given
// as its first argument ("kestrane-mediatool avisplit -i ...").

#include "AviMerger.h"
#include "AviSplitter.h"
#include "Interruption.h"
#include "MencoderFront.h"
#include "Mp4Box.h"
#include "ToolError.h"

extern "C" {
#include <libavutil/log.h>
}

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <vector>

namespace {

std::string baseName(const char *path)
{
    const char *slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

bool isMp4BoxName(const std::string &name)
{
    return name == "MP4box" || name == "MP4Box" || name == "mp4box";
}

bool isToolName(const std::string &name)
{
    return name == "avisplit" || name == "avimerge" || name == "mencoder" || name == "mencodernew" || isMp4BoxName(name);
}

int runTool(const std::string &name, const std::vector<std::string> &arguments)
{
    if (name == "avisplit")
        return mediatool::runAviSplit(arguments);
    if (name == "avimerge")
        return mediatool::runAviMerge(arguments);
    if (isMp4BoxName(name))
        return mediatool::runMp4Box(arguments);
    return mediatool::runMencoderFront(name, arguments);
}

} // namespace

int main(int argc, char **argv)
{
    std::string name = argc > 0 ? baseName(argv[0]) : std::string();
    int first = 1;
    if (!isToolName(name) && argc > 1 && isToolName(argv[1])) {
        name = argv[1];
        first = 2;
    }
    if (!isToolName(name)) {
        std::fprintf(stderr, "kestrane-mediatool: run me as avisplit, avimerge, MP4box, mencoder or mencodernew,\n"
                             "or give one of those names first: kestrane-mediatool avisplit -i FILE ...\n");
        return 2;
    }
    const std::vector<std::string> arguments(argv + first, argv + argc);
    // Logs are read line by line while the tool runs.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    av_log_set_level(AV_LOG_ERROR);
    mediatool::installInterruptionHandlers();
    try {
        return runTool(name, arguments);
    } catch (const mediatool::ToolError &error) {
        std::fflush(stdout);
        std::fprintf(stderr, "%s: %s\n", name.c_str(), error.what());
        return error.exitStatus;
    } catch (const std::exception &error) {
        std::fflush(stdout);
        std::fprintf(stderr, "%s: %s\n", name.c_str(), error.what());
        return 1;
    }
}
