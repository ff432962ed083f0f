#include "MCMkvTabRules.h"
#include "RulesTestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

TEST(MCMkvPresetTest, StoredPresetsWithoutATargetStayAviPresets)
{
    MCPresetSettings stored;
    stored.initializeAsNewUserPreset();
    QVariantMap record = stored.makeRecord();
    EXPECT_EQ(record.value(QStringLiteral("pTarget")).toString(), QStringLiteral("AVI"));
    record.remove(QStringLiteral("pTarget")); // written before there was a target
    MCPresetSettings old;
    old.initFromRecord(record);
    EXPECT_EQ(old.pTarget, QStringLiteral("AVI"));

    record.insert(QStringLiteral("pTarget"), QStringLiteral("MKV"));
    MCPresetSettings mkv;
    mkv.initFromRecord(record);
    EXPECT_EQ(mkv.makeRecord().value(QStringLiteral("pTarget")).toString(), QStringLiteral("MKV"));
}

TEST(MCMkvPresetTest, AnMkvPresetFillsTheMkvTabTrackByTrack)
{
    Rules r;
    const auto file = makeFile({{"Video", "h264"}, {"Audio", "dts", "6"}, {"Audio", "aac", "2"}, {"Subtitle", "ass"}},
                               QStringLiteral("mkv"));
    r.load(file);
    MCPresetSettings preset(file, &r.rules);
    preset.initializeAsNewUserPreset();
    preset.pTarget = QStringLiteral("MKV");
    preset.setPVideoActionIndex(4); // a best guess: an MKV holds the picture as it is
    preset.pSurroundActionIndex = 2;  // AC3 (5.1)
    preset.pStereoActionIndex = 1;    // MP3 (2-Ch.), which an MKV gets as AAC
    preset.pAudioAddStereo = true;
    preset.pSubAction = QStringLiteral("Burn (hard)");
    preset.makeSettings();
    r.rules.updateTabs();

    EXPECT_EQ(r.rules.currentTab(), QStringLiteral("MKV"));
    ASSERT_TRUE(r.rules.canConvert) << r.rules.convertRefusalText().toStdString();
    EXPECT_EQ(r.record().jobType, QStringLiteral("MKV Conversion"));
    const MCTrackList &tracks = file->trackList;
    EXPECT_EQ(tracks.at(0)->userCodec, QStringLiteral("passthru"));
    EXPECT_EQ(tracks.at(1)->userCodec, QStringLiteral("ac3"));
    EXPECT_EQ(tracks.at(1)->userNumberOfChannels, QStringLiteral("6"));
    EXPECT_EQ(tracks.at(2)->userCodec, QStringLiteral("aac"));
    EXPECT_EQ(tracks.at(2)->userNumberOfChannels, QStringLiteral("2"));
    EXPECT_EQ(tracks.at(3)->userCodec, QStringLiteral("mux")); // never burnt into an MKV
    // The stereo copy stands beside the surround track, and the rows show
    // the chosen (first) track's choice rather than overwrite it.
    EXPECT_EQ(r.record().addedAudioTrackList.size(), 1);
    EXPECT_EQ(r.rules.mkvTab()->audioMatrixIndex(), MCMkvTabRules::AudioAc351);
    EXPECT_TRUE(r.rules.mkvTab()->addStereoTrack());

    preset.pTarget = QStringLiteral("AVI");
    preset.makeSettings();
    EXPECT_EQ(r.rules.currentTab(), QStringLiteral("AVI"));
}

} // namespace
