#include "MCMkvTabRules.h"
#include "MCMp4TabRules.h"
#include "RulesTestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

using Row = MCMkvTabRules;

// A file on the "MP4" tab, every track selected.
struct Mp4Tab : OnTab
{
    explicit Mp4Tab(const QList<TrackShape> &tracks, const char *extension = "mkv")
        : OnTab(MCSelectionController::tabMp4, tracks, extension)
    {
    }
    // Refused for a reason containing refusal until the row is set.
    void refusedUntil(const char *refusal, void (MCMkvTabRules::*setRow)(int), int row)
    {
        EXPECT_FALSE(rules.canConvert);
        EXPECT_TRUE(why().contains(QString::fromLatin1(refusal))) << why().toStdString();
        (rules.mp4Tab()->*setRow)(row);
        rules.updateTabs();
        EXPECT_TRUE(rules.canConvert) << why().toStdString();
    }
};

TEST(MCMp4TabRulesTest, TheChosenDeviceStaysForTheNextFileAndOnlyMp4DevicesAreTaken)
{
    Mp4Tab t({{"Video", "h264"}, {"Audio", "aac", "2"}});
    EXPECT_EQ(t.record().jobType, QStringLiteral("MP4 Conversion"));
    const QString iphone = QStringLiteral("iPhone 4/iPod Touch (4G and Later)");
    t.rules.setMp4Device(iphone);
    t.load(makeFile({{"Video", "mpeg4"}, {"Audio", "ac3", "6"}}, QStringLiteral("avi")));
    EXPECT_EQ(t.record().theDevice, iphone);
    t.rules.setMp4Device(QStringLiteral("DivX DVD")); // the AVI tab's
    t.rules.updateTabs();
    EXPECT_FALSE(t.rules.canConvert);
    EXPECT_TRUE(t.why().contains(QStringLiteral("\"DivX DVD\" is not an MP4 device"))) << t.why().toStdString();
}

// Copies must be what an MP4 holds; out of files that are neither MKV nor
// MP4 they go through MEncoder's and MPlayer's dumps, which lose some.
TEST(MCMp4TabRulesTest, CopiesAnMp4CannotHoldAsTheyComeAreRefusedUntilConverted)
{
    const struct
    {
        QList<TrackShape> tracks;
        const char *extension, *refusal;
        void (MCMkvTabRules::*setRow)(int);
        int row;
    } cases[] = {
        {{{"Video", "VC-1"}, {"Audio", "ac3", "2"}}, "wmv", "choose MPEG-4", &Row::setVideoMatrixIndex, Row::VideoOnePass},
        {{{"Video", "mpeg4"}, {"Audio", "mp3", "6", "German"}}, "avi", "the German audio track", &Row::setAudioMatrixIndex, Row::AudioAc351},
        {{{"Video", "mpeg4"}, {"Audio", "eac3", "6", "German"}}, "avi", "the German audio track", &Row::setAudioMatrixIndex, Row::AudioAc351},
        // A TS picture gets a tag no muxer reads; its ADTS sound is fine.
        {{{"Video", "h264"}, {"Audio", "aac", "2"}}, "ts", "out of the TS file", &Row::setVideoMatrixIndex, Row::VideoOnePass},
        // A dumped H.264 loses its picture order.
        {{{"Video", "h264"}, {"Audio", "ac3", "2"}}, "avi", "", &Row::setVideoMatrixIndex, Row::VideoOnePass},
        // MPlayer dumps a MOV's AAC without the headers that frame it.
        {{{"Video", "mpeg4"}, {"Audio", "aac", "2"}}, "mov", "AAC sound out of the MOV file", &Row::setAudioMatrixIndex, Row::AudioAacStereo},
        {{{"Video", "h264"}, {"Audio", "aac", "2"}, {"Subtitle", "pgs"}}, "mkv", "text subtitles only", &Row::setSubtitleMatrixIndex, Row::SubtitleDrop},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.extension << " " << c.refusal);
        Mp4Tab t(c.tracks, c.extension);
        t.refusedUntil(c.refusal, c.setRow, c.row);
    }
    Mp4Tab mpeg4({{"Video", "mpeg4"}, {"Audio", "ac3", "2"}}, "avi");
    EXPECT_TRUE(mpeg4.rules.canConvert) << mpeg4.why().toStdString();

    // The stereo copy beside a copied AC-3 track is AAC.
    Mp4Tab t({{"Video", "h264"}, {"Audio", "ac3", "6"}});
    t.rules.mp4Tab()->setAddStereoTrack(true);
    t.rules.updateTabs();
    ASSERT_EQ(t.record().addedAudioTrackList.size(), 1);
    EXPECT_EQ(t.record().addedAudioTrackList.first()->userCodec, QStringLiteral("aac"));
    EXPECT_TRUE(t.rules.canConvert) << t.why().toStdString();
}

TEST(MCMp4TabRulesTest, SubtitlesAreMuxedAsTextFromFilesTheJobCanReadThemFrom)
{
    Mp4Tab mkv({{"Video", "h264"}, {"Audio", "aac", "2"}, {"Subtitle", "ass"}});
    EXPECT_TRUE(mkv.rules.canConvert) << mkv.why().toStdString();
    EXPECT_EQ(mkv.track(2)->userCodec, QStringLiteral("mux"));

    Mp4Tab avi({{"Video", "mpeg4"}, {"Audio", "ac3", "2"}}, "avi");
    auto added = makeTrack({"External Subtitle", "srt", "0", "English", true, true});
    added->trackFileExtension = QStringLiteral("srt");
    avi.rules.currentVideoFile()->trackList.append(added);
    avi.rules.trackTableSelectionChanged();
    EXPECT_TRUE(avi.rules.canConvert) << avi.why().toStdString();

    Mp4Tab inside({{"Video", "mpeg4"}, {"Audio", "ac3", "2"}, {"Subtitle", "srt"}}, "avi");
    EXPECT_FALSE(inside.rules.canConvert);
    EXPECT_TRUE(inside.why().contains(QStringLiteral("inside this AVI file"))) << inside.why().toStdString();
}

// A best guess copies what an MP4 holds and converts the rest.
TEST(MCMp4TabRulesTest, AnMp4PresetCopiesWhatAnMp4HoldsAndNamesItsDevice)
{
    Rules r;
    const auto file = makeFile({{"Video", "mpeg2"}, {"Audio", "dts", "6"}, {"Audio", "aac", "2"}, {"Subtitle", "srt"}}, QStringLiteral("mkv"));
    file->theVideoCodec = QStringLiteral("mpeg2");
    r.load(file);
    MCPresetSettings preset(file, &r.rules);
    preset.initializeAsNewUserPreset();
    preset.pTarget = QStringLiteral("MP4");
    preset.pDevice = QStringLiteral("Apple TV 3");
    preset.setPVideoActionIndex(3);
    preset.pStereoActionIndex = 2;
    preset.pSurroundActionIndex = 3;
    preset.makeSettings();
    r.rules.updateTabs();
    EXPECT_EQ(r.rules.currentTab(), QStringLiteral("MP4"));
    ASSERT_TRUE(r.rules.canConvert) << r.rules.convertRefusalText().toStdString();
    EXPECT_EQ(r.record().theDevice, QStringLiteral("Apple TV 3"));
    QStringList codecs;
    for (const MCVideoTrackPtr &track : file->trackList)
        codecs << track->userCodec;
    EXPECT_EQ(codecs, (QStringList{"mpeg4", "ac3", "passthru", "mux"}));
}

} // namespace
