// The two preset editors: presets added, renamed, changed and removed in
// the sheets reach the preferences' store when the sheet is closed.
#include "MCFilterButton.h"
#include "MCGuiApplication.h"
#include "MCMainWindow.h"
#include "MCMp4TabRules.h"
#include "MCPreferences.h"
#include "MCPresetSelectionsPanel.h"
#include "MCPresetSettingsPanel.h"
#include "MCPresetsController.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QPushButton>
#include <QStringListModel>
#include <QTemporaryDir>

namespace {

class PresetPanelsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        preferences = std::make_unique<MCPreferences>(settingsFile());
        presets = std::make_unique<MCPresetsController>(preferences.get(), nullptr);
        presets->initialize();
        window.show();
    }

    QString settingsFile() const { return dir.path() + QStringLiteral("/kestrane.ini"); }

    // What a fresh start would read back.
    QVariantList stored(bool selections) const
    {
        MCPreferences reread(settingsFile());
        return selections ? reread.userPresetSelectionsList : reread.userPresetSettingsList;
    }

    static void rename(QLineEdit *field, const QString &name)
    {
        field->setText(name);
        emit field->editingFinished();
    }

    QTemporaryDir dir;
    std::unique_ptr<MCPreferences> preferences;
    std::unique_ptr<MCPresetsController> presets;
    QMainWindow window;
};

TEST_F(PresetPanelsTest, SelectionsEditorAddsRenamesAndRemovesUserPresets)
{
    MCPresetSelectionsPanel panel(presets.get(), &window);
    panel.openPresetSelectionPanel();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.windowModality(), Qt::WindowModal);
    EXPECT_EQ(panel.namesModel->stringList(), QStringList{QStringLiteral("First Track")});
    EXPECT_FALSE(panel.removePresetButton->isEnabled()) << "built-in presets stay";
    EXPECT_FALSE(panel.af1EditButton->isEnabled());

    panel.addPresetButton->click();
    EXPECT_EQ(panel.namesModel->stringList(), (QStringList{QStringLiteral("First Track"), QStringLiteral("User Preset")}));
    EXPECT_EQ(panel.selectionsTableController->currentIndex().row(), 1);
    EXPECT_TRUE(panel.removePresetButton->isEnabled());
    rename(panel.nameField, QStringLiteral("Manual"));
    EXPECT_EQ(panel.nameField->text(), QStringLiteral("User Preset")) << "the hidden built-in's name is refused";
    rename(panel.nameField, QStringLiteral("Two audio"));
    panel.af2AddButton->click();
    EXPECT_TRUE(panel.af2EditButton->isVisibleTo(&panel));
    EXPECT_EQ(panel.af2AddButton->text(), QStringLiteral("-"));
    panel.firstVideoCheckBox->click();

    panel.okButton->click();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(presets->selectionMethodIndex(), 2);
    QVariantList records = stored(true);
    ASSERT_EQ(records.size(), 1);
    const QVariantMap record = records.first().toMap();
    EXPECT_EQ(record.value(QStringLiteral("pName")).toString(), QStringLiteral("Two audio"));
    EXPECT_EQ(record.value(QStringLiteral("pSelectedVideoTrack")).toString(), QStringLiteral("0"));
    EXPECT_EQ(record.value(QStringLiteral("pAudioFilterArray")).toList().size(), 2);

    panel.openPresetSelectionPanel();
    EXPECT_EQ(panel.selectionsTableController->currentIndex().row(), 1) << "the preset in force is selected";
    panel.removePresetButton->click();
    EXPECT_EQ(panel.namesModel->stringList(), QStringList{QStringLiteral("First Track")});
    panel.reject(); // closing the sheet keeps what was done, as OK does
    EXPECT_TRUE(stored(true).isEmpty());
    EXPECT_EQ(presets->selectionMethodIndex(), 1);
}

TEST_F(PresetPanelsTest, SettingsEditorWritesTheChosenRowsIntoThePreset)
{
    MCPresetSettingsPanel panel(presets.get(), &window);
    panel.openPresetSettingsPanel();
    EXPECT_EQ(panel.namesModel->stringList(), QStringList{QStringLiteral("Extract Tracks")});
    EXPECT_EQ(panel.typeOfProcessPopUp->currentText(), QStringLiteral("Extract"));
    EXPECT_FALSE(panel.nameField->isEnabled());

    panel.addPresetButton->click();
    EXPECT_EQ(panel.devicePopUp->currentText(), QStringLiteral("Apple TV"));
    EXPECT_EQ(panel.videoActionPopUp->currentText(), QStringLiteral("Best Guess (Quality)"));
    EXPECT_FALSE(panel.widthField->isEnabled()) << "width is the source's";
    panel.widthPopUp->setCurrentIndex(1);
    emit panel.widthPopUp->activated(1);
    EXPECT_TRUE(panel.widthField->isEnabled());
    panel.widthField->setText(QStringLiteral("640"));
    emit panel.widthField->editingFinished();
    panel.videoActionPopUp->setCurrentIndex(2);
    emit panel.videoActionPopUp->activated(2);
    panel.surroundBitRatePopUp->setCurrentText(QStringLiteral("640"));
    emit panel.surroundBitRatePopUp->textActivated(QStringLiteral("640"));

    panel.okButton->click();
    EXPECT_EQ(presets->settingMethodIndex(), 2);
    const QVariantList records = stored(false);
    ASSERT_EQ(records.size(), 1);
    const QVariantMap record = records.first().toMap();
    EXPECT_EQ(record.value(QStringLiteral("pWidthIndex")).toInt(), 1);
    EXPECT_EQ(record.value(QStringLiteral("pWidth")).toString(), QStringLiteral("640"));
    EXPECT_EQ(record.value(QStringLiteral("pVideoActionIndex")).toInt(), 2);
    EXPECT_EQ(record.value(QStringLiteral("pSurroundBitRate")).toString(), QStringLiteral("640"));

    panel.openPresetSettingsPanel();
    panel.removePresetButton->click();
    panel.okButton->click();
    EXPECT_TRUE(stored(false).isEmpty());
    EXPECT_EQ(presets->settingMethodIndex(), 1);
}

TEST_F(PresetPanelsTest, SettingsEditorOffersTheDevicesOfTheTarget)
{
    MCPresetSettingsPanel panel(presets.get(), &window);
    panel.openPresetSettingsPanel();
    panel.addPresetButton->click();
    const auto offered = [&] {
        QStringList items;
        for (int i = 0; i < panel.devicePopUp->count(); ++i)
            items << panel.devicePopUp->itemText(i);
        return items;
    };
    EXPECT_FALSE(offered().contains(QStringLiteral("Apple TV 3")));
    panel.targetPopUp->setCurrentText(QStringLiteral("MP4"));
    emit panel.targetPopUp->textActivated(QStringLiteral("MP4"));
    // The new preset's "Apple TV" is no MP4 device: still shown, last, until one is chosen.
    EXPECT_EQ(offered(), MCMp4TabRules::deviceList() + QStringList{QStringLiteral("Apple TV")});
    panel.devicePopUp->setCurrentText(QStringLiteral("PS3"));
    emit panel.devicePopUp->textActivated(QStringLiteral("PS3"));
    EXPECT_EQ(offered(), MCMp4TabRules::deviceList());
    panel.okButton->click();
    const QVariantMap record = stored(false).value(0).toMap();
    EXPECT_EQ(record.value(QStringLiteral("pTarget")).toString(), QStringLiteral("MP4"));
    EXPECT_EQ(record.value(QStringLiteral("pDevice")).toString(), QStringLiteral("PS3"));
}

TEST(PresetEditorButtons, OpenTheEditorsAsSheetsOverTheWindow)
{
    MCGuiApplication app;
    app.start({});
    MCMainWindow *w = app.window();
    auto *selections = w->findChild<MCPresetSelectionsPanel *>();
    auto *settings = w->findChild<MCPresetSettingsPanel *>();
    ASSERT_TRUE(selections && settings);
    ASSERT_TRUE(w->editSelectionsButton->isEnabled() && w->editSettingsButton->isEnabled());
    w->editSelectionsButton->click();
    EXPECT_TRUE(selections->isVisible());
    selections->okButton->click();
    w->editSettingsButton->click();
    EXPECT_TRUE(settings->isVisible());
    settings->okButton->click();
    EXPECT_FALSE(settings->isVisible());
}

} // namespace
