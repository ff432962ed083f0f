// Times the MP4box stand-in against ffmpeg doing the same stream copy, on a
// 100-second 640x360 H.264 film with B-frames (about 150 MB) made here, and
// on its elementary streams. Both sides put the index in front, as -inter
// does. Prints the best of three runs of each; no verdicts.
//
//   bench_mp4box [FOLDER]    (default: a new folder under /tmp, removed after)

#include "StandInTiming.h"

#include <cstdio>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using standintiming::compare;
using standintiming::shell;

namespace {

bool makeMedia(const std::string &folder)
{
    const std::string film = folder + "/film.mp4";
    if (!fs::exists(film)
        && !shell("ffmpeg -nostdin -y -f lavfi -i testsrc2=size=640x360:rate=25 -f lavfi -i sine=f=440:r=48000 -t 100 "
                  "-vf noise=alls=24:allf=t -c:v libx264 -preset veryfast -bf 3 -g 50 -b:v 12M -maxrate 12M -bufsize 6M "
                  "-c:a aac -b:a 160k " + film))
        return false;
    return shell("ffmpeg -nostdin -y -i " + film + " -map 0:v -c copy -f h264 " + folder + "/clip.h264")
           && shell("ffmpeg -nostdin -y -i " + film + " -map 0:a -c copy -f adts " + folder + "/audio.aac")
           && shell("ffmpeg -nostdin -y -f lavfi -i sine=f=300:r=48000 -t 100 -ac 6 -c:a ac3 -b:a 448k " + folder
                    + "/surround.ac3")
           && shell("cp " + film + " " + folder + "/second.mp4")
           && shell("printf \"file %s\\nfile %s\\n\" " + film + " " + folder + "/second.mp4 > " + folder + "/list.txt");
}

} // namespace

int main(int argc, char **argv)
{
    const bool ownFolder = argc < 2;
    const std::string folder = ownFolder ? (fs::temp_directory_path() / "kestrane-bench-mp4box").string() : argv[1];
    fs::create_directories(folder);
    std::printf("making a 100-second H.264 film and its streams in %s ...\n", folder.c_str());
    std::fflush(stdout);
    if (!makeMedia(folder)) {
        std::printf("ffmpeg could not make the test files\n");
        return 1;
    }
    std::printf("film: %.1f MB\n\n", fs::file_size(folder + "/film.mp4") / 1e6);
    standintiming::printHeader();

    const std::string mp4box = "\"" + standintiming::resources() + "/mp4boxUpdated/MP4box\"";
    const std::string film = folder + "/film.mp4";
    const std::string out = folder + "/out";
    const std::string work = folder + "/work.mp4";
    const std::string clean = "rm -f " + out + "* " + folder + "/film_*";
    const std::string fresh = clean + "; cp " + film + " " + work;
    const std::string ffmpeg = "ffmpeg -nostdin -y ";
    const std::string front = " -movflags +faststart ";

    compare("mux raw H.264 + AAC + AC-3 (-add)",
            mp4box + " -add " + folder + "/clip.h264:lang=en:name=\"Video Track\" -add " + folder
                + "/audio.aac:lang=en:name=Stereo:group=1 -add " + folder
                + "/surround.ac3:lang=en:name=Surround:group=1:disable -keepall -new -fps 25 -isma -inter 500 " + out + ".m4v",
            ffmpeg + "-framerate 25 -i " + folder + "/clip.h264 -i " + folder + "/audio.aac -i " + folder
                + "/surround.ac3 -map 0 -map 1 -map 2 -c copy" + front + out + ".m4v",
            clean);
    compare("join two films (-cat)",
            mp4box + " -cat " + film + " -cat " + folder + "/second.mp4 -isma -inter 500 -new " + out + ".mp4",
            ffmpeg + "-f concat -safe 0 -i " + folder + "/list.txt -c copy" + front + out + ".mp4", clean);
    compare("cut 20 s to 80 s (-splitx)", mp4box + " -splitx 20:80 -isma -inter 500 " + film,
            ffmpeg + "-ss 20 -i " + film + " -t 60 -map 0 -c copy" + front + out + ".mp4", clean);
    compare("pieces of 50 MB (-splits)", mp4box + " -splits 50000 -isma -inter 500 " + film,
            ffmpeg + "-i " + film + " -map 0 -c copy" + front + out + ".mp4", clean);
    compare("extract the H.264 track (-raw)", mp4box + " " + film + " -raw 1",
            ffmpeg + "-i " + film + " -map 0:v -c copy -f h264 " + out + ".h264", clean);
    compare("remove the audio track (-rem)", mp4box + " -rem 2 -isma -inter 500 " + work,
            ffmpeg + "-i " + work + " -map 0:v -c copy" + front + out + ".mp4", fresh);
    compare("index to the front in place (-inter)", mp4box + " -isma -inter 500 " + work,
            ffmpeg + "-i " + work + " -map 0 -c copy" + front + out + ".mp4", fresh);
    std::printf("\n(the size split is compared with ffmpeg copying the whole film, the same bytes; ffmpeg's raw\n"
                "H.264 mux leaves B-frames without display times, which the stand-in works out)\n");

    shell(clean + "; rm -f " + work);
    if (ownFolder)
        fs::remove_all(folder);
    return 0;
}
