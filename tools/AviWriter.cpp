#include "AviWriter.h"

namespace mediatool {

int AviWriter::addStreamLike(const AVStream *source)
{
    const int index = StreamWriter::addStreamLike(source);
    // AVI keeps an MP3 or AC-3 stream's length in blocks; a block size taken
    // over from the source (1152 for VBR MP3) would make players read the
    // length wrong, so the muxer chooses it, as ffmpeg does when copying.
    const AVCodecID codec = source->codecpar->codec_id;
    const int blockAlign = source->codecpar->block_align;
    if ((codec == AV_CODEC_ID_MP3 && (blockAlign == 1 || blockAlign == 1152 || blockAlign == 576)) || codec == AV_CODEC_ID_AC3)
        stream(index)->codecpar->block_align = 0;
    return index;
}

} // namespace mediatool
