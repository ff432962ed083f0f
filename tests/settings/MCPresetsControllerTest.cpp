#include "MCPreferences.h"
#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

class MCPresetsControllerTest : public ::testing::Test
{
protected:
    QString settingsFile() const { return dir.filePath(QStringLiteral("Kestrane.conf")); }

    QTemporaryDir dir;
};

TEST_F(MCPresetsControllerTest, UserPresetsSurviveARestartInOrder)
{
    {
        MCPreferences preferences(settingsFile());
        Rules r(&preferences);
        // Only built-ins: an empty list is saved.
        r.presets.okPresetSelectionPanel();
        EXPECT_TRUE(preferences.userPresetSelectionsList.isEmpty());

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
    MCPreferences preferences(settingsFile());
    Rules r(&preferences);
    EXPECT_EQ(r.presets.presetSelectionsNamesList,
              (QStringList{"Manual", "First Track", "Films", "Series"}));
    EXPECT_EQ(r.presets.presetSettingsNamesList, (QStringList{"Manual", "Extract Tracks", "Small"}));
    EXPECT_EQ(r.presets.presetSelectionsList.at(3)->pSubtitleFilterArray.size(), 2);
    EXPECT_TRUE(r.presets.presetSelectionsList.at(2)->isEditable);
    EXPECT_FALSE(r.presets.presetSelectionsList.at(1)->isEditable);
}

TEST_F(MCPresetsControllerTest, RemovingGuardsBuiltInsAndMovesTheSelection)
{
    MCPreferences preferences(settingsFile());
    Rules r(&preferences);
    r.presets.openPresetSelectionPanel();
    EXPECT_EQ(r.presets.selectionsTableIndex(), 0); // "First Track"; the view leaves out "Manual"
    r.presets.removePresetSelection();
    EXPECT_EQ(r.presets.presetSelectionsList.size(), 2);

    r.presets.addPresetSelection();
    r.presets.addPresetSelection();
    r.presets.setSelectionMethodIndex(3);
    r.presets.selectionListTableClicked(1); // the first user preset
    r.presets.removePresetSelection();
    EXPECT_EQ(r.presets.selectionsTableIndex(), 0);
    EXPECT_EQ(r.presets.selectionMethodIndex(), 2); // still the preset that was in force
    r.presets.selectionListTableClicked(1);
    r.presets.removePresetSelection();
    EXPECT_EQ(r.presets.selectionMethodIndex(), 0);

    r.presets.openPresetSettingsPanel();
    r.presets.removePresetSettings();
    EXPECT_EQ(r.presets.presetSettingsNamesList, (QStringList{"Manual", "Extract Tracks"}));
}

TEST_F(MCPresetsControllerTest, FilterRowsFollowTheFiltersAndTheEditing)
{
    Rules r;
    MCPresetsController &p = r.presets;
    p.addPresetSelection();
    EXPECT_TRUE(p.af1Visibility());
    EXPECT_FALSE(p.af2Visibility());
    EXPECT_EQ(p.filterRowForTag(192).addTitle, QStringLiteral("+"));

    p.addFilterButtonClicked(192);
    p.addFilterButtonClicked(193);
    ASSERT_EQ(p.currentAudioFilterArray.size(), 3);
    EXPECT_TRUE(p.af3Visibility());
    EXPECT_EQ(p.filterRowForTag(193).addTitle, QStringLiteral("-"));

    // Hovering loads the row's filter; clicking "Edit" starts editing.
    p.filterButtonEntered(103);
    EXPECT_EQ(p.filterRowForTag(103).editTitle, QStringLiteral("Edit"));
    EXPECT_EQ(p.afUserTrackChoice(), QStringLiteral("Audio Track Number"));
    p.editFilterPanel(103);
    EXPECT_TRUE(p.isEditingAudioFilter());
    EXPECT_FALSE(p.filterRowForTag(101).editEnabled);
    EXPECT_FALSE(p.filterRowForTag(102).editEnabled);
    EXPECT_FALSE(p.filterRowForTag(192).addEnabled);
    EXPECT_TRUE(p.filterRowForTag(193).addEnabled);
    p.filterButtonExited(103);
    EXPECT_EQ(p.filterRowForTag(103).editTitle, QStringLiteral("Done"));

    p.setAfUserTrackChoice(QStringLiteral("Tracks w/ Properties ..."));
    EXPECT_EQ(p.afPanelHeight(), 260);
    p.afUserLanguage = QStringLiteral("French");
    p.editFilterPanel(103);
    EXPECT_FALSE(p.isEditingAudioFilter());
    EXPECT_EQ(p.filterRowForTag(103).editTitle, QStringLiteral("Filter #3"));
    EXPECT_TRUE(p.filterRowForTag(101).editEnabled);
    EXPECT_EQ(p.selectedPresetSelections()->pAudioFilterArray.at(2).toMap().value("currentLanguage"),
              QStringLiteral("French"));

    // The row-3 "-" removes the second filter: the third moves up.
    p.selectedPresetSelections()->pAudioFilterArray[1] =
        MCPresetSelections::audioFilter(QStringLiteral("None"), "1", "Any Language", "Any Codec", "Any Type");
    p.addFilterButtonClicked(193);
    ASSERT_EQ(p.currentAudioFilterArray.size(), 2);
    EXPECT_EQ(p.currentAudioFilterArray.at(1).toMap().value("currentLanguage"), QStringLiteral("French"));
    EXPECT_FALSE(p.af3Visibility());
    EXPECT_EQ(p.filterRowForTag(193).addTitle, QStringLiteral("+"));

    p.setAfUserTrackChoice(QStringLiteral("None"));
    EXPECT_EQ(p.afPanelHeight(), 100);
    p.setSfUserTrackChoice(QStringLiteral("Tracks w/ Properties ..."));
    EXPECT_EQ(p.sfPanelHeight(), 202);
}

} // namespace
