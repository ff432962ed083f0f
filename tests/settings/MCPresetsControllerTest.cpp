#include "MCPreferences.h"
#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

TEST(MCPresetsControllerTest, UserPresetsSurviveARestartInOrder)
{
    QTemporaryDir dir;
    const QString settingsFile = dir.filePath(QStringLiteral("Kestrane.conf"));
    {
        MCPreferences preferences(settingsFile);
        Rules r(&preferences);
        r.presets.addPresetSelection();
        r.presets.selectedPresetSelections()->pName = QStringLiteral("Films");
        r.presets.addPresetSelection();
        r.presets.selectedPresetSelections()->pName = QStringLiteral("Series");
        r.presets.selectedPresetSelections()->addDictionaryToSubtitleFilterArray();
        r.presets.addPresetSettings();
        r.presets.selectedPresetSettings()->pName = QStringLiteral("Small");
        r.presets.okPresetSelectionPanel();
        r.presets.okPresetSettingsPanel();
        EXPECT_EQ(r.presets.selectionMethodIndex(), 3); // the one selected in the list view
        EXPECT_EQ(r.presets.settingMethodIndex(), 2);
    }
    MCPreferences preferences(settingsFile);
    Rules r(&preferences);
    EXPECT_EQ(r.presets.presetSelectionsNamesList, (QStringList{"Manual", "First Track", "Films", "Series"}));
    EXPECT_EQ(r.presets.presetSettingsNamesList, (QStringList{"Manual", "Extract Tracks", "Small"}));
    EXPECT_EQ(r.presets.presetSelectionsList.at(3)->pSubtitleFilterArray.size(), 2);
    EXPECT_FALSE(r.presets.presetSelectionsList.at(1)->isEditable);
}

// The "+" of the last row adds a filter; a "-" removes the one before it.
TEST(MCPresetsControllerTest, FilterRowsAddAndRemoveFilters)
{
    Rules r;
    MCPresetsController &p = r.presets;
    p.addPresetSelection();
    EXPECT_FALSE(p.af2Visibility());
    p.addFilterButtonClicked(192);
    p.addFilterButtonClicked(193);
    ASSERT_EQ(p.currentAudioFilterArray.size(), 3);
    EXPECT_TRUE(p.af3Visibility());
    EXPECT_EQ(p.filterRowForTag(193).addTitle, QStringLiteral("-"));

    p.selectedPresetSelections()->pAudioFilterArray[2] =
        MCPresetSelections::audioFilter(QStringLiteral("Tracks w/ Properties ..."), "1", "French", "Any Codec", "Any Type");
    p.addFilterButtonClicked(193);
    ASSERT_EQ(p.currentAudioFilterArray.size(), 2);
    EXPECT_EQ(p.currentAudioFilterArray.at(1).toMap().value("currentLanguage"), QStringLiteral("French"));
    EXPECT_FALSE(p.af3Visibility());
    EXPECT_EQ(p.filterRowForTag(193).addTitle, QStringLiteral("+"));
}

} // namespace
