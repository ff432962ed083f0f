// Times avisplit and avimerge against ffmpeg doing the same stream copy on a
// 200 MB AVI made here. Prints the best of three runs of each; no verdicts.
//
//   bench_tools [FOLDER]    (default: a new folder under /tmp, removed after)

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

std::string resources()
{
    const char *folder = std::getenv("KESTRANE_RESOURCES");
    return folder && *folder ? folder : KESTRANE_BUILD_RESOURCES;
}

bool shell(const std::string &command)
{
    return std::system(("/bin/bash -c '" + command + "' >/dev/null 2>&1").c_str()) == 0;
}

double bestOfThree(const std::string &command, const std::string &cleanup)
{
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        shell(cleanup);
        const auto start = std::chrono::steady_clock::now();
        if (!shell(command)) {
            std::printf("failed: %s\n", command.c_str());
            return -1;
        }
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    shell(cleanup);
    return best;
}

void compare(const char *what, const std::string &standIn, const std::string &ffmpeg, const std::string &cleanup)
{
    const double ours = bestOfThree(standIn, cleanup);
    const double theirs = bestOfThree(ffmpeg, cleanup);
    std::printf("%-34s %8.2f s %8.2f s %7.2fx\n", what, ours, theirs, theirs > 0 ? ours / theirs : 0.0);
}

} // namespace

int main(int argc, char **argv)
{
    const bool ownFolder = argc < 2;
    std::string folder = ownFolder ? (fs::temp_directory_path() / "kestrane-bench-tools").string() : argv[1];
    fs::create_directories(folder);
    const std::string movie = folder + "/movie.avi";
    const std::string audio = folder + "/surround.ac3";
    const std::string tools = resources();

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
    std::printf("%-34s %10s %10s %8s\n", "", "stand-in", "ffmpeg", "ratio");

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
