#include "MCLog.h"
#include "MCSelection.h"
#include "MCVideoFile.h"
#include "TestSupport.h"

#include <QFile>
#include <QStringList>

#include <gtest/gtest.h>

namespace {

MCVideoTrackPtr audioTrack(const QString &index, const QString &channels, bool stereoCopy)
{
    auto track = std::make_shared<MCVideoTrack>();
    track->trackType = QStringLiteral("Audio");
    track->trackIndex = index;
    track->trackMp4boxID = QString::number(index.toInt() + 1);
    track->trackCodec = QStringLiteral("ac3");
    track->trackNumberOfChannels = channels;
    track->trackSelected = true;
    track->userCodec = QStringLiteral("passthru");
    track->createStereoCopyFlag = stereoCopy;
    return track;
}

MCVideoTrackPtr videoTrack()
{
    auto track = std::make_shared<MCVideoTrack>();
    track->trackType = QStringLiteral("Video");
    track->trackIndex = QStringLiteral("1");
    // A video track never gets a stereo copy, even if the flag is set.
    track->createStereoCopyFlag = true;
    return track;
}

// Runs the action and answers the lines it added to the log file.
QStringList loggedLines(const std::function<void()> &action)
{
    QFile log(MCLog::logFilePath());
    const qint64 before = log.size();
    action();
    EXPECT_TRUE(log.open(QIODevice::ReadOnly));
    log.seek(before);
    return QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

TEST(MCSelectionTest, ResettingLeavesTheEncoderChoiceListsAndCounts)
{
    MCSelection selection;
    selection.currentEncoder = QStringLiteral("mencoder");
    selection.vidCount = QStringLiteral("1");
    selection.trackList = {videoTrack()};
    selection.initialize();
    // Empty, not null: the width field shows it as typed.
    EXPECT_FALSE(selection.userWidth.isNull());
    EXPECT_EQ(selection.jobType, QStringLiteral("none"));
    EXPECT_EQ(selection.currentEncoder, QStringLiteral("mencoder"));
    EXPECT_EQ(selection.vidCount, QStringLiteral("1"));
    EXPECT_EQ(selection.trackList.size(), 1);
}

TEST(MCSelectionTest, AFileGivesTheStartingValues)
{
    MCVideoFile file;
    file.theFilePath = QStringLiteral("/tmp/My Movie.avi");
    file.theFileURL = QUrl::fromLocalFile(file.theFilePath);
    file.theFileShortName = QStringLiteral("My Movie");
    file.theFPS = QStringLiteral("23.976");
    file.theWidth = QStringLiteral("720");
    file.theHeight = QStringLiteral("576");
    file.theVideoBitRate = QStringLiteral("1800");
    file.headerRemovalFlag = true;

    MCSelection selection;
    selection.initialize();
    selection.addedAudioTrackList = {audioTrack(QStringLiteral("1"), QStringLiteral("6"), true)};
    selection.initializeFrom(file);
    EXPECT_EQ(selection.videoTrackFileURL, file.theFileURL);
    EXPECT_EQ(selection.videoTrackFileShortName, QStringLiteral("My Movie"));
    EXPECT_TRUE(selection.headerRemovalFlag);
    EXPECT_EQ(selection.userFPS, QStringLiteral("23.976"));
    EXPECT_EQ(selection.userWidth, QStringLiteral("720"));
    EXPECT_EQ(selection.userVideoBitRate, QStringLiteral("1800"));
    // The height is not taken from the file.
    EXPECT_EQ(selection.userHeight, QStringLiteral("0"));
    EXPECT_EQ(selection.audCount, QStringLiteral("0"));
    EXPECT_TRUE(selection.addedAudioTrackList.isEmpty());
}

TEST(MCSelectionTest, CopySharesTracksButNotListsOrEncoderChoice)
{
    MCSelection live;
    live.initialize();
    live.currentEncoder = QStringLiteral("mencoder");
    live.forceLegacyEncoder = true;
    live.jobType = QStringLiteral("AVI Splitting");
    live.userWidth = QStringLiteral("640");
    live.subCount = QStringLiteral("2");
    live.headerRemovalFlag = true;
    live.editFilesURLsList = {QUrl::fromLocalFile(QStringLiteral("/tmp/a.avi"))};
    live.trackList = {videoTrack(), audioTrack(QStringLiteral("1"), QStringLiteral("6"), true)};
    live.keepTracksList = {audioTrack(QStringLiteral("2"), QStringLiteral("2"), false)};
    live.addAnyStereoTracks();
    live.initializeSplitDurationForTimeText(QStringLiteral("00:10:00"));

    const MCSelectionPtr queued = live.copy();
    EXPECT_EQ(queued->currentEncoder, QStringLiteral("ffmpeg"));
    EXPECT_FALSE(queued->forceLegacyEncoder);
    EXPECT_EQ(queued->jobType, QStringLiteral("AVI Splitting"));
    EXPECT_EQ(queued->userWidth, QStringLiteral("640"));
    EXPECT_TRUE(queued->headerRemovalFlag);
    EXPECT_EQ(queued->splitDurationSeconds, QStringLiteral("600"));
    EXPECT_EQ(queued->editFilesURLsList, live.editFilesURLsList);
    ASSERT_EQ(queued->trackList.size(), 2);
    ASSERT_EQ(queued->addedAudioTrackList.size(), 1);
    ASSERT_EQ(queued->keepTracksList.size(), 1);

    // Tracks of their own: the rules writing a later choice into the live
    // tracks (queue with MP3, switch to passthru, queue again) leave the
    // queued job's choice alone, and nothing a job does reaches the window.
    EXPECT_NE(queued->trackList.at(1).get(), live.trackList.at(1).get());
    live.trackList.at(1)->userCodec = QStringLiteral("mp3");
    const MCSelectionPtr second = live.copy();
    live.trackList.at(1)->userCodec = QStringLiteral("passthru");
    EXPECT_EQ(second->trackList.at(1)->userCodec, QStringLiteral("mp3"));
    second->trackList.at(1)->wasReEncoded = true;
    EXPECT_FALSE(live.trackList.at(1)->wasReEncoded);
    // A track standing in two lists stays one track in the copy.
    live.keepTracksList.append(live.trackList.at(0));
    const MCSelectionPtr shared = live.copy();
    EXPECT_EQ(shared->keepTracksList.constLast().get(), shared->trackList.at(0).get());
    live.keepTracksList.removeLast();

    // But separate lists and values: later edits of the live record stay there.
    live.trackList.removeFirst();
    live.keepTracksList.clear();
    live.editFilesURLsList.clear();
    live.jobType = QStringLiteral("none");
    EXPECT_EQ(queued->trackList.size(), 2);
    EXPECT_EQ(queued->keepTracksList.size(), 1);
    EXPECT_EQ(queued->editFilesURLsList.size(), 1);
    EXPECT_EQ(queued->jobType, QStringLiteral("AVI Splitting"));

    // The copy constructor follows the same rule.
    const MCSelection direct(live);
    EXPECT_EQ(direct.currentEncoder, QStringLiteral("ffmpeg"));
    EXPECT_EQ(direct.trackList.size(), 1);
}

TEST(MCSelectionTest, SplitTimesBecomeWholeSeconds)
{
    MCSelection selection;
    selection.initialize();
    selection.initializeSplitForStartTime(QStringLiteral("00:00:10"), QStringLiteral("00:01:00"));
    selection.initializeSplitForStartTime(QStringLiteral("01:02:03"));
    EXPECT_EQ(selection.splitStartTimeText, QStringLiteral("01:02:03"));
    EXPECT_EQ(selection.splitStartTimeSeconds, QStringLiteral("3723"));
    EXPECT_EQ(selection.splitEndTimeText, QStringLiteral("00:01:00"));
    EXPECT_EQ(selection.splitEndTimeSeconds, QStringLiteral("60"));

    // Only an end; a null start counts as absent too.
    selection.initializeSplitForStartTime(std::nullopt, QStringLiteral("10:00:00"));
    selection.initializeSplitForStartTime(QString(), QStringLiteral("10:00:01"));
    EXPECT_EQ(selection.splitStartTimeSeconds, QStringLiteral("3723"));
    EXPECT_EQ(selection.splitEndTimeSeconds, QStringLiteral("36001"));

    // No range checks: 90 minutes is 90 minutes.
    selection.initializeSplitDurationForTimeText(QStringLiteral("00:90:00"));
    EXPECT_EQ(selection.splitDurationSeconds, QStringLiteral("5400"));

    // A piece that is not a number counts 0; separators are not checked.
    EXPECT_EQ(MCSelection::secondsForTimeText(QStringLiteral("xx:01:05")), QStringLiteral("65"));
    EXPECT_EQ(MCSelection::secondsForTimeText(QStringLiteral("01-00-00")), QStringLiteral("3600"));
    EXPECT_EQ(MCSelection::secondsForTimeText(QStringLiteral("1a:00:00")), QStringLiteral("3600"));

    // Short texts are read as far as they go and never crash.
    selection.initializeSplitDurationForTimeText(QStringLiteral("01:3"));
    EXPECT_EQ(selection.splitDurationText, QStringLiteral("01:3"));
    EXPECT_EQ(selection.splitDurationSeconds, QStringLiteral("3780"));
    EXPECT_EQ(MCSelection::secondsForTimeText(QString()), QStringLiteral("0"));
    EXPECT_EQ(MCSelection::secondsForTimeText(QStringLiteral("5")), QStringLiteral("18000"));
}

TEST(MCSelectionTest, StereoCopiesReplaceTheEarlierList)
{
    MCSelection selection;
    selection.initialize();
    const MCVideoTrackPtr surround = audioTrack(QStringLiteral("1"), QStringLiteral("6"), true);
    const MCVideoTrackPtr plain = audioTrack(QStringLiteral("2"), QStringLiteral("2"), false);
    const MCVideoTrackPtr second = audioTrack(QStringLiteral("3"), QStringLiteral("8"), true);
    selection.trackList = {videoTrack(), surround, plain, second};

    selection.addAnyStereoTracks();
    selection.addAnyStereoTracks();
    ASSERT_EQ(selection.addedAudioTrackList.size(), 2);
    const MCVideoTrack &copy = *selection.addedAudioTrackList.at(0);
    EXPECT_NE(&copy, surround.get());
    EXPECT_EQ(copy.trackIndex, QStringLiteral("1"));
    EXPECT_EQ(copy.trackNumberOfChannels, QStringLiteral("6"));
    EXPECT_EQ(copy.userNumberOfChannels, QStringLiteral("2"));
    EXPECT_TRUE(copy.isStereoCopyFlag && !copy.createStereoCopyFlag);
    EXPECT_EQ(selection.addedAudioTrackList.at(1)->trackIndex, QStringLiteral("3"));
    // The source track is left as it was.
    EXPECT_EQ(surround->userCodec, QStringLiteral("passthru"));
    EXPECT_TRUE(surround->createStereoCopyFlag);

    surround->createStereoCopyFlag = false;
    second->createStereoCopyFlag = false;
    selection.addAnyStereoTracks();
    EXPECT_TRUE(selection.addedAudioTrackList.isEmpty());
}

TEST(MCSelectionTest, LogNumbersAddedTracksAfterTheSelectedOnes)
{
    MCSelection selection;
    selection.initialize();
    selection.videoTrackFileName = QStringLiteral("holiday.avi");
    selection.headerRemovalFlag = true;
    selection.trackList = {videoTrack(), audioTrack(QStringLiteral("1"), QStringLiteral("6"), true),
                           audioTrack(QStringLiteral("2"), QStringLiteral("2"), false)};
    selection.addAnyStereoTracks();

    const QStringList lines = loggedLines([&] { selection.logSelectionProperties(); });
    EXPECT_TRUE(lines.contains(QStringLiteral("videoTrackFileName = holiday.avi")));
    EXPECT_EQ(lines.filter(QStringLiteral("TRACK #3 PROPERTIES")).size(), 1);
    EXPECT_EQ(lines.filter(QStringLiteral("ADDED AUDIO TRACK #4 PROPERTIES")).size(), 1);
    EXPECT_EQ(lines.filter(QStringLiteral("   Track Properties    ")).size(), 4);

    const QStringList muxing = loggedLines([&] { selection.logSelectionMuxingProperties(); });
    EXPECT_EQ(muxing.filter(QStringLiteral("ADDED AUDIO TRACK #4 PROPERTIES")).size(), 1);
    EXPECT_TRUE(muxing.filter(QStringLiteral("   Track Properties    ")).isEmpty());
    EXPECT_EQ(muxing.filter(QStringLiteral("muxingTrackType = ")).size(), 4);
}

} // namespace
