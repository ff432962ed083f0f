#include "OutputFile.h"

#include "ToolError.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace mediatool {
namespace {

constexpr int kBufferSize = 256 * 1024;

int writeCallback(void *opaque, uint8_t *data, int size)
{
    const int descriptor = *static_cast<int *>(opaque);
    int done = 0;
    while (done < size) {
        const ssize_t written = ::write(descriptor, data + done, static_cast<size_t>(size - done));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return AVERROR(errno);
        }
        done += static_cast<int>(written);
    }
    return size;
}

int64_t seekCallback(void *opaque, int64_t offset, int whence)
{
    const int descriptor = *static_cast<int *>(opaque);
    if (whence & AVSEEK_SIZE) {
        struct stat info {};
        return fstat(descriptor, &info) == 0 ? static_cast<int64_t>(info.st_size) : AVERROR(errno);
    }
    const off_t position = lseek(descriptor, offset, whence & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : static_cast<int64_t>(position);
}

mode_t creationMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

std::string randomSuffix()
{
    static std::mt19937 generator{std::random_device{}()};
    static const char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::string suffix;
    for (int i = 0; i < 6; ++i)
        suffix += letters[generator() % (sizeof letters - 1)];
    return suffix;
}

} // namespace

std::string folderOf(const std::string &path)
{
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string fileNameOf(const std::string &path)
{
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool isSameFile(const std::string &first, const std::string &second)
{
    struct stat a {}, b {};
    return stat(first.c_str(), &a) == 0 && stat(second.c_str(), &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

OutputFile OutputFile::forResult(const std::string &path)
{
    if (path.empty() || path.back() == '/')
        throw UsageError("the output name \"" + path + "\" names no file");
    struct stat info {};
    if (stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        throw ToolError(path + " is a folder, not an output file");
    OutputFile file;
    file.target = path;
    file.openIn(folderOf(path), true);
    return file;
}

OutputFile OutputFile::scratch(const std::string &folder)
{
    OutputFile file;
    file.target = folder + "/(unnamed)";
    file.openIn(folder, false);
    return file;
}

void OutputFile::openIn(const std::string &folder, bool keepNamed)
{
    const mode_t mode = creationMode();
    descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
    if (descriptor >= 0)
        return;
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)
        throw ToolError("cannot write into the folder " + folder + ": " + std::strerror(errno));
    // No unnamed files here: a hidden file beside the target stands in.
    std::string pattern = folder + "/." + fileNameOf(target) + ".XXXXXX.part";
    descriptor = mkostemps(pattern.data(), 5, O_CLOEXEC);
    if (descriptor < 0)
        throw ToolError("cannot write into the folder " + folder + ": " + std::strerror(errno));
    fchmod(descriptor, mode);
    if (keepNamed)
        namedTemporary = pattern;
    else
        ::unlink(pattern.c_str());
}

OutputFile::OutputFile(OutputFile &&other) noexcept
    : target(std::move(other.target)), namedTemporary(std::move(other.namedTemporary)), descriptor(other.descriptor),
      context(other.context), committed(other.committed)
{
    other.descriptor = -1;
    other.context = nullptr;
    other.namedTemporary.clear();
    other.committed = false;
    // The I/O context points at the descriptor field; follow the move.
    if (context)
        context->opaque = &descriptor;
}

OutputFile::~OutputFile()
{
    if (context) {
        av_freep(&context->buffer);
        avio_context_free(&context);
    }
    if (descriptor >= 0)
        ::close(descriptor);
    if (!committed && !namedTemporary.empty())
        ::unlink(namedTemporary.c_str());
}

AVIOContext *OutputFile::io()
{
    if (!context) {
        auto *buffer = static_cast<unsigned char *>(av_malloc(kBufferSize));
        if (buffer)
            context = avio_alloc_context(buffer, kBufferSize, 1, &descriptor, nullptr, writeCallback, seekCallback);
        if (!context) {
            av_free(buffer);
            throw ToolError("out of memory");
        }
    }
    return context;
}

void OutputFile::flush()
{
    if (!context)
        return;
    avio_flush(context);
    if (context->error < 0)
        throw ToolError("cannot write " + target + ": " + avErrorText(context->error));
}

int64_t OutputFile::size()
{
    flush();
    struct stat info {};
    return fstat(descriptor, &info) == 0 ? static_cast<int64_t>(info.st_size) : 0;
}

void OutputFile::publishUnnamed()
{
    // A link can only be made under a free name; the rename then replaces
    // any older file in one step.
    const std::string procName = "/proc/self/fd/" + std::to_string(descriptor);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string linkName = target + "." + randomSuffix() + ".part";
        int linked = linkat(AT_FDCWD, procName.c_str(), AT_FDCWD, linkName.c_str(), AT_SYMLINK_FOLLOW);
        if (linked != 0 && errno != EEXIST)
            linked = linkat(descriptor, "", AT_FDCWD, linkName.c_str(), AT_EMPTY_PATH);
        if (linked != 0) {
            if (errno == EEXIST)
                continue;
            throw ToolError("cannot give " + target + " its name: " + std::strerror(errno));
        }
        if (::rename(linkName.c_str(), target.c_str()) != 0) {
            const int error = errno;
            ::unlink(linkName.c_str());
            throw ToolError("cannot give " + target + " its name: " + std::strerror(error));
        }
        return;
    }
    throw ToolError("cannot find a free name beside " + target);
}

void OutputFile::commit()
{
    flush();
    if (namedTemporary.empty()) {
        publishUnnamed();
    } else if (::rename(namedTemporary.c_str(), target.c_str()) != 0) {
        throw ToolError("cannot give " + target + " its name: " + std::strerror(errno));
    }
    committed = true;
}

void OutputFile::withdraw() noexcept
{
    if (committed)
        ::unlink(target.c_str());
    committed = false;
}

std::string OutputFile::nameForReading() const
{
    return namedTemporary.empty() ? "/proc/self/fd/" + std::to_string(descriptor) : namedTemporary;
}

std::string OutputFile::handOverAcrossExec()
{
    flush();
    const int flags = fcntl(descriptor, F_GETFD);
    if (flags < 0 || fcntl(descriptor, F_SETFD, flags & ~FD_CLOEXEC) != 0)
        throw ToolError(std::string("cannot pass the encoded audio on: ") + std::strerror(errno));
    lseek(descriptor, 0, SEEK_SET);
    return "/proc/self/fd/" + std::to_string(descriptor);
}

} // namespace mediatool
