#include "MCMkvTabRules.h"
#include "RulesTestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

// A film on the "MKV" tab: German 5.1, English stereo and a subtitle unless
// other tracks are given.
struct MkvTab : OnTab
{
    explicit MkvTab(const QList<TrackShape> &tracks = {{"Video", "h264"}, {"Audio", "ac3", "6", "German"}, {"Audio", "aac", "2"}, {"Subtitle", "srt"}},
                    const char *extension = "mkv")
        : OnTab(MCSelectionController::tabMkv, tracks, extension)
    {
    }

    MCMkvTabRules &tab() { return *rules.mkvTab(); }
    void choose(int audioTrack) { rules.setAudioTrackPopupIndex(audioTrack); }
    void row(int audioRow)
    {
        tab().setAudioMatrixIndex(audioRow);
        rules.updateTabs();
    }
};

TEST(MCMkvTabRulesTest, EachAudioTrackKeepsItsOwnChoiceAndTheRowsFollowTheChooser)
{
    MkvTab t;
    ASSERT_TRUE(t.rules.canConvert) << t.why().toStdString();
    EXPECT_EQ(t.record().jobType, QStringLiteral("MKV Conversion"));
    t.row(MCMkvTabRules::AudioAacStereo);
    EXPECT_EQ(t.track(1)->userCodec, QStringLiteral("aac"));
    EXPECT_EQ(t.track(1)->userBitRate, QStringLiteral("160"));
    EXPECT_EQ(t.track(2)->userCodec, QStringLiteral("passthru"));

    t.choose(1);
    EXPECT_EQ(t.tab().audioMatrixIndex(), MCMkvTabRules::AudioPassthru);
    t.row(MCMkvTabRules::AudioAacStereo);
    t.choose(0);
    EXPECT_EQ(t.tab().audioMatrixIndex(), MCMkvTabRules::AudioAacStereo);
    t.row(MCMkvTabRules::AudioAc351);
    EXPECT_EQ(t.track(1)->userCodec, QStringLiteral("ac3"));
    EXPECT_EQ(t.track(1)->userNumberOfChannels, QStringLiteral("6"));
    EXPECT_EQ(t.track(2)->userCodec, QStringLiteral("aac"));
}

TEST(MCMkvTabRulesTest, StereoCopyOnlyBesideATrackThatStaysMultichannel)
{
    MkvTab t;
    t.tab().setAddStereoTrack(true);
    t.rules.updateTabs();
    ASSERT_EQ(t.record().addedAudioTrackList.size(), 1);
    EXPECT_EQ(t.record().addedAudioTrackList.at(0)->trackLanguage, QStringLiteral("German"));

    // Mixing the track itself down makes the copy pointless: it goes.
    t.row(MCMkvTabRules::AudioAacStereo);
    EXPECT_FALSE(t.tab().addStereoTrack());
    EXPECT_TRUE(t.record().addedAudioTrackList.isEmpty());
    t.choose(1);
    EXPECT_FALSE(t.tab().canAddStereoTrack); // already stereo
}

TEST(MCMkvTabRulesTest, RefusesWhatCannotBecomeTheFileAsked)
{
    MkvTab t;
    t.choose(1);
    EXPECT_EQ(t.tab().surroundColor, QStringLiteral("red"));
    t.row(MCMkvTabRules::AudioAac51);
    EXPECT_FALSE(t.rules.canConvert);
    EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("AAC 5.1 needs a surround track"))) << t.why().toStdString();
    t.row(MCMkvTabRules::AudioAacStereo);
    EXPECT_TRUE(t.rules.canConvert);

    // MPEG-4 needs a usable bit rate and width.
    t.tab().setVideoMatrixIndex(MCMkvTabRules::VideoTwoPasses);
    t.rules.setEnteredUserVideoBitRate(QStringLiteral("fast"));
    EXPECT_FALSE(t.rules.canConvert);
    t.rules.setEnteredUserVideoBitRate(QStringLiteral("900"));
    EXPECT_EQ(t.track(0)->userCodec, QStringLiteral("mpeg4"));
    t.rules.setEnteredUserWidth(QStringLiteral("wide"));
    EXPECT_FALSE(t.rules.canConvert);

    MkvTab two({{"Video", "h264"}, {"Video", "h264"}, {"Audio", "aac", "2"}});
    EXPECT_FALSE(two.rules.canConvert);
    two.track(1)->trackSelected = false;
    two.rules.trackTableSelectionChanged();
    EXPECT_TRUE(two.rules.canConvert);
}

TEST(MCMkvTabRulesTest, TracksMkvmergeCannotCopyMustBeReEncoded)
{
    for (const char *extension : {"wmv", "VOB"}) {
        SCOPED_TRACE(extension);
        MkvTab t({{"Video", "mpeg2"}, {"Audio", "ac3", "6"}}, extension);
        EXPECT_FALSE(t.rules.canConvert);
        t.tab().setVideoMatrixIndex(MCMkvTabRules::VideoOnePass);
        t.row(MCMkvTabRules::AudioAc351);
        EXPECT_TRUE(t.rules.canConvert) << t.why().toStdString();
    }
}

} // namespace
