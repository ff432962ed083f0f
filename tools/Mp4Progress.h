#pragma once

#include <string>

namespace mediatool {

// MP4Box's progress bar, one line per stage, redrawn after a carriage
// return: "Writing clip.mp4: |=========           | (45/100)". Kestrane
// reads the number after the last "| (" of the log's last line.
class Mp4Progress
{
public:
    explicit Mp4Progress(std::string title) : title(std::move(title)) {}
    Mp4Progress(const Mp4Progress &) = delete;
    Mp4Progress &operator=(const Mp4Progress &) = delete;

    // Shows `fraction` (0 to 1) when its whole percent has changed.
    void show(double fraction);
    // Shows 100 and ends the line.
    void finish();

private:
    std::string title;
    int shown = -1;
};

} // namespace mediatool
