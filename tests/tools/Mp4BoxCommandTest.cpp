#include "Mp4BoxCommand.h"
#include "Mp4Names.h"
#include "PresentationOrder.h"
#include "ToolError.h"

#include <gtest/gtest.h>

#include <set>

using namespace mediatool;

namespace {

FileTest filesAre(std::set<std::string> files)
{
    return [files = std::move(files)](const std::string &path) { return files.contains(path); };
}

std::vector<int> ranksOf(const std::vector<std::pair<int64_t, bool>> &frames, int window = 32)
{
    PresentationOrder order(window);
    std::vector<int> ranks;
    for (const auto &[count, idr] : frames) {
        order.add(count, idr);
        while (order.hasRank())
            ranks.push_back(static_cast<int>(order.takeRank()));
    }
    order.finish();
    while (order.hasRank())
        ranks.push_back(static_cast<int>(order.takeRank()));
    return ranks;
}

} // namespace

TEST(Mp4BoxCommandTest, FileNamesMayHoldColonsAndHashes)
{
    const auto files = filesAre({"/v/Part 1: Intro #2.mp4", "/v/x"});
    const TrackImport withTrack = parseTrackImport("/v/Part 1: Intro #2.mp4#3:name=A:B", files);
    EXPECT_EQ(withTrack.file, "/v/Part 1: Intro #2.mp4");
    EXPECT_EQ(withTrack.trackId, 3);
    EXPECT_EQ(withTrack.title, "A:B");

    // The PAR editor single-quotes the whole path; the ratio holds a colon.
    const TrackImport aspect = parseTrackImport("/v/Part 1: Intro #2.mp4:par=1212:1000", files);
    EXPECT_EQ(aspect.file, "/v/Part 1: Intro #2.mp4");
    EXPECT_EQ(aspect.pixelAspect, (Ratio{1212, 1000}));
    EXPECT_FALSE(aspect.title.has_value());

    EXPECT_EQ(parseTrackImport("/v/x:name=", files).title, "");
}

TEST(Mp4BoxCommandTest, FrameRatesAndLanguages)
{
    EXPECT_EQ(frameRateOf("29.97"), (Ratio{30000, 1001}));
    EXPECT_EQ(frameRateOf("12.5"), (Ratio{25, 2}));
    // Kestrane's empty values: the file's own rate is used.
    EXPECT_FALSE(frameRateOf("none").has_value());
    EXPECT_FALSE(frameRateOf("0").has_value());
    EXPECT_THROW(frameRateOf("-5"), UsageError);

    EXPECT_EQ(isoLanguageCode("FR"), "fra");
    EXPECT_EQ(isoLanguageCode("ger"), "ger");
    EXPECT_THROW(isoLanguageCode("e1"), UsageError);
}

TEST(Mp4BoxCommandTest, PresentationOrderFollowsPictureOrderCounts)
{
    // As x264 stores I P B b b with a B-pyramid (counts as the H.264 parser
    // reads them), then a new IDR sequence whose counts start again.
    const std::vector<std::pair<int64_t, bool>> frames{
        {0, true}, {8, false}, {4, false}, {2, false}, {6, false}, {16, false}, {12, false}, {10, false}, {14, false},
        {0, true}, {4, false}, {2, false}};
    EXPECT_EQ(ranksOf(frames), (std::vector<int>{0, 4, 2, 1, 3, 8, 6, 5, 7, 9, 11, 10}));
    // A small window gives the same answer while reordering stays inside it.
    EXPECT_EQ(ranksOf(frames, 3), ranksOf(frames));
    // Without B-frames display order is stored order.
    EXPECT_EQ(ranksOf({{0, true}, {2, false}, {4, false}, {0, true}, {2, false}}), (std::vector<int>{0, 1, 2, 3, 4}));
    // Open GOP: B-frames after a non-IDR I-frame are shown before it.
    EXPECT_EQ(ranksOf({{0, true}, {4, false}, {2, false}, {10, false}, {6, false}, {8, false}}),
              (std::vector<int>{0, 2, 1, 5, 3, 4}));
}
