#pragma once

#include "StreamWriter.h"

namespace mediatool {

// One AVI file written by stream copy, indexed by libavformat's AVI muxer.
class AviWriter : public StreamWriter
{
public:
    explicit AviWriter(const std::string &path) : StreamWriter(path, "avi") {}

    int addStreamLike(const AVStream *source) override;
};

} // namespace mediatool
