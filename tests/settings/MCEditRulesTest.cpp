// The Edit Files and Edit Tracks tabs: which edits each container gets.
#include "MCMkvEditRules.h"
#include "MCMp4EditRules.h"
#include "RulesTestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

QList<QUrl> files(std::initializer_list<const char *> names)
{
    QList<QUrl> urls;
    for (const char *name : names)
        urls << QUrl::fromLocalFile(QStringLiteral("/v/") + QString::fromLatin1(name));
    return urls;
}

struct EditTracks : OnTab
{
    EditTracks(const QList<TrackShape> &tracks, const char *extension)
        : OnTab(MCSelectionController::tabEditTracks, tracks, extension)
    {
    }
    void row(int row)
    {
        rules.setEditTrackMatrixIndex(row);
        rules.updateTabs();
    }
};

TEST(MCEditRulesTest, EditFilesTakesOneContainerAtATimeAndGivesItsOwnJobs)
{
    const struct
    {
        const char *asked;
        QList<QUrl> files;
        const char *job;
    } jobs[] = {
        {"AVI Joining", files({"a.mkv", "b.MKV"}), "MKV Joining"}, {"AVI Splitting", files({"a.mkv"}), "MKV Splitting"},
        {"AVI Joining", files({"a.mkv", "c.avi"}), "AVI Joining"}, {"AVI Joining", files({"a.mp4", "b.M4V"}), "MP4 Joining"},
        {"PAR Editing", files({"a.mp4"}), "PAR Editing"},          {"PAR Editing", files({"c.avi"}), "none"},
    };
    for (const auto &j : jobs)
        EXPECT_EQ(MCMkvEditRules::fileEditJobType(QString::fromLatin1(j.asked), j.files), QString::fromLatin1(j.job)) << j.job;

    const struct
    {
        QList<QUrl> files;
        bool canJoin, canEditPAR;
    } lists[] = {{files({"a.mkv", "b.mkv"}), true, false}, {files({"a.mp4", "b.m4v"}), true, true},
                 {files({"a.mkv", "c.avi"}), false, false}, {files({"a.mp4", "d.mkv"}), false, false}};
    for (const auto &l : lists) {
        SCOPED_TRACE(l.files.first().fileName().toStdString() + " " + l.files.last().fileName().toStdString());
        Rules r;
        r.rules.setCurrentTab(MCSelectionController::tabEditFiles);
        r.record().editFilesURLsList = l.files;
        r.rules.updateTabs();
        EXPECT_EQ(r.rules.canJoin, l.canJoin);
        EXPECT_EQ(r.rules.canEditPAR, l.canEditPAR);
        EXPECT_EQ(r.rules.statusColor == MCSelectionController::colorRed, !l.canJoin);
    }
}

TEST(MCEditRulesTest, OnlyMatroskaIsSplitByDurationAndNeverIntoPiecesOfNoLength)
{
    Rules r;
    r.rules.setCurrentTab(MCSelectionController::tabEditFiles);
    r.record().editFilesURLsList = files({"a.mkv"});
    r.rules.splitTypeMatrixIndex = MCMkvEditRules::splitByDurationRow;
    r.record().initializeSplitDurationForTimeText(QStringLiteral("00:00:00"));
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canSplit);
    r.record().initializeSplitDurationForTimeText(QStringLiteral("00:01:30"));
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canSplit);
    EXPECT_EQ(r.record().splitType, QStringLiteral("duration"));
    r.record().editFilesURLsList = files({"c.avi"});
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canSplit);
}

TEST(MCEditRulesTest, TracksAreExtractedOrRemovedButNeverAllRemoved)
{
    const std::pair<const char *, QList<TrackShape>> cases[] = {
        {"mkv", {{"Video", "h264"}, {"Audio", "ac3", "6"}, {"Subtitle", "srt"}}},
        {"mp4", {{"Video", "h264"}, {"Audio", "aac", "2"}}},
        {"AVI", {{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}}};
    for (const auto &[extension, tracks] : cases) {
        SCOPED_TRACE(extension);
        const QString kind = QString::fromLatin1(extension).toUpper();
        EditTracks t(tracks, extension);
        EXPECT_TRUE(t.rules.trackTableEnabled);
        EXPECT_TRUE(t.rules.canEditTracks);
        EXPECT_EQ(t.record().jobType, kind + QStringLiteral(" Track Extraction"));
        t.row(MCMkvEditRules::removeTracksRow);
        EXPECT_FALSE(t.rules.canEditTracks); // every track selected: nothing would stay, or an AVI
        t.tracks().at(0)->trackSelected = false;
        t.rules.trackTableSelectionChanged();
        EXPECT_EQ(t.rules.canEditTracks, kind != QLatin1String("AVI"));
    }
    EditTracks mov({{"Video", "h264"}}, "mov");
    EXPECT_FALSE(mov.rules.trackTableEnabled || mov.rules.canEditTracks);
}

TEST(MCEditRulesTest, AddedFilesAreAddedToAviAndMp4FilesOnlyAndNeverExtracted)
{
    EditTracks mkv({{"Video", "h264"}, {"Audio", "ac3", "6"}}, "mkv");
    mkv.row(1);
    EXPECT_FALSE(mkv.rules.canEditTracks);

    // AVI: the last selected track decides.
    EditTracks avi({{"Video", "mpeg4"}, {"Audio", "mp3", "2", "English", true, true}}, "avi");
    EXPECT_FALSE(avi.rules.canEditTracks);
    avi.row(1);
    EXPECT_TRUE(avi.rules.editTrackLabel.contains(QStringLiteral("added.  You can only add")));
    EXPECT_TRUE(avi.rules.canEditTracks);
    EXPECT_EQ(avi.record().jobType, QStringLiteral("AVI Track Addition"));
    avi.tracks().append(makeTrack({"Subtitle", "srt"}));
    avi.rules.trackTableSelectionChanged();
    EXPECT_FALSE(avi.rules.canEditTracks);

    // MP4: every selected track must be an added file MP4Box takes as it is.
    EditTracks mp4({{"Video", "h264"}, {"Audio", "aac", "2"}}, "mp4");
    auto mp3 = makeTrack({"Audio", "mp3", "2", "Dutch", false, true});
    mp4.tracks() << makeTrack({"Audio", "ac3", "6", "French", true, true}) << mp3;
    mp4.tracks().at(0)->trackSelected = false;
    mp4.tracks().at(1)->trackSelected = false;
    mp4.rules.setEditTrackMatrixIndex(1);
    mp4.rules.trackTableSelectionChanged();
    EXPECT_TRUE(mp4.rules.canEditTracks);
    EXPECT_EQ(mp4.record().jobType, QStringLiteral("MP4 Track Addition"));
    mp3->trackSelected = true;
    mp4.rules.trackTableSelectionChanged();
    EXPECT_FALSE(mp4.rules.canEditTracks);
    EXPECT_FALSE(MCMp4EditRules::canAdd(*mp4.tracks().at(1))); // the file's own track
    mp4.row(0);
    EXPECT_FALSE(mp4.rules.canEditTracks);
}

} // namespace
