#pragma once

extern "C" {
#include <libavformat/avio.h>
}

#include <cstdint>
#include <string>

namespace mediatool {

// A file being written. It has no name until commit(), so a run that fails,
// is stopped by a signal or is killed outright leaves nothing behind: the
// data lives in an unnamed file (O_TMPFILE) in the target's own folder, on
// the same disk as the result. Where the file system has no unnamed files,
// a hidden ".NAME.XXXXXX.part" file beside the target stands in and is
// removed on every way out but SIGKILL.
class OutputFile
{
public:
    // A file that will appear under `path` when committed. Throws a ToolError
    // when the folder cannot be written.
    static OutputFile forResult(const std::string &path);
    // A scratch file in `folder` that never gets a name.
    static OutputFile scratch(const std::string &folder);

    OutputFile(OutputFile &&other) noexcept;
    OutputFile &operator=(OutputFile &&other) = delete;
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    const std::string &path() const { return target; }
    // A seekable I/O context over the file, owned by this object.
    AVIOContext *io();
    // Bytes in the file, after flushing what the I/O context buffers.
    int64_t size();
    // Flushes and gives the file its name, replacing an older file there.
    void commit();
    // Removes a committed file again, so a failed run takes back its pieces.
    void withdraw() noexcept;
    // A name under which this process can open the data again for reading
    // (the MP4 writer reads its own output to move the index to the front).
    std::string nameForReading() const;
    // Flushes, keeps the descriptor open across execv and answers the name
    // under which the process that replaces this one can open the data.
    std::string handOverAcrossExec();

private:
    OutputFile() = default;
    void openIn(const std::string &folder, bool keepNamed);
    void flush();
    void publishUnnamed();

    std::string target;
    std::string namedTemporary;
    int descriptor = -1;
    AVIOContext *context = nullptr;
    bool committed = false;
};

// The folder part of a path ("." for a bare name).
std::string folderOf(const std::string &path);
// The last component of a path.
std::string fileNameOf(const std::string &path);
// True when both name the same existing file (hard links included).
bool isSameFile(const std::string &first, const std::string &second);

} // namespace mediatool
