#include "Mp4Names.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>

namespace mediatool {
namespace {

namespace fs = std::filesystem;

std::string besideSource(const std::string &source, const std::string &name)
{
    return (fs::path(source).parent_path() / name).string();
}

std::string lowerExtension(const fs::path &path)
{
    std::string extension = path.extension().string();
    if (!extension.empty())
        extension.erase(0, 1);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

std::string shortName(const std::string &source)
{
    const fs::path path(source);
    const std::string name = path.filename().string();
    const std::string extension = lowerExtension(path);
    if (extension.empty())
        return name;
    const auto at = name.find("." + extension);
    return at == std::string::npos ? name : name.substr(0, at);
}

// The file name without its last extension, and that extension with its dot.
std::pair<std::string, std::string> stemAndExtension(const std::string &source)
{
    const fs::path name = fs::path(source).filename();
    return {name.stem().string(), name.extension().string()};
}

} // namespace

std::string rawTrackName(const std::string &source, int trackId, const std::string &extension)
{
    return besideSource(source, shortName(source) + "_track" + std::to_string(trackId) + "." + extension);
}

std::string srtTrackName(const std::string &source, int trackId)
{
    return besideSource(source, shortName(source) + "_" + std::to_string(trackId) + "_text.srt");
}

std::string sizePieceName(const std::string &source, int number)
{
    const auto [stem, extension] = stemAndExtension(source);
    char suffix[16];
    std::snprintf(suffix, sizeof suffix, "_%03d", number);
    return besideSource(source, stem + suffix + extension);
}

std::string rangePieceName(const std::string &source, const SplitRange &range)
{
    const auto [stem, extension] = stemAndExtension(source);
    const auto start = static_cast<long long>(range.start);
    const auto end = static_cast<long long>(range.end);
    return besideSource(source, stem + "_" + std::to_string(start) + "_" + std::to_string(end) + extension);
}

} // namespace mediatool
