#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

TEST(MCPresetSettingsTest, ScaledBitRate)
{
    EXPECT_EQ(MCPresetSettings::quickBitRateCalcFor("2000", "720", "1280"), QStringLiteral("1125"));
    EXPECT_EQ(MCPresetSettings::quickBitRateCalcFor("1000", "640", "704"), QStringLiteral("909"));
    EXPECT_EQ(MCPresetSettings::quickBitRateCalcFor("1000", "720", "720"), QStringLiteral("1000"));
    EXPECT_EQ(MCPresetSettings::quickBitRateCalcFor("1000", "720", "0"), QStringLiteral("1000"));
}

// A best-guess preset applied to a loaded one-video, one-audio file.
struct Outcome
{
    QString width;
    QString bitRate;
    int videoRow;
};

Outcome bestGuess(const char *device, const char *width, const char *height, const char *bitRate,
                  const char *codec, int action = 4, bool burnSubtitle = false)
{
    Rules r;
    QList<TrackShape> tracks{{"Video", codec}, {"Audio", "mp3", "2"}};
    if (burnSubtitle)
        tracks.append(TrackShape{"Subtitle", "srt"});
    const auto file = makeFile(tracks);
    file->theWidth = QString::fromLatin1(width);
    file->theHeight = QString::fromLatin1(height);
    file->theVideoBitRate = QString::fromLatin1(bitRate);
    file->theVideoCodec = QString::fromLatin1(codec);
    r.load(file);
    MCPresetSettings preset(file, &r.rules);
    preset.initializeAsNewUserPreset();
    preset.pDevice = QString::fromLatin1(device);
    preset.setPVideoActionIndex(action);
    preset.pVideoBitRateIndex = 0;
    preset.pSubAction = burnSubtitle ? QStringLiteral("Burn (hard)") : QStringLiteral("Extract");
    preset.makeSettings();
    EXPECT_EQ(r.rules.mp4Device(), QString::fromLatin1(device));
    return {r.record().userWidth, r.record().userVideoBitRate, r.rules.videoMatrixIndex()};
}

TEST(MCPresetSettingsTest, BestGuessVideo)
{
    struct Case
    {
        const char *what;
        Outcome got;
        Outcome expected;
    };
    const Case cases[] = {
        {"DivX DVD from 1280x720 keeps 720 and scales the bit rate",
         bestGuess("DivX DVD", "1280", "720", "2000", "h264"), {"720", "1125", 2}},
        {"DivX DVD from 704x576 narrows to 640", bestGuess("DivX DVD", "704", "576", "1000", "h264", 3),
         {"640", "909", 1}},
        {"DivX DVD from 1024x768 narrows to 640", bestGuess("DivX DVD", "1024", "768", "3000", "h264"),
         {"640", "1875", 2}},
        {"MPEG-4 already small enough passes through", bestGuess("DivX DVD", "640", "480", "1000", "mpeg4"),
         {"640", "0", 0}},
        {"burning forces encoding", bestGuess("DivX DVD", "640", "480", "1000", "mpeg4", 4, true),
         {"640", "1000", 2}},
        {"huge bit rates are capped", bestGuess("DivX DVD", "1280", "720", "20000", "h264"), {"720", "2000", 2}},
        {"PS3 passes MPEG-4 through", bestGuess("PS3", "1280", "720", "4000", "mpeg4"), {"1280", "4000", 0}},
        {"Xbox encodes anything else", bestGuess("Xbox", "1280", "720", "4000", "h264", 3), {"1280", "4000", 1}},
        {"an unknown device leaves the row", bestGuess("Apple TV", "1280", "720", "4000", "h264"),
         {"0", "0", 0}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.got.width, c.expected.width);
        EXPECT_EQ(c.got.bitRate, c.expected.bitRate);
        EXPECT_EQ(c.got.videoRow, c.expected.videoRow);
    }
}

TEST(MCPresetSettingsTest, ChosenVideoNeverUpscalesAndCustomRateWins)
{
    Rules r;
    const auto file = makeFile({{"Video", "h264"}, {"Audio", "mp3", "2"}});
    r.load(file);
    MCPresetSettings preset(file, &r.rules);
    preset.initializeAsNewUserPreset();
    preset.pDevice = QStringLiteral("General");
    preset.setPVideoActionIndex(2);
    preset.pWidthIndex = 1;
    preset.pWidth = QStringLiteral("1920");
    preset.makeSettings();
    EXPECT_EQ(r.record().userWidth, QStringLiteral("640"));
    EXPECT_EQ(r.record().userVideoBitRate, QStringLiteral("1000")); // the custom rate of a new preset
    EXPECT_EQ(r.rules.videoMatrixIndex(), 2);
    EXPECT_EQ(r.record().userPassNumber, QStringLiteral("2"));

    preset.pWidth = QStringLiteral("480");
    preset.pVideoBitRateIndex = 0;
    preset.makeSettings();
    EXPECT_EQ(r.record().userWidth, QStringLiteral("480"));
    EXPECT_EQ(r.record().userVideoBitRate, QStringLiteral("1000"));
}

TEST(MCPresetSettingsTest, AudioRulesPerChannelLayout)
{
    struct Case
    {
        const char *what;
        TrackShape track;
        int stereoAction;
        const char *stereoRate;
        int surroundAction;
        const char *codec;
        const char *channels;
        const char *bitRate;
    };
    const Case cases[] = {
        {"surround best guess re-encodes AAC", {"Audio", "aac", "6"}, 0, "160", 3, "ac3", "6", "448"},
        {"surround best guess keeps AC3", {"Audio", "ac3", "6"}, 0, "160", 3, "passthru", "6", "0"},
        // The surround rows look at the stereo rate for "Original".
        {"surround to AC3 with Original", {"Audio", "dts", "6"}, 0, "Original", 2, "ac3", "6", "192"},
        {"surround to MP3 with Original", {"Audio", "dts", "6"}, 0, "Original", 1, "mp3", "2", "160"},
        {"stereo to MP3 at its own rate", {"Audio", "aac", "2"}, 1, "Original", 0, "mp3", "2", "192"},
        {"stereo to MP3 at the preset rate", {"Audio", "aac", "2"}, 2, "224", 0, "mp3", "2", "224"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        Rules r;
        const auto file = makeFile({{"Video", "mpeg4"}, c.track});
        r.load(file);
        MCPresetSettings preset(file, &r.rules);
        preset.initializeAsNewUserPreset();
        preset.pStereoActionIndex = c.stereoAction;
        preset.pStereoBitRate = QString::fromLatin1(c.stereoRate);
        preset.pSurroundActionIndex = c.surroundAction;
        preset.makeSettings();
        const MCVideoTrack &audio = *file->trackList[1];
        EXPECT_EQ(audio.userCodec, QString::fromLatin1(c.codec));
        EXPECT_EQ(audio.userNumberOfChannels, QString::fromLatin1(c.channels));
        EXPECT_EQ(audio.userBitRate, QString::fromLatin1(c.bitRate));
        // The audio row follows the track's new wanted output.
        const QLatin1String codec(c.codec);
        const int row = codec == QLatin1String("mp3") ? 1 : codec == QLatin1String("ac3") ? 2 : 0;
        EXPECT_EQ(r.rules.audioMatrixIndex(), row);
    }
}

TEST(MCPresetSettingsTest, ExtractPresetSwitchesToEditTracks)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}));
    MCPresetSettings preset(r.rules.currentVideoFile(), &r.rules);
    preset.initializeAsExtract();
    preset.makeSettings();
    EXPECT_EQ(r.rules.currentTab(), MCSelectionController::tabEditTracks);
    EXPECT_EQ(r.rules.editTrackMatrixIndex(), 0);

    MCPresetSettings reread;
    reread.initFromRecord(preset.makeRecord());
    EXPECT_EQ(reread.makeRecord(), preset.makeRecord());
}

} // namespace
