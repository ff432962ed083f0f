#include "ChannelMixer.h"

#include "ToolError.h"

extern "C" {
#include <libswresample/swresample.h>
}

#include <cmath>
#include <cstdlib>

namespace mediatool {
namespace {

using Matrix = std::vector<std::vector<double>>; // [row][column]

Matrix zeros(std::size_t rows, std::size_t columns)
{
    return Matrix(rows, std::vector<double>(columns, 0.0));
}

Matrix multiply(const Matrix &left, const Matrix &right)
{
    Matrix product = zeros(left.size(), right.empty() ? 0 : right[0].size());
    for (std::size_t r = 0; r < left.size(); ++r)
        for (std::size_t k = 0; k < right.size(); ++k)
            for (std::size_t c = 0; c < right[k].size(); ++c)
                product[r][c] += left[r][k] * right[k][c];
    return product;
}

AVChannelLayout orderedSource(const AVChannelLayout &source)
{
    AVChannelLayout layout{};
    if (source.order == AV_CHANNEL_ORDER_NATIVE)
        av_channel_layout_copy(&layout, &source);
    else
        layout = chainLayout(source.nb_channels);
    return layout;
}

// decoded[m][s]: the source brought to the chain layout of `channels`.
Matrix decodeMatrix(const AVChannelLayout &source, int channels)
{
    AVChannelLayout from = orderedSource(source);
    AVChannelLayout to = chainLayout(channels);
    Matrix result = zeros(static_cast<std::size_t>(channels), static_cast<std::size_t>(from.nb_channels));
    if (av_channel_layout_compare(&from, &to) == 0) {
        for (int i = 0; i < channels; ++i)
            result[i][i] = 1.0;
    } else {
        // libswresample scales a full 64 x 64 matrix whatever the layouts,
        // so it gets one, with rows 64 apart.
        constexpr int kFullSize = 64;
        std::vector<double> full(kFullSize * kFullSize, 0.0);
        const int built = swr_build_matrix2(&from, &to, M_SQRT1_2, M_SQRT1_2, 0.0, 1.0, 1.0, full.data(), kFullSize,
                                            AV_MATRIX_ENCODING_NONE, nullptr);
        checkAv(built, "cannot mix the source's channels");
        for (int r = 0; r < channels; ++r)
            for (int c = 0; c < from.nb_channels; ++c)
                result[r][c] = full[static_cast<std::size_t>(r * kFullSize + c)];
    }
    av_channel_layout_uninit(&from);
    av_channel_layout_uninit(&to);
    return result;
}

// placement[t][p]: position p of `order` lands on channel t of `layout`.
Matrix placementMatrix(const std::vector<AVChannel> &order, const AVChannelLayout &layout)
{
    Matrix result = zeros(static_cast<std::size_t>(layout.nb_channels), order.size());
    for (std::size_t p = 0; p < order.size(); ++p) {
        const int target = channelIndexIn(layout, order[p]);
        if (target >= 0)
            result[static_cast<std::size_t>(target)][p] = 1.0;
    }
    return result;
}

Matrix transpose(const Matrix &matrix)
{
    Matrix result = zeros(matrix.empty() ? 0 : matrix[0].size(), matrix.size());
    for (std::size_t r = 0; r < matrix.size(); ++r)
        for (std::size_t c = 0; c < matrix[r].size(); ++c)
            result[c][r] = matrix[r][c];
    return result;
}

} // namespace

std::optional<PanFilter> parseAudioFilters(const std::string &filters)
{
    if (filters.rfind("pan=", 0) != 0 || filters.find(',') != std::string::npos)
        throw UsageError("the audio filter \"" + filters + "\" is not supported here; only pan=n:L00:L01:... is");
    std::vector<double> values;
    std::size_t begin = 4;
    while (begin <= filters.size()) {
        const std::size_t colon = filters.find(':', begin);
        const std::string part = filters.substr(begin, colon == std::string::npos ? std::string::npos : colon - begin);
        char *end = nullptr;
        const double value = std::strtod(part.c_str(), &end);
        if (part.empty() || *end != '\0' || !std::isfinite(value))
            throw UsageError("the pan filter \"" + filters + "\" holds \"" + part + "\", not a number");
        values.push_back(value);
        if (colon == std::string::npos)
            break;
        begin = colon + 1;
    }
    const int outputs = static_cast<int>(values.front());
    if (outputs < 1 || outputs > 8 || values.front() != outputs)
        throw UsageError("the pan filter \"" + filters + "\" asks for an output channel count out of 1 to 8");
    PanFilter pan;
    pan.outputs = outputs;
    const std::size_t gainCount = values.size() - 1;
    const std::size_t inputs = (gainCount + static_cast<std::size_t>(outputs) - 1) / static_cast<std::size_t>(outputs);
    pan.gains = zeros(inputs, static_cast<std::size_t>(outputs));
    for (std::size_t k = 0; k < gainCount; ++k)
        pan.gains[k / static_cast<std::size_t>(outputs)][k % static_cast<std::size_t>(outputs)] = values[k + 1];
    return pan;
}

std::vector<AVChannel> mencoderChannelOrder(int channels)
{
    switch (channels) {
    case 5:
        return {AV_CHAN_FRONT_LEFT, AV_CHAN_FRONT_RIGHT, AV_CHAN_SIDE_LEFT, AV_CHAN_SIDE_RIGHT, AV_CHAN_FRONT_CENTER};
    case 6:
        return {AV_CHAN_FRONT_LEFT, AV_CHAN_FRONT_RIGHT, AV_CHAN_SIDE_LEFT,
                AV_CHAN_SIDE_RIGHT, AV_CHAN_FRONT_CENTER, AV_CHAN_LOW_FREQUENCY};
    default: {
        AVChannelLayout layout = chainLayout(channels);
        std::vector<AVChannel> order;
        for (int i = 0; i < layout.nb_channels; ++i)
            order.push_back(av_channel_layout_channel_from_index(&layout, static_cast<unsigned>(i)));
        av_channel_layout_uninit(&layout);
        return order;
    }
    }
}

AVChannelLayout chainLayout(int channels)
{
    switch (channels) {
    case 4:
        return AV_CHANNEL_LAYOUT_QUAD;
    case 5:
        return AV_CHANNEL_LAYOUT_5POINT0;
    case 6:
        return AV_CHANNEL_LAYOUT_5POINT1;
    default: {
        AVChannelLayout layout{};
        av_channel_layout_default(&layout, channels);
        return layout;
    }
    }
}

int channelIndexIn(const AVChannelLayout &layout, AVChannel channel)
{
    int index = av_channel_layout_index_from_channel(&layout, channel);
    if (index >= 0)
        return index;
    const AVChannel twin = channel == AV_CHAN_SIDE_LEFT    ? AV_CHAN_BACK_LEFT
                           : channel == AV_CHAN_SIDE_RIGHT ? AV_CHAN_BACK_RIGHT
                           : channel == AV_CHAN_BACK_LEFT  ? AV_CHAN_SIDE_LEFT
                           : channel == AV_CHAN_BACK_RIGHT ? AV_CHAN_SIDE_RIGHT
                                                           : AV_CHAN_NONE;
    index = twin == AV_CHAN_NONE ? -1 : av_channel_layout_index_from_channel(&layout, twin);
    return index;
}

std::vector<double> mixingMatrix(const AVChannelLayout &source, int decodedChannels, const PanFilter *pan,
                                 const AVChannelLayout &target)
{
    const Matrix decoded = decodeMatrix(source, decodedChannels); // chain layout <- source
    AVChannelLayout chain = chainLayout(decodedChannels);
    Matrix mixed;
    if (pan) {
        // into MEncoder's order, pan there, then onto the target's channels
        const Matrix toOrder = transpose(placementMatrix(mencoderChannelOrder(decodedChannels), chain));
        Matrix gains = zeros(static_cast<std::size_t>(pan->outputs), static_cast<std::size_t>(decodedChannels));
        for (std::size_t i = 0; i < pan->gains.size() && i < static_cast<std::size_t>(decodedChannels); ++i)
            for (int j = 0; j < pan->outputs; ++j)
                gains[static_cast<std::size_t>(j)][i] = pan->gains[i][static_cast<std::size_t>(j)];
        const Matrix fromOrder = placementMatrix(mencoderChannelOrder(pan->outputs), target);
        mixed = multiply(fromOrder, multiply(gains, multiply(toOrder, decoded)));
    } else {
        std::vector<AVChannel> chainChannels;
        for (int i = 0; i < chain.nb_channels; ++i)
            chainChannels.push_back(av_channel_layout_channel_from_index(&chain, static_cast<unsigned>(i)));
        mixed = multiply(placementMatrix(chainChannels, target), decoded);
    }
    av_channel_layout_uninit(&chain);

    std::vector<double> flat;
    for (const auto &row : mixed)
        flat.insert(flat.end(), row.begin(), row.end());
    return flat;
}

} // namespace mediatool
