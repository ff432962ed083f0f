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

// Splits a command line as /bin/sh would after Kestrane joined its options:
// words at blanks, quotes removed, an empty element gone.
std::vector<std::string> shellWords(const std::string &line)
{
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    char quote = 0;
    for (const char c : line) {
        if (quote) {
            if (c == quote)
                quote = 0;
            else
                word += c;
        } else if (c == '"' || c == '\'') {
            quote = c;
            inWord = true;
        } else if (c == ' ') {
            if (inWord)
                words.push_back(word);
            word.clear();
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord)
        words.push_back(word);
    return words;
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

TEST(Mp4BoxCommandTest, MuxLineOfTheMuxingStepReadsEveryTrackAsComposed)
{
    // Titles arrive single-quoted and joined to the rest of the word; the
    // shell leaves "Commentary: Director" whole, colon and blank included.
    const std::string line =
        R"(-add "/save/clip.mkv.v1.h264":lang=en:name='Video Track' )"
        R"(-add "/save/clip.mkv.temp.Audio.t1.aac":lang=de:name='Main':group=1 )"
        R"(-add "/save/clip.mkv.temp.Audio.t2.ac3":lang=un:name='Commentary: Director':group=1:disable )"
        R"(-add "/save/dumpsub.srt":name='Subtitle Track' -par 1=1185:1000 -keepall -new  -fps 23.976 -isma -inter 500 )"
        R"(-tmp "/Volumes/Disk/Out" "/save/clip.mkv.m4v")";
    const auto command = parseMp4BoxCommand(
        shellWords(line), filesAre({"/save/clip.mkv.v1.h264", "/save/clip.mkv.temp.Audio.t1.aac",
                                    "/save/clip.mkv.temp.Audio.t2.ac3", "/save/dumpsub.srt"}));

    EXPECT_EQ(command.operation, Mp4Operation::Import);
    EXPECT_EQ(command.file, "/save/clip.mkv.m4v");
    ASSERT_EQ(command.imports.size(), 4u);
    EXPECT_EQ(command.imports[0].language, "eng");
    EXPECT_EQ(command.imports[0].title, "Video Track");
    EXPECT_EQ(command.imports[1].language, "deu");
    EXPECT_EQ(command.imports[1].group, 1);
    EXPECT_FALSE(command.imports[1].disabled);
    EXPECT_EQ(command.imports[2].language, "und");
    EXPECT_EQ(command.imports[2].title, "Commentary: Director");
    EXPECT_TRUE(command.imports[2].disabled);
    EXPECT_EQ(command.imports[3].language, "");
    EXPECT_EQ(command.imports[3].trackId, 0);
    ASSERT_EQ(command.trackAspects.size(), 1u);
    EXPECT_EQ(command.trackAspects[0].first, 1);
    EXPECT_EQ(command.trackAspects[0].second, (Ratio{1185, 1000}));
    EXPECT_EQ(command.frameRate, (Ratio{24000, 1001}));
    EXPECT_TRUE(command.createNew && command.keepAll && command.isma);
    EXPECT_EQ(command.interleaveMs, 500);
    EXPECT_EQ(command.temporaryFolder, "/Volumes/Disk/Out");
}

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

TEST(Mp4BoxCommandTest, BadTrackOptionsAndMissingFilesAreNamed)
{
    const auto files = filesAre({"/v/a.aac"});
    const struct
    {
        std::string importText;
        std::string message;
    } cases[] = {
        {"/v/a.aac:delay=200", "unknown track option \"delay=200\""},
        {"/v/a.aac:lang=qq", "\"qq\" is not a language code"},
        {"/v/a.aac#0", "whole number above 0"},
        {"/v/a.aac:par=4", "ratio N:D"},
        {"/v/a.aac:group=x", ":group needs a number"},
        {"/v/missing.aac:lang=en:name=X", "cannot open /v/missing.aac: no such file"},
    };
    for (const auto &bad : cases) {
        try {
            parseTrackImport(bad.importText, files);
            ADD_FAILURE() << bad.importText << " was accepted";
        } catch (const ToolError &error) {
            EXPECT_NE(std::string(error.what()).find(bad.message), std::string::npos) << error.what();
        }
    }
}

TEST(Mp4BoxCommandTest, EditingAndExtractionLinesChooseTheirOperation)
{
    const auto none = filesAre({});
    const auto removal = parseMp4BoxCommand(shellWords(R"(-rem 2 -rem 3 -isma -inter 500 "/s/m.mp4.deletedtrack.mp4")"), none);
    EXPECT_EQ(removal.operation, Mp4Operation::Remove);
    EXPECT_EQ(removal.removedTracks, (std::vector<int>{2, 3}));

    const auto join = parseMp4BoxCommand(shellWords(R"(-cat "/a.mp4" -cat "/b.mp4" -isma -inter 500 -new "/s/a.mp4.joined.mp4")"), none);
    EXPECT_EQ(join.operation, Mp4Operation::Join);
    EXPECT_EQ(join.joined, (std::vector<std::string>{"/a.mp4", "/b.mp4"}));

    const auto byTime = parseMp4BoxCommand(shellWords(R"(-splitx 10.5:20 -isma -inter 500 "/m.mp4")"), none);
    EXPECT_EQ(byTime.operation, Mp4Operation::Split);
    EXPECT_DOUBLE_EQ(byTime.splitRange->start, 10.5);
    EXPECT_EQ(parseMp4BoxCommand(shellWords("-splits 700000 -isma -inter 500 /m.mp4"), none).splitKilobytes, 700000);

    // Extraction names its input first.
    const auto extraction = parseMp4BoxCommand(shellWords(R"("/m.mp4" -srt 3)"), none);
    EXPECT_EQ(extraction.operation, Mp4Operation::Extract);
    EXPECT_EQ(extraction.file, "/m.mp4");
    EXPECT_TRUE(extraction.extractions.at(0).asSrt);

    const auto toFront = parseMp4BoxCommand(shellWords(R"(-isma -inter 500 "/s/m.mp4")"), none);
    EXPECT_EQ(toFront.operation, Mp4Operation::Rewrite);
}

TEST(Mp4BoxCommandTest, LinesOutsideWhatKestraneComposesAreRefused)
{
    const auto files = filesAre({"/a.aac"});
    const struct
    {
        std::string line;
        std::string message;
    } cases[] = {
        {"-add /a.aac -hint -new /o.mp4", "unknown option \"-hint\""},
        {"-add /a.aac -cat /b.mp4 /o.mp4", "-add and -cat cannot be combined"},
        {"-cat /a.mp4 -cat /b.mp4 -fps 25 -new /o.mp4", "-fps does not go with -cat"},
        {"-splitx 20:10 /m.mp4", "ends before it starts"},
        {"-splitx 10:20 -splits 100 /m.mp4", "not both"},
        {"-add /a.aac -new", "no file named"},
        {"-add /a.aac /o.mp4 /p.mp4", "two files named"},
        {"-rem", "-rem needs a value"},
        {"/m.mp4", "nothing to do"},
        {"-cat /a.mp4 -new /o.mp4", "two files to join"},
        {"/m.mp4 -raw 1 -new", "-new does not go with -raw or -srt"},
        {"-add /a.aac -fps fast -new /o.mp4", "-fps needs a frame rate"},
    };
    for (const auto &bad : cases) {
        try {
            parseMp4BoxCommand(shellWords(bad.line), files);
            ADD_FAILURE() << bad.line << " was accepted";
        } catch (const UsageError &error) {
            EXPECT_NE(std::string(error.what()).find(bad.message), std::string::npos) << bad.line << ": " << error.what();
        }
    }
}

TEST(Mp4BoxCommandTest, FrameRatesAndLanguages)
{
    EXPECT_EQ(frameRateOf("29.97"), (Ratio{30000, 1001}));
    EXPECT_EQ(frameRateOf("59.940"), (Ratio{60000, 1001}));
    EXPECT_EQ(frameRateOf("25"), (Ratio{25, 1}));
    EXPECT_EQ(frameRateOf("12.5"), (Ratio{25, 2}));
    // Kestrane's empty values: the file's own rate is used.
    EXPECT_FALSE(frameRateOf("none").has_value());
    EXPECT_FALSE(frameRateOf("0").has_value());
    EXPECT_THROW(frameRateOf("-5"), UsageError);

    EXPECT_EQ(isoLanguageCode("FR"), "fra");
    EXPECT_EQ(isoLanguageCode("sq"), "sqi");
    EXPECT_EQ(isoLanguageCode("bh"), "bih");
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
