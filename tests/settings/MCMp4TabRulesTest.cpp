#include "MCMkvEditRules.h"
#include "MCMp4EditRules.h"
#include "MCMp4TabRules.h"
#include "RulesTestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

// A file on the "MP4" tab, every track selected.
struct Mp4Tab : Rules
{
    explicit Mp4Tab(const QList<TrackShape> &tracks, const QString &extension = QStringLiteral("mkv"))
    {
        load(makeFile(tracks, extension));
        rules.setCurrentTab(MCSelectionController::tabMp4);
        rules.setEnteredUserVideoBitRate(QStringLiteral("800"));
    }

    MCMp4TabRules &tab() { return *rules.mp4Tab(); }
    MCVideoTrackPtr track(int i) { return rules.currentVideoFile()->trackList.at(i); }
    std::string why() { return rules.convertRefusalText().toStdString(); }
    void update() { rules.updateTabs(); }
};

TEST(MCMp4TabRulesTest, TheChosenDeviceGoesIntoTheRecordAndOnlyMp4DevicesAreTaken)
{
    Mp4Tab t({{"Video", "h264"}, {"Audio", "aac", "2"}});
    ASSERT_TRUE(t.rules.canConvert) << t.why();
    EXPECT_EQ(t.record().jobType, QStringLiteral("MP4 Conversion"));
    EXPECT_EQ(t.record().theDevice, QStringLiteral("General"));

    t.rules.setMp4Device(QStringLiteral("iPhone 4/iPod Touch (4G and Later)"));
    t.update();
    EXPECT_EQ(t.record().theDevice, QStringLiteral("iPhone 4/iPod Touch (4G and Later)"));
    EXPECT_TRUE(t.rules.canConvert);

    // A record made for the next file still names the device chosen before.
    t.load(makeFile({{"Video", "mpeg4"}, {"Audio", "ac3", "6"}}, QStringLiteral("avi")));
    EXPECT_EQ(t.record().theDevice, QStringLiteral("iPhone 4/iPod Touch (4G and Later)"));

    // The AVI tab's DVD player has no MP4 of its own.
    t.rules.setMp4Device(QStringLiteral("DivX DVD"));
    t.update();
    EXPECT_FALSE(t.rules.canConvert);
    EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("\"DivX DVD\" is not an MP4 device"))) << t.why();
    EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("Apple TV 3")));
    EXPECT_EQ(MCMp4TabRules::deviceList().first(), QStringLiteral("General"));
}

TEST(MCMp4TabRulesTest, CopiedTracksMustBeWhatAnMp4HoldsAsTheyAre)
{
    {
        SCOPED_TRACE("a VC-1 picture is encoded, not copied");
        Mp4Tab t({{"Video", "VC-1"}, {"Audio", "ac3", "2"}}, QStringLiteral("wmv"));
        EXPECT_FALSE(t.rules.canConvert);
        EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("choose MPEG-4"))) << t.why();
        t.tab().setVideoMatrixIndex(MCMkvTabRules::VideoOnePass);
        t.update();
        EXPECT_TRUE(t.rules.canConvert) << t.why();
        EXPECT_EQ(t.track(0)->userCodec, QStringLiteral("mpeg4"));
    }
    for (const char *codec : {"mp3", "dts", "eac3"}) {
        SCOPED_TRACE(codec);
        Mp4Tab t({{"Video", "mpeg4"}, {"Audio", codec, "6", "German"}}, QStringLiteral("avi"));
        EXPECT_FALSE(t.rules.canConvert);
        EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("the German audio track"))) << t.why();
        t.tab().setAudioMatrixIndex(MCMkvTabRules::AudioAc351);
        t.update();
        EXPECT_TRUE(t.rules.canConvert) << t.why();
        EXPECT_EQ(t.track(1)->userCodec, QStringLiteral("ac3"));
    }
    {
        SCOPED_TRACE("the stereo copy beside a copied AC-3 track is AAC");
        Mp4Tab t({{"Video", "h264"}, {"Audio", "ac3", "6"}});
        t.tab().setAddStereoTrack(true);
        t.update();
        ASSERT_EQ(t.record().addedAudioTrackList.size(), 1);
        EXPECT_EQ(t.record().addedAudioTrackList.first()->userCodec, QStringLiteral("aac"));
        EXPECT_TRUE(t.rules.canConvert) << t.why();
    }
}

// Out of files that are neither MKV nor MP4 the job copies tracks through
// MEncoder's and MPlayer's dumps, which lose some on the way.
TEST(MCMp4TabRulesTest, CopiesTheDumpsCannotCarryAreRefusedUntilConverted)
{
    {
        SCOPED_TRACE("a TS picture gets a tag no muxer reads; its ADTS sound is fine");
        Mp4Tab t({{"Video", "h264"}, {"Audio", "aac", "2"}}, QStringLiteral("ts"));
        EXPECT_FALSE(t.rules.canConvert);
        EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("out of the TS file"))) << t.why();
        t.tab().setVideoMatrixIndex(MCMkvTabRules::VideoOnePass);
        t.update();
        EXPECT_TRUE(t.rules.canConvert) << t.why();
    }
    {
        SCOPED_TRACE("a dumped H.264 loses its picture order; MPEG-4 out of an AVI does not");
        Mp4Tab h264({{"Video", "h264"}, {"Audio", "ac3", "2"}}, QStringLiteral("avi"));
        EXPECT_FALSE(h264.rules.canConvert);
        Mp4Tab mpeg4({{"Video", "mpeg4"}, {"Audio", "ac3", "2"}}, QStringLiteral("avi"));
        EXPECT_TRUE(mpeg4.rules.canConvert) << mpeg4.why();
    }
    {
        SCOPED_TRACE("MPlayer dumps a MOV's AAC without the headers that frame it");
        Mp4Tab t({{"Video", "mpeg4"}, {"Audio", "aac", "2"}}, QStringLiteral("mov"));
        EXPECT_FALSE(t.rules.canConvert);
        EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("AAC sound out of the MOV file"))) << t.why();
        t.tab().setAudioMatrixIndex(MCMkvTabRules::AudioAacStereo);
        t.update();
        EXPECT_TRUE(t.rules.canConvert) << t.why();
    }
}

TEST(MCMp4TabRulesTest, SubtitlesAreMuxedAsTextFromFilesTheJobCanReadThemFrom)
{
    {
        SCOPED_TRACE("text out of an MKV, or an added SRT beside an AVI");
        Mp4Tab mkv({{"Video", "h264"}, {"Audio", "aac", "2"}, {"Subtitle", "ass"}});
        EXPECT_TRUE(mkv.rules.canConvert) << mkv.why();
        EXPECT_EQ(mkv.track(2)->userCodec, QStringLiteral("mux"));
        Mp4Tab avi({{"Video", "mpeg4"}, {"Audio", "ac3", "2"}}, QStringLiteral("avi"));
        auto added = makeTrack({"External Subtitle", "srt"});
        added->trackFileExtension = QStringLiteral("srt");
        added->externalTrackFlag = true;
        avi.rules.currentVideoFile()->trackList.append(added);
        avi.rules.trackTableSelectionChanged();
        EXPECT_TRUE(avi.rules.canConvert) << avi.why();
    }
    {
        SCOPED_TRACE("pictures");
        Mp4Tab t({{"Video", "h264"}, {"Audio", "aac", "2"}, {"Subtitle", "pgs"}});
        EXPECT_FALSE(t.rules.canConvert);
        EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("text subtitles only"))) << t.why();
        t.tab().setSubtitleMatrixIndex(MCMkvTabRules::SubtitleDrop);
        t.update();
        EXPECT_TRUE(t.rules.canConvert) << t.why();
    }
    {
        SCOPED_TRACE("text inside an AVI stays there");
        Mp4Tab t({{"Video", "mpeg4"}, {"Audio", "ac3", "2"}, {"Subtitle", "srt"}}, QStringLiteral("avi"));
        EXPECT_FALSE(t.rules.canConvert);
        EXPECT_TRUE(t.rules.convertRefusalText().contains(QStringLiteral("inside this AVI file"))) << t.why();
    }
}

TEST(MCMp4TabRulesTest, AnMp4PresetCopiesWhatAnMp4HoldsAndNamesItsDevice)
{
    Rules r;
    const auto file = makeFile({{"Video", "mpeg2"}, {"Audio", "dts", "6"}, {"Audio", "aac", "2"}, {"Subtitle", "srt"}},
                               QStringLiteral("mkv"));
    file->theVideoCodec = QStringLiteral("mpeg2");
    r.load(file);
    MCPresetSettings preset(file, &r.rules);
    preset.initializeAsNewUserPreset();
    preset.pTarget = QStringLiteral("MP4");
    preset.pDevice = QStringLiteral("Apple TV 3");
    preset.setPVideoActionIndex(3); // best guess for speed: an MPEG-2 picture is encoded once
    preset.pStereoActionIndex = 2;   // best guess: AAC is copied
    preset.pSurroundActionIndex = 3; // best guess: DTS is not an MP4's, so AC-3 5.1
    preset.makeSettings();
    r.rules.updateTabs();

    EXPECT_EQ(preset.tabName(), QStringLiteral("MP4"));
    EXPECT_EQ(r.rules.currentTab(), QStringLiteral("MP4"));
    ASSERT_TRUE(r.rules.canConvert) << r.rules.convertRefusalText().toStdString();
    EXPECT_EQ(r.record().theDevice, QStringLiteral("Apple TV 3"));
    EXPECT_EQ(file->trackList.at(0)->userCodec, QStringLiteral("mpeg4"));
    EXPECT_EQ(r.record().userPassNumber, QStringLiteral("1"));
    EXPECT_EQ(file->trackList.at(1)->userCodec, QStringLiteral("ac3"));
    EXPECT_EQ(file->trackList.at(2)->userCodec, QStringLiteral("passthru"));
    EXPECT_EQ(file->trackList.at(3)->userCodec, QStringLiteral("mux"));

    // The same preset on an H.264 film copies the picture.
    const auto h264 = makeFile({{"Video", "h264"}, {"Audio", "aac", "2"}}, QStringLiteral("mp4"));
    r.load(h264);
    preset.currentVideoFile = h264;
    preset.makeSettings();
    r.rules.updateTabs();
    EXPECT_EQ(h264->trackList.at(0)->userCodec, QStringLiteral("passthru"));
    EXPECT_TRUE(r.rules.canConvert);
}

TEST(MCMp4EditRulesTest, Mp4FilesGetTheMp4EditsAndOnlyTheyHaveTheirAspectSet)
{
    const QList<QUrl> mp4s{QUrl::fromLocalFile(QStringLiteral("/v/a.mp4")), QUrl::fromLocalFile(QStringLiteral("/v/b.M4V"))};
    const QList<QUrl> avis{QUrl::fromLocalFile(QStringLiteral("/v/c.avi"))};
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("AVI Joining"), mp4s), QStringLiteral("MP4 Joining"));
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("AVI Splitting"), mp4s), QStringLiteral("MP4 Splitting"));
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("PAR Editing"), mp4s), QStringLiteral("PAR Editing"));
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("PAR Editing"), avis), QStringLiteral("none"));
    EXPECT_EQ(MCMkvEditRules::fileEditJobType(QStringLiteral("AVI Joining"), avis), QStringLiteral("AVI Joining"));

    Rules r;
    r.rules.setCurrentTab(MCSelectionController::tabEditFiles);
    r.record().editFilesURLsList = mp4s;
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canJoin);
    EXPECT_TRUE(r.rules.canEditPAR);
    r.record().editFilesURLsList = avis;
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canEditPAR);
    r.record().editFilesURLsList = {mp4s.first(), QUrl::fromLocalFile(QStringLiteral("/v/d.mkv"))};
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canJoin);
    EXPECT_FALSE(r.rules.canEditPAR);
    EXPECT_EQ(r.rules.statusColor, QStringLiteral("red"));
}

TEST(MCMp4EditRulesTest, TrackEditsOnMp4ExtractRemoveAndAddWhatMp4BoxTakes)
{
    Rules r;
    r.load(makeFile({{"Video", "h264"}, {"Audio", "aac", "2"}}, QStringLiteral("mp4")));
    r.rules.setCurrentTab(MCSelectionController::tabEditTracks);
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.trackTableEnabled);
    EXPECT_TRUE(r.rules.canEditTracks);
    EXPECT_EQ(r.record().jobType, QStringLiteral("MP4 Track Extraction"));

    r.rules.setEditTrackMatrixIndex(MCMkvEditRules::removeTracksRow);
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canEditTracks); // nothing would stay
    r.rules.currentVideoFile()->trackList.at(0)->trackSelected = false;
    r.rules.trackTableSelectionChanged();
    EXPECT_TRUE(r.rules.canEditTracks);
    EXPECT_EQ(r.record().jobType, QStringLiteral("MP4 Track Removal"));

    // Adding: every selected track must be an added file MP4Box takes as it is.
    auto ac3 = makeTrack({"Audio", "ac3", "6", "French", true, true});
    auto mp3 = makeTrack({"Audio", "mp3", "2", "Dutch", false, true});
    r.rules.currentVideoFile()->trackList << ac3 << mp3;
    r.rules.currentVideoFile()->trackList.at(1)->trackSelected = false;
    r.rules.setEditTrackMatrixIndex(1);
    r.rules.trackTableSelectionChanged();
    EXPECT_TRUE(r.rules.canEditTracks);
    EXPECT_EQ(r.record().jobType, QStringLiteral("MP4 Track Addition"));
    mp3->trackSelected = true;
    r.rules.trackTableSelectionChanged();
    EXPECT_FALSE(r.rules.canEditTracks);
    EXPECT_FALSE(MCMp4EditRules::canAdd(*r.rules.currentVideoFile()->trackList.at(1))); // the file's own track

    r.rules.setEditTrackMatrixIndex(0);
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canEditTracks); // added tracks cannot be extracted
}

} // namespace
