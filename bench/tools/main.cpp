// Times avisplit and avimerge against ffmpeg doing the same stream copy on a
// 200 MB AVI made here. Prints the best of three runs of each; no verdicts.
//
//   bench_tools [FOLDER]    (default: a new folder under /tmp, removed after)

#include "StandInTiming.h"

#include <cstdio>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using standintiming::compare;
using standintiming::shell;

int main(int argc, char **argv)
{
    const bool ownFolder = argc < 2;
    std::string folder = ownFolder ? (fs::temp_directory_path() / "kestrane-bench-tools").string() : argv[1];
    fs::create_directories(folder);
    const std::string movie = folder + "/movie.avi";
    const std::string audio = folder + "/surround.ac3";
    const std::string tools = standintiming::resources();

    std::printf("making a 200 MB AVI in %s ...\n", folder.c_str());
    std::fflush(stdout);
    if (!fs::exists(movie)
        && !shell("ffmpeg -nostdin -y -f lavfi -i testsrc2=size=640x360:rate=25 -f lavfi -i sine=f=440:r=48000 -t 100 "
                  "-c:v mpeg4 -vtag XVID -g 50 -b:v 16M -minrate 16M -maxrate 16M -bufsize 8M -c:a libmp3lame -b:a 192k "
                  + movie)) {
        std::printf("ffmpeg could not make the test file\n");
        return 1;
    }
    shell("ffmpeg -nostdin -y -f lavfi -i sine=f=300:r=48000 -t 100 -ac 6 -c:a ac3 -b:a 448k " + audio);
    std::printf("source: %.1f MB\n\n", fs::file_size(movie) / 1e6);
    standintiming::printHeader();

    const std::string out = folder + "/out";
    const std::string clean = "rm -f " + out + "*";
    compare("cut 00:00:20-00:01:20 (avisplit -t)",
            "\"" + tools + "/avisplit\" -i " + movie + " -t 00:00:20-00:01:20 -c -o " + out + ".avi",
            "ffmpeg -nostdin -y -ss 20 -i " + movie + " -t 60 -map 0 -c copy " + out + ".avi", clean);
    compare("pieces of 50 MB (avisplit -s)",
            "\"" + tools + "/avisplit\" -i " + movie + " -s 50 -H 0 -o " + out + ".avi",
            "ffmpeg -nostdin -y -i " + movie + " -map 0 -c copy " + out + ".avi", clean);
    compare("add AC-3 audio (avimerge)",
            "\"" + tools + "/avimerge\" -i " + movie + " -p " + audio + " -o " + out + ".avi",
            "ffmpeg -nostdin -y -i " + movie + " -i " + audio + " -map 0 -map 1:a -c copy " + out + ".avi", clean);
    std::printf("\n(the size split is compared with ffmpeg copying the whole file, the same bytes)\n");

    if (ownFolder)
        fs::remove_all(folder);
    return 0;
}
