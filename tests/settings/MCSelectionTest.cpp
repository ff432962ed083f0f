#include "MCSelection.h"
#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

MCVideoTrackPtr audio(const char *index, const char *channels, bool stereoCopy)
{
    auto track = makeTrack({"Audio", "ac3", channels});
    track->trackIndex = QString::fromLatin1(index);
    track->userCodec = QStringLiteral("passthru");
    track->createStereoCopyFlag = stereoCopy;
    return track;
}

// A video track never gets a stereo copy, even with the flag set.
MCVideoTrackPtr video()
{
    auto track = makeTrack({"Video", "h264"});
    track->createStereoCopyFlag = true;
    return track;
}

TEST(MCSelectionTest, AQueuedCopyHasTracksAndListsOfItsOwn)
{
    MCSelection live;
    live.initialize();
    live.currentEncoder = QStringLiteral("mencoder");
    live.forceLegacyEncoder = true;
    live.trackList = {video(), audio("1", "6", true)};
    live.keepTracksList = {audio("2", "2", false), live.trackList.at(0)};
    live.addAnyStereoTracks();
    live.initializeSplitDurationForTimeText(QStringLiteral("00:10:00"));

    const MCSelectionPtr queued = live.copy();
    // The encoder is chosen again for each job.
    EXPECT_EQ(queued->currentEncoder, QStringLiteral("ffmpeg"));
    EXPECT_FALSE(queued->forceLegacyEncoder);
    EXPECT_EQ(queued->splitDurationSeconds, QStringLiteral("600"));
    ASSERT_EQ(queued->addedAudioTrackList.size(), 1);
    // A track standing in two lists stays one track in the copy.
    EXPECT_EQ(queued->keepTracksList.constLast().get(), queued->trackList.at(0).get());

    // Later choices in the window leave the queued job alone, and nothing
    // the job marks reaches the window.
    EXPECT_NE(queued->trackList.at(1).get(), live.trackList.at(1).get());
    live.trackList.at(1)->userCodec = QStringLiteral("mp3");
    EXPECT_EQ(queued->trackList.at(1)->userCodec, QStringLiteral("passthru"));
    queued->trackList.at(1)->wasReEncoded = true;
    EXPECT_FALSE(live.trackList.at(1)->wasReEncoded);
    live.trackList.removeFirst();
    live.keepTracksList.clear();
    EXPECT_EQ(queued->trackList.size(), 2);
    EXPECT_EQ(queued->keepTracksList.size(), 2);
    // The copy constructor follows the same rule.
    EXPECT_EQ(MCSelection(live).currentEncoder, QStringLiteral("ffmpeg"));
}

TEST(MCSelectionTest, TimeTextsBecomeWholeSeconds)
{
    // No range checks; a piece that is no number counts 0; separators are
    // not checked; short texts are read as far as they go.
    const std::pair<const char *, const char *> cases[] = {
        {"01:02:03", "3723"}, {"00:90:00", "5400"}, {"xx:01:05", "65"}, {"01-00-00", "3600"},
        {"1a:00:00", "3600"}, {"01:3", "3780"},     {"5", "18000"},     {"", "0"}};
    for (const auto &[text, seconds] : cases)
        EXPECT_EQ(MCSelection::secondsForTimeText(QString::fromLatin1(text)), QString::fromLatin1(seconds)) << text;

    MCSelection selection;
    selection.initialize();
    selection.initializeSplitForStartTime(QStringLiteral("00:00:10"), QStringLiteral("00:01:00"));
    selection.initializeSplitForStartTime(QStringLiteral("01:02:03"));
    EXPECT_EQ(selection.splitEndTimeSeconds, QStringLiteral("60"));
    // Only an end: a null start counts as absent too.
    selection.initializeSplitForStartTime(std::nullopt, QStringLiteral("10:00:00"));
    selection.initializeSplitForStartTime(QString(), QStringLiteral("10:00:01"));
    EXPECT_EQ(selection.splitStartTimeSeconds, QStringLiteral("3723"));
    EXPECT_EQ(selection.splitEndTimeSeconds, QStringLiteral("36001"));
    selection.initializeSplitDurationForTimeText(QStringLiteral("01:3"));
    EXPECT_EQ(selection.splitDurationText, QStringLiteral("01:3"));
    EXPECT_EQ(selection.splitDurationSeconds, QStringLiteral("3780"));
}

TEST(MCSelectionTest, StereoCopiesOfFlaggedSurroundTracksReplaceTheEarlierOnes)
{
    MCSelection selection;
    selection.initialize();
    const MCVideoTrackPtr surround = audio("1", "6", true);
    selection.trackList = {video(), surround, audio("2", "2", false), audio("3", "8", true)};
    selection.addAnyStereoTracks();
    selection.addAnyStereoTracks();
    ASSERT_EQ(selection.addedAudioTrackList.size(), 2);
    const MCVideoTrack &copy = *selection.addedAudioTrackList.at(0);
    EXPECT_NE(&copy, surround.get());
    EXPECT_EQ(copy.trackIndex, QStringLiteral("1"));
    EXPECT_EQ(copy.userNumberOfChannels, QStringLiteral("2"));
    EXPECT_TRUE(copy.isStereoCopyFlag && !copy.createStereoCopyFlag);
    EXPECT_EQ(selection.addedAudioTrackList.at(1)->trackIndex, QStringLiteral("3"));
    EXPECT_EQ(surround->userCodec, QStringLiteral("passthru"));

    // The next file starts without the earlier file's copies.
    selection.initializeFrom(MCVideoFile());
    EXPECT_TRUE(selection.addedAudioTrackList.isEmpty());
}

} // namespace
