#include "MCMkvEditRules.h"
#include "MCMkvTabRules.h"
#include "RulesTestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

// A film with German 5.1, English stereo and a subtitle, on the "MKV" tab.
struct MkvTab : Rules
{
    MkvTab()
    {
        load(makeFile({{"Video", "h264"}, {"Audio", "ac3", "6", "German"}, {"Audio", "aac", "2"}, {"Subtitle", "srt"}},
                      QStringLiteral("mkv")));
        rules.setCurrentTab(MCSelectionController::tabMkv);
        rules.setEnteredUserVideoBitRate(QStringLiteral("800"));
    }

    MCMkvTabRules &tab() { return *rules.mkvTab(); }
    MCVideoTrackPtr track(int i) { return rules.currentVideoFile()->trackList.at(i); }
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
    ASSERT_TRUE(t.rules.canConvert) << t.rules.convertRefusalText().toStdString();
    EXPECT_EQ(t.record().jobType, QStringLiteral("MKV Conversion"));
    EXPECT_EQ(t.track(1)->userCodec, QStringLiteral("passthru"));

    t.row(MCMkvTabRules::AudioAacStereo);
    EXPECT_EQ(t.track(1)->userCodec, QStringLiteral("aac"));
    EXPECT_EQ(t.track(1)->userNumberOfChannels, QStringLiteral("2"));
    EXPECT_EQ(t.track(1)->userBitRate, QStringLiteral("160"));
    EXPECT_EQ(t.track(2)->userCodec, QStringLiteral("passthru"));

    t.choose(1);
    EXPECT_EQ(t.tab().audioMatrixIndex(), MCMkvTabRules::AudioPassthru);
    t.row(MCMkvTabRules::AudioAacStereo);
    t.choose(0);
    // Back on the surround track: the rows show what it was given.
    EXPECT_EQ(t.tab().audioMatrixIndex(), MCMkvTabRules::AudioAacStereo);
    t.row(MCMkvTabRules::AudioAc351);
    EXPECT_EQ(t.track(1)->userCodec, QStringLiteral("ac3"));
    EXPECT_EQ(t.track(1)->userNumberOfChannels, QStringLiteral("6"));
    EXPECT_EQ(t.track(2)->userCodec, QStringLiteral("aac"));
    EXPECT_TRUE(t.rules.canConvert);
}

TEST(MCMkvTabRulesTest, StereoCopyOnlyBesideAMultichannelTrackThatStaysMultichannel)
{
    MkvTab t;
    EXPECT_TRUE(t.tab().canAddStereoTrack);
    t.tab().setAddStereoTrack(true);
    t.rules.updateTabs();
    ASSERT_EQ(t.record().addedAudioTrackList.size(), 1);
    EXPECT_EQ(t.record().addedAudioTrackList.at(0)->trackLanguage, QStringLiteral("German"));

    // Mixing the track itself down makes the copy pointless: it goes.
    t.row(MCMkvTabRules::AudioAacStereo);
    EXPECT_FALSE(t.tab().canAddStereoTrack);
    EXPECT_FALSE(t.tab().addStereoTrack());
    EXPECT_TRUE(t.record().addedAudioTrackList.isEmpty());

    t.choose(1);
    EXPECT_FALSE(t.tab().canAddStereoTrack); // already stereo
}

TEST(MCMkvTabRulesTest, RefusesWhatCannotBecomeTheFileAsked)
{
    {
        SCOPED_TRACE("5.1 from a stereo track");
        MkvTab t;
        t.choose(1);
        EXPECT_EQ(t.tab().surroundColor, QStringLiteral("red"));
        t.row(MCMkvTabRules::AudioAac51);
        EXPECT_FALSE(t.rules.canConvert);
        EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("AAC 5.1 needs a surround track")));
        t.row(MCMkvTabRules::AudioAacStereo);
        EXPECT_TRUE(t.rules.canConvert);
    }
    {
        SCOPED_TRACE("MPEG-4 without a usable bit rate or width");
        MkvTab t;
        t.tab().setVideoMatrixIndex(MCMkvTabRules::VideoTwoPasses);
        t.rules.setEnteredUserVideoBitRate(QStringLiteral("fast"));
        EXPECT_FALSE(t.rules.canConvert);
        t.rules.setEnteredUserVideoBitRate(QStringLiteral("900"));
        EXPECT_TRUE(t.rules.canConvert);
        EXPECT_EQ(t.record().userPassNumber, QStringLiteral("2"));
        EXPECT_EQ(t.track(0)->userCodec, QStringLiteral("mpeg4"));
        t.rules.setEnteredUserWidth(QStringLiteral("wide"));
        EXPECT_FALSE(t.rules.canConvert);
    }
    {
        SCOPED_TRACE("no video, or two");
        Rules r;
        r.load(makeFile({{"Video", "h264"}, {"Video", "h264"}, {"Audio", "aac", "2"}}, QStringLiteral("mkv")));
        r.rules.setCurrentTab(MCSelectionController::tabMkv);
        EXPECT_FALSE(r.rules.canConvert);
        r.rules.currentVideoFile()->trackList.at(1)->trackSelected = false;
        r.rules.trackTableSelectionChanged();
        EXPECT_TRUE(r.rules.canConvert);
    }
}

TEST(MCMkvTabRulesTest, TracksMkvmergeCannotCopyMustBeReEncoded)
{
    for (const char *extension : {"wmv", "VOB"}) {
        SCOPED_TRACE(extension);
        Rules r;
        r.load(makeFile({{"Video", "mpeg2"}, {"Audio", "ac3", "6"}}, QString::fromLatin1(extension)));
        r.rules.setCurrentTab(MCSelectionController::tabMkv);
        r.rules.setEnteredUserVideoBitRate(QStringLiteral("900"));
        EXPECT_FALSE(r.rules.canConvert);
        r.rules.mkvTab()->setVideoMatrixIndex(MCMkvTabRules::VideoOnePass);
        r.rules.mkvTab()->setAudioMatrixIndex(MCMkvTabRules::AudioAc351);
        r.rules.updateTabs();
        EXPECT_TRUE(r.rules.canConvert) << r.rules.convertRefusalText().toStdString();
    }
}

TEST(MCMkvTabRulesTest, SubtitlesAreMuxedOrDroppedAndAWidthForACopiedPictureIsFlagged)
{
    MkvTab t;
    EXPECT_EQ(t.track(3)->userCodec, QStringLiteral("mux"));
    t.tab().setSubtitleMatrixIndex(MCMkvTabRules::SubtitleDrop);
    t.rules.updateTabs();
    EXPECT_EQ(t.track(3)->userCodec, QStringLiteral("drop"));
    EXPECT_TRUE(t.rules.canConvert);

    EXPECT_EQ(t.tab().videoPassThruColor, QStringLiteral("black"));
    t.rules.setEnteredUserWidth(QStringLiteral("320"));
    EXPECT_EQ(t.tab().videoPassThruColor, QStringLiteral("red"));
    t.tab().setVideoMatrixIndex(MCMkvTabRules::VideoOnePass);
    t.rules.updateTabs();
    EXPECT_EQ(t.tab().videoPassThruColor, QStringLiteral("black"));
}

TEST(MCMkvEditRulesTest, MatroskaFilesGetTheMkvEditsAndOneContainerPerEdit)
{
    const QList<QUrl> mkvs{QUrl::fromLocalFile(QStringLiteral("/v/a.mkv")), QUrl::fromLocalFile(QStringLiteral("/v/b.MKV"))};
    const QList<QUrl> mixed{mkvs.first(), QUrl::fromLocalFile(QStringLiteral("/v/c.avi"))};
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("AVI Joining"), mkvs), QStringLiteral("MKV Joining"));
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("AVI Splitting"), mkvs), QStringLiteral("MKV Splitting"));
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("AVI Joining"), mixed), QStringLiteral("AVI Joining"));

    Rules r;
    r.rules.setCurrentTab(MCSelectionController::tabEditFiles);
    r.record().editFilesURLsList = mixed;
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canJoin);
    EXPECT_FALSE(r.rules.canSplit);
    EXPECT_EQ(r.rules.statusColor, QStringLiteral("red"));

    r.record().editFilesURLsList = mkvs;
    r.rules.splitTypeMatrixIndex = MCMkvEditRules::splitByDurationRow;
    r.record().initializeSplitDurationForTimeText(QStringLiteral("00:00:00"));
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canJoin);
    EXPECT_FALSE(r.rules.canSplit); // pieces of no length
    r.record().initializeSplitDurationForTimeText(QStringLiteral("00:01:30"));
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canSplit);
    EXPECT_EQ(r.record().splitType, QStringLiteral("duration"));

    r.record().editFilesURLsList = {mixed.last()};
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canSplit); // an AVI is not split by duration
}

TEST(MCMkvEditRulesTest, TrackEditsOnMatroskaExtractOrRemoveButNeverEverything)
{
    Rules r;
    r.load(makeFile({{"Video", "h264"}, {"Audio", "ac3", "6"}, {"Subtitle", "srt"}}, QStringLiteral("mkv")));
    r.rules.setCurrentTab(MCSelectionController::tabEditTracks);
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canEditTracks);
    EXPECT_EQ(r.record().jobType, QStringLiteral("MKV Track Extraction"));

    r.rules.setEditTrackMatrixIndex(MCMkvEditRules::removeTracksRow);
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canEditTracks); // every track selected: nothing would stay
    r.rules.currentVideoFile()->trackList.at(0)->trackSelected = false;
    r.rules.trackTableSelectionChanged();
    EXPECT_TRUE(r.rules.canEditTracks);
    EXPECT_EQ(r.record().jobType, QStringLiteral("MKV Track Removal"));

    r.rules.setEditTrackMatrixIndex(1); // adding tracks is for AVI files
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canEditTracks);

    Rules avi;
    avi.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}));
    avi.rules.setCurrentTab(MCSelectionController::tabEditTracks);
    avi.rules.setEditTrackMatrixIndex(MCMkvEditRules::removeTracksRow);
    avi.rules.updateTabs();
    EXPECT_FALSE(avi.rules.canEditTracks);
}

} // namespace
