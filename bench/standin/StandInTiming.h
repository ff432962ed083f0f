#pragma once

// Timing of Kestrane's tool stand-ins against ffmpeg doing the same job:
// the best of three runs of each, printed side by side; no verdicts.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace standintiming {

// The resource folder the stand-ins are linked from.
inline std::string resources()
{
    const char *folder = std::getenv("KESTRANE_RESOURCES");
    return folder && *folder ? folder : KESTRANE_BUILD_RESOURCES;
}

// Runs a command through bash, its output discarded; true when it succeeded.
inline bool shell(const std::string &command)
{
    return std::system(("/bin/bash -c '" + command + "' >/dev/null 2>&1").c_str()) == 0;
}

// Seconds of the fastest of three runs; `cleanup` runs before each, and
// what earlier runs wrote reaches the disk before the clock starts.
inline double bestOfThree(const std::string &command, const std::string &cleanup)
{
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        shell(cleanup + "; sync");
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

inline void printHeader()
{
    std::printf("%-40s %10s %10s %8s\n", "", "stand-in", "ffmpeg", "ratio");
}

inline void compare(const char *what, const std::string &standIn, const std::string &ffmpeg, const std::string &cleanup)
{
    const double ours = bestOfThree(standIn, cleanup);
    const double theirs = bestOfThree(ffmpeg, cleanup);
    std::printf("%-40s %8.2f s %8.2f s %7.2fx\n", what, ours, theirs, theirs > 0 ? ours / theirs : 0.0);
    std::fflush(stdout);
}

} // namespace standintiming
