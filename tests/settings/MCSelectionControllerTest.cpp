#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

TEST(MCSelectionControllerTest, ChoicesTheToolsCannotDoAreRefusedWithAReason)
{
    struct Case
    {
        QList<TrackShape> tracks;
        int videoRow, audioRow;
        const char *typedBitRate;
        const char *refusal; // part of the reason; nullptr: may convert
        const char *extension = "avi";
        int subtitleRow = 0; // burn
    };
    const QList<TrackShape> aac{{"Video", "mpeg4"}, {"Audio", "aac", "2"}}, h264{{"Video", "h264"}, {"Audio", "mp3", "2"}};
    const QList<TrackShape> dts{{"Video", "mpeg4"}, {"Audio", "dts", "6"}};
    const QList<TrackShape> withSubtitle{{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "srt"}};
    const Case cases[] = {
        {aac, 0, 0, "1000", "cannot hold AAC audio as it is: choose MP3."},
        {{{"Video", "mpeg4"}, {"Audio", "opus", "6"}}, 0, 0, "1000", "choose MP3 or AC-3 5.1."},
        {dts, 0, 0, "1000", nullptr}, // DTS, MP2 and WMA pass
        {{{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}, 0, 2, "1000", "this one has 2: choose MP3."},
        {h264, 1, 0, "0", "does not declare its bit rate"},
        {h264, 2, 0, "3", "at least 4 kbit/s"},
        {h264, 1, 0, "fast", "whole number of kbit/s"},
        {h264, 0, 0, "fast", nullptr}, // a copied picture ignores the bit rate
        {withSubtitle, 0, 0, "1000", "Burning a subtitle needs the video re-encoded"},
        {{{"Video", "vp9"}, {"Audio", "mp3", "2"}}, 0, 0, "1000", "cannot hold VP9 video"},
        {{{"Video", "mpeg2"}, {"Audio", "mp2", "2"}}, 0, 0, "1000", "out of a transport stream", "m2ts"},
        {{{"Video", "mpeg2"}, {"Audio", "ac3", "6"}}, 0, 0, "1000", nullptr, "vob"},
        {{{"Video", "h264"}, {"Audio", "mp3", "2"}, {"Audio", "ac3", "6"}}, 0, 0, "1000", "(selected: 1 video, 2 audio, 0 subtitle)"},
        {{{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "srt"}, {"Subtitle", "ass"}}, 1, 0, "1000", "2 subtitle)"},
        // No tool takes a subtitle out of these: the job would fail after writing the AVI.
        {withSubtitle, 0, 0, "1000", "cannot extract a subtitle from a .avi file", "avi", 1},
        {withSubtitle, 0, 0, "1000", "from a .ts file: burn it in", "ts", 1},
        {withSubtitle, 0, 0, "1000", "from a .ogm file", "ogm", 1},
        {withSubtitle, 0, 0, "1000", nullptr, "mkv", 1},
        {withSubtitle, 1, 0, "1000", nullptr, "ts", 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.extension << " rows " << c.videoRow << c.audioRow << c.subtitleRow << " "
                                        << (c.refusal ? c.refusal : "allowed"));
        Rules r;
        auto file = makeFile(c.tracks, QString::fromLatin1(c.extension));
        file->theVideoBitRate = QString::fromLatin1(c.typedBitRate) == QLatin1String("0") ? QStringLiteral("0") : QStringLiteral("1000");
        r.load(file);
        r.rules.setVideoMatrixIndex(c.videoRow);
        r.rules.setAudioMatrixIndex(c.audioRow);
        r.rules.setSubtitleMatrixIndex(c.subtitleRow);
        r.rules.setEnteredUserVideoBitRate(QString::fromLatin1(c.typedBitRate));
        EXPECT_EQ(r.rules.canConvert, c.refusal == nullptr);
        EXPECT_EQ(r.rules.convertRefusalText().isEmpty(), c.refusal == nullptr);
        EXPECT_TRUE(r.rules.convertRefusalText().contains(QString::fromLatin1(c.refusal ? c.refusal : "")))
            << r.rules.convertRefusalText().toStdString();
    }
}

TEST(MCSelectionControllerTest, ARefusalIsAnnouncedOnceAndLiftedWithTheChoice)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}));
    QStringList announced;
    QObject::connect(&r.rules, &MCSelectionController::convertRefusalTextChanged, [&announced](const QString &text) { announced << text; });
    // LAME refuses "preset=448".
    r.rules.setAudioMatrixIndex(1);
    r.record().userAudioBitRate = QStringLiteral("448");
    r.rules.updateTabs();
    r.rules.updateTabs();
    r.record().userAudioBitRate = QStringLiteral("320");
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canConvert);
    EXPECT_EQ(announced, (QStringList{QStringLiteral("MP3 goes up to 320 kbit/s: choose a lower audio bit rate."), QString()}));
}

// What each row writes is run end to end by the conversion matrix; the
// rows' bit rates are not.
TEST(MCSelectionControllerTest, AudioRowsWriteTheirBitRates)
{
    Rules r;
    r.load(makeFile({{"Video", "h264"}, {"Audio", "dts", "6"}}));
    const MCVideoTrack &audio = *r.rules.currentVideoFile()->trackList[1];
    r.rules.setAudioMatrixIndex(1);
    r.rules.updateTabs();
    EXPECT_EQ(audio.userCodec + u' ' + audio.userNumberOfChannels + u' ' + audio.userBitRate, QStringLiteral("mp3 2 160"));
    // The 448 row only changes the bit rate the AC3 row then writes.
    r.rules.setAudioMatrixIndex(3);
    EXPECT_EQ(r.record().userAudioBitRate, QStringLiteral("448"));
    r.rules.setAudioMatrixIndex(2);
    r.rules.updateTabs();
    EXPECT_EQ(audio.userCodec + u' ' + audio.userNumberOfChannels + u' ' + audio.userBitRate, QStringLiteral("ac3 6 384"));
}

TEST(MCSelectionControllerTest, StereoCopyIsRebuiltOnTheNextTurnAndGoesWithAStereoMix)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "ac3", "6"}}));
    r.rules.setAddStereoTrackButton(1);
    QCoreApplication::processEvents();
    ASSERT_EQ(r.record().addedAudioTrackList.size(), 1);
    EXPECT_EQ(r.record().addedAudioTrackList[0]->userNumberOfChannels, QStringLiteral("2"));

    r.rules.setAudioMatrixIndex(1);
    r.rules.updateTabs();
    EXPECT_EQ(r.rules.addStereoTrackButton(), 0);
    QCoreApplication::processEvents();
    EXPECT_TRUE(r.record().addedAudioTrackList.isEmpty());
}

TEST(MCSelectionControllerTest, AudioChooserFollowsTheSelectedTracks)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "ac3", "6"}, {"Audio", "mp3", "2", "French", false}}));
    EXPECT_EQ(r.rules.audioTrackLabels(), QStringList{QStringLiteral("6 Ch. AC3 - English")});
    EXPECT_TRUE(r.rules.hideAudioTrackPopupFlag);

    // Selecting a track ahead of the chosen one keeps the chosen one chosen.
    MCTrackList &tracks = r.rules.currentVideoFile()->trackList;
    tracks.move(2, 1);
    tracks[1]->trackSelected = true;
    r.rules.trackTableSelectionChanged();
    EXPECT_EQ(r.rules.audioTrackLabels(), (QStringList{QStringLiteral("2 Ch. MP3 - French"), QStringLiteral("6 Ch. AC3 - English")}));
    EXPECT_EQ(r.rules.audioTrackPopupIndex(), 1);
    EXPECT_FALSE(r.rules.hideAudioTrackPopupFlag);

    // Choosing a track takes its row from what it already asks for.
    tracks[1]->userCodec = QStringLiteral("mp3");
    tracks[1]->userNumberOfChannels = QStringLiteral("2");
    tracks[1]->userBitRate = QStringLiteral("224");
    r.rules.setAudioTrackPopupIndex(0);
    EXPECT_EQ(r.rules.audioMatrixIndex(), 1);
    EXPECT_EQ(r.record().userAudioBitRate, QStringLiteral("224"));
    r.rules.setAudioTrackPopupIndex(150);
    EXPECT_EQ(r.rules.audioTrackPopupIndex(), 0);
}

TEST(MCSelectionControllerTest, TypedNumbersAreNormalised)
{
    const struct
    {
        const char *typed, *bitRate, *fps;
    } cases[] = {{"abc", "0", "0"}, {"1500.6", "1501", "1500.6"}, {"23.9764", "24", "23.976"}, {"1,000", "0", "0"}, {"25.0", "25", "25"}};
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}));
    for (const auto &c : cases) {
        SCOPED_TRACE(c.typed);
        r.rules.setEnteredUserVideoBitRate(QString::fromLatin1(c.typed));
        r.rules.setEnteredUserFPS(QString::fromLatin1(c.typed));
        EXPECT_EQ(r.record().userVideoBitRate, QString::fromLatin1(c.bitRate));
        EXPECT_EQ(r.rules.userBitRateOK, r.record().userVideoBitRate != QLatin1String("0"));
        EXPECT_EQ(r.record().userFPS, QString::fromLatin1(c.fps));
        EXPECT_EQ(r.rules.userFPSOK, r.record().userFPS != QLatin1String("0"));
    }
}

// A click on the table cancels the track preset; a tab change the settings preset.
TEST(MCSelectionControllerTest, HandChoicesCancelPresets)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}));
    r.presets.setSelectionMethodIndex(1);
    r.presets.setSettingMethodIndex(1);
    r.rules.trackTableSelectionChanged(MCSelectionController::senderTrackTable);
    EXPECT_EQ(r.presets.selectionMethodIndex(), 0);
    EXPECT_EQ(r.presets.settingMethodIndex(), 1); // "Extract Tracks" switched tabs itself
    EXPECT_EQ(r.rules.currentTab(), MCSelectionController::tabEditTracks);
    r.rules.setCurrentTab(MCSelectionController::tabAvi);
    EXPECT_EQ(r.presets.settingMethodIndex(), 0);
}

} // namespace
