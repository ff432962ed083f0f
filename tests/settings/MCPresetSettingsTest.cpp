#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

// A settings preset applied to a loaded one-video, one-audio file.
struct Applied : Rules
{
    explicit Applied(const QList<TrackShape> &tracks)
        : file(makeFile(tracks)), preset(file, &rules)
    {
        load(file);
        preset.initializeAsNewUserPreset();
    }
    std::shared_ptr<MCVideoFile> file;
    MCPresetSettings preset;
};

struct Outcome
{
    QString width, bitRate;
    int videoRow;
    bool operator==(const Outcome &) const = default;
};

Outcome bestGuess(const char *device, const char *size, const char *bitRate, const char *codec, int action = 4, bool burn = false)
{
    QList<TrackShape> tracks{{"Video", codec}, {"Audio", "mp3", "2"}};
    if (burn)
        tracks.append(TrackShape{"Subtitle", "srt"});
    Applied a(tracks);
    a.file->theWidth = QString::fromLatin1(size).section(u'x', 0, 0);
    a.file->theHeight = QString::fromLatin1(size).section(u'x', 1, 1);
    a.file->theVideoBitRate = QString::fromLatin1(bitRate);
    a.file->theVideoCodec = QString::fromLatin1(codec);
    a.load(a.file);
    a.preset.pDevice = QString::fromLatin1(device);
    a.preset.setPVideoActionIndex(action);
    a.preset.pVideoBitRateIndex = 0;
    a.preset.pSubAction = burn ? QStringLiteral("Burn (hard)") : QStringLiteral("Extract");
    a.preset.makeSettings();
    return {a.record().userWidth, a.record().userVideoBitRate, a.rules.videoMatrixIndex()};
}

TEST(MCPresetSettingsTest, BestGuessVideoPerDevice)
{
    const struct
    {
        const char *what;
        Outcome got, expected;
    } cases[] = {
        {"DivX DVD keeps 720 and scales the bit rate", bestGuess("DivX DVD", "1280x720", "2000", "h264"), {"720", "1125", 2}},
        {"DivX DVD narrows to 640", bestGuess("DivX DVD", "704x576", "1000", "h264", 3), {"640", "909", 1}},
        {"MPEG-4 small enough passes through", bestGuess("DivX DVD", "640x480", "1000", "mpeg4"), {"640", "0", 0}},
        {"burning forces encoding", bestGuess("DivX DVD", "640x480", "1000", "mpeg4", 4, true), {"640", "1000", 2}},
        {"huge bit rates are capped", bestGuess("DivX DVD", "1280x720", "20000", "h264"), {"720", "2000", 2}},
        {"PS3 passes MPEG-4 through", bestGuess("PS3", "1280x720", "4000", "mpeg4"), {"1280", "4000", 0}},
        {"Xbox encodes anything else", bestGuess("Xbox", "1280x720", "4000", "h264", 3), {"1280", "4000", 1}},
        {"an unknown device leaves the row", bestGuess("Apple TV", "1280x720", "4000", "h264"), {"0", "0", 0}},
    };
    for (const auto &c : cases)
        EXPECT_TRUE(c.got == c.expected) << c.what << ": " << c.got.width.toStdString() << " " << c.got.bitRate.toStdString()
                                         << " row " << c.got.videoRow;
}

TEST(MCPresetSettingsTest, ChosenVideoNeverUpscalesAndCustomRateWins)
{
    Applied a({{"Video", "h264"}, {"Audio", "mp3", "2"}});
    a.preset.pDevice = QStringLiteral("General");
    a.preset.setPVideoActionIndex(2);
    a.preset.pWidthIndex = 1;
    a.preset.pWidth = QStringLiteral("1920");
    a.preset.makeSettings();
    EXPECT_EQ(a.record().userWidth, QStringLiteral("640"));
    EXPECT_EQ(a.record().userVideoBitRate, QStringLiteral("1000")); // the custom rate of a new preset
    a.preset.pWidth = QStringLiteral("480");
    a.preset.makeSettings();
    EXPECT_EQ(a.record().userWidth, QStringLiteral("480"));
}

TEST(MCPresetSettingsTest, AudioRulesPerChannelLayout)
{
    const struct
    {
        TrackShape track;
        int stereoAction;
        const char *stereoRate;
        int surroundAction;
        const char *codec, *channels, *bitRate;
        int row;
    } cases[] = {
        {{"Audio", "aac", "6"}, 0, "160", 3, "ac3", "6", "448", 2},
        {{"Audio", "ac3", "6"}, 0, "160", 3, "passthru", "6", "0", 0},
        // The surround rows look at the stereo rate for "Original".
        {{"Audio", "dts", "6"}, 0, "Original", 2, "ac3", "6", "192", 2},
        {{"Audio", "dts", "6"}, 0, "Original", 1, "mp3", "2", "160", 1},
        {{"Audio", "aac", "2"}, 1, "Original", 0, "mp3", "2", "192", 1},
        {{"Audio", "aac", "2"}, 2, "224", 0, "mp3", "2", "224", 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.track.codec << " " << c.stereoAction << c.surroundAction << " " << c.stereoRate);
        Applied a({{"Video", "mpeg4"}, c.track});
        a.preset.pStereoActionIndex = c.stereoAction;
        a.preset.pStereoBitRate = QString::fromLatin1(c.stereoRate);
        a.preset.pSurroundActionIndex = c.surroundAction;
        a.preset.makeSettings();
        const MCVideoTrack &audio = *a.file->trackList[1];
        EXPECT_EQ((QStringList{audio.userCodec, audio.userNumberOfChannels, audio.userBitRate}),
                  (QStringList{c.codec, c.channels, c.bitRate}));
        EXPECT_EQ(a.rules.audioMatrixIndex(), c.row);
    }
}

TEST(MCPresetSettingsTest, RecordsRoundTripAndOldOnesStayAviPresets)
{
    Applied a({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}});
    a.preset.initializeAsExtract();
    a.preset.makeSettings();
    EXPECT_EQ(a.rules.currentTab(), MCSelectionController::tabEditTracks);
    EXPECT_EQ(a.rules.editTrackMatrixIndex(), 0);
    QVariantMap record = a.preset.makeRecord();
    MCPresetSettings reread;
    reread.initFromRecord(record);
    EXPECT_EQ(reread.makeRecord(), record);

    record.remove(QStringLiteral("pTarget")); // written before there were targets
    MCPresetSettings old;
    old.initFromRecord(record);
    EXPECT_EQ(old.pTarget, QStringLiteral("AVI"));
}

} // namespace
