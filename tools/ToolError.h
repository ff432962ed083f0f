#pragma once

#include <stdexcept>
#include <string>

namespace mediatool {

// A failure the user must read: the program prints it on stderr and exits
// with `status`. Usage mistakes use status 2, everything else 1.
class ToolError : public std::runtime_error
{
public:
    explicit ToolError(const std::string &message, int status = 1)
        : std::runtime_error(message), exitStatus(status) {}
    int exitStatus;
};

class UsageError : public ToolError
{
public:
    explicit UsageError(const std::string &message) : ToolError(message, 2) {}
};

// FFmpeg's text for an error code.
std::string avErrorText(int code);

// Throws ToolError("what: reason") when an FFmpeg call returned an error.
int checkAv(int result, const std::string &what);
// The same without making a string on every call, for per-packet work.
inline int checkAv(int result, const char *what)
{
    return result < 0 ? checkAv(result, std::string(what)) : result;
}

} // namespace mediatool
