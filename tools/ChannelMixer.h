#pragma once

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <optional>
#include <string>
#include <vector>

namespace mediatool {

// MEncoder's "-af pan=n:L00:L01:...": n output channels; the gains are listed
// input by input, n values for each, so gains[i][j] is how much of input
// channel i goes into output channel j. Missing values are 0.
struct PanFilter
{
    int outputs = 0;
    std::vector<std::vector<double>> gains;
};

// Reads the value of -af. Only the pan filter is understood; any other
// filter is a UsageError.
std::optional<PanFilter> parseAudioFilters(const std::string &filters);

// MEncoder numbers the channels of its audio chain in its own order
// (5.1 is L R Ls Rs C LFE, not FFmpeg's L R C LFE Ls Rs); pan gains refer to
// that order. These are the FFmpeg channels at MEncoder's positions.
std::vector<AVChannel> mencoderChannelOrder(int channels);

// The layout used for `channels` channels in the audio chain and for the
// encoder (5.1 with side channels, quad, ...).
AVChannelLayout chainLayout(int channels);

// Index of `channel` in `layout`, treating side and back surrounds as the
// same speakers; -1 when the layout lacks it.
int channelIndexIn(const AVChannelLayout &layout, AVChannel channel);

// The full mixing matrix for swresample ([output][input], row stride =
// source channel count): the source is first brought to `decodedChannels`
// channels (a standard down- or up-mix, as MEncoder's -channels asks the
// decoder), then the pan gains apply in MEncoder's order, and the result is
// laid out for `target`. Without pan the decoded channels go to `target`.
std::vector<double> mixingMatrix(const AVChannelLayout &source, int decodedChannels, const PanFilter *pan,
                                 const AVChannelLayout &target);

} // namespace mediatool
