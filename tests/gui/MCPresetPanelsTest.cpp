// The two preset editors: presets added, renamed, changed and removed in the
// sheets, and the filter rows edited in their floating panels, reach the
// preferences' store when the sheet is closed.
#include "GuiTestSupport.h"
#include "MCFilterButton.h"
#include "MCFilterPanel.h"
#include "MCMp4TabRules.h"
#include "MCPreferences.h"
#include "MCPresetSelectionsPanel.h"
#include "MCPresetSettingsPanel.h"
#include "MCPresetsController.h"

#include <QtWidgets>

namespace {

using guitest::choose;

class PresetPanelsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        presets.initialize();
        window.show();
    }

    // The first stored preset as a fresh start would read it back.
    QVariantMap stored(bool selections) const
    {
        MCPreferences reread(dir.filePath(QStringLiteral("kestrane.ini")));
        return (selections ? reread.userPresetSelectionsList : reread.userPresetSettingsList).value(0).toMap();
    }

    static void type(QLineEdit *field, const QString &text)
    {
        field->setText(text);
        emit field->editingFinished();
    }
    static void enter(QWidget *button)
    {
        QEnterEvent event(QPointF(5, 5), QPointF(5, 5), button->mapToGlobal(QPointF(5, 5)));
        QApplication::sendEvent(button, &event);
    }
    static void leave(QWidget *button)
    {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(button, &event);
    }

    QTemporaryDir dir;
    MCPreferences preferences{dir.filePath(QStringLiteral("kestrane.ini"))};
    MCPresetsController presets{&preferences, nullptr};
    QMainWindow window;
};

TEST_F(PresetPanelsTest, SelectionsEditorAddsRenamesFiltersAndRemovesUserPresets)
{
    MCPresetSelectionsPanel panel(&presets, &window);
    panel.openPresetSelectionPanel();
    EXPECT_FALSE(panel.removePresetButton->isEnabled() || panel.af1EditButton->isEnabled()) << "built-in presets stay";
    panel.addPresetButton->click();
    EXPECT_EQ(panel.namesModel->stringList(), (QStringList{QStringLiteral("First Track"), QStringLiteral("User Preset")}));
    EXPECT_EQ(panel.selectionsTableController->currentIndex().row(), 1);
    type(panel.nameField, QStringLiteral("Manual"));
    EXPECT_EQ(panel.nameField->text(), QStringLiteral("User Preset")) << "the hidden built-in's name is refused";
    type(panel.nameField, QStringLiteral("Two audio"));
    panel.firstVideoCheckBox->click();
    panel.af2AddButton->click();
    ASSERT_TRUE(panel.af2EditButton->isVisibleTo(&panel));

    // The pointer shows a row's filter in the panel just below its button.
    MCFilterPanel *filters = panel.audioFilterPanel;
    MCFilterButton *second = panel.af2EditButton;
    enter(second);
    EXPECT_EQ(second->text(), QStringLiteral("Edit"));
    ASSERT_TRUE(filters->isVisible());
    const QPoint button = second->mapToGlobal(QPoint(0, 0));
    EXPECT_EQ(filters->pos(), QPoint(button.x() + (second->width() - filters->width()) / 2, button.y() + 35));
    leave(second);
    EXPECT_EQ(second->text(), QStringLiteral("Filter #2"));
    EXPECT_FALSE(filters->isVisible());

    // A click edits it: the panel stays, the other audio rows wait, Done keeps it.
    MCFilterButton *first = panel.af1EditButton;
    enter(first);
    first->click();
    leave(first);
    EXPECT_EQ(first->text(), QStringLiteral("Done"));
    EXPECT_TRUE(filters->isVisible());
    EXPECT_FALSE(second->isEnabled());
    EXPECT_TRUE(panel.sf1EditButton->isEnabled()) << "subtitle rows are not held up";
    choose(filters->trackChoicePopUp(), QStringLiteral("Tracks w/ Properties ..."));
    EXPECT_TRUE(filters->languagePopUp()->isVisibleTo(filters) && !filters->trackNumberPopUp()->isVisibleTo(filters));
    choose(filters->codecPopUp(), QStringLiteral("ac3"));
    choose(filters->channelsPopUp(), QStringLiteral("Surround Only"));
    first->click();
    EXPECT_FALSE(filters->isVisible());
    EXPECT_TRUE(second->isEnabled());

    panel.okButton->click();
    EXPECT_EQ(presets.selectionMethodIndex(), 2);
    const QVariantMap record = stored(true);
    EXPECT_EQ(record.value(QStringLiteral("pName")).toString(), QStringLiteral("Two audio"));
    EXPECT_EQ(record.value(QStringLiteral("pSelectedVideoTrack")).toString(), QStringLiteral("0"));
    const QVariantList audioFilters = record.value(QStringLiteral("pAudioFilterArray")).toList();
    ASSERT_EQ(audioFilters.size(), 2);
    EXPECT_EQ(audioFilters.first().toMap(),
              MCPresetSelections::audioFilter(QStringLiteral("Tracks w/ Properties ..."), QStringLiteral("1"),
                                              QStringLiteral("Any Language"), QStringLiteral("ac3"), QStringLiteral("Surround Only")));

    panel.openPresetSelectionPanel();
    EXPECT_EQ(panel.selectionsTableController->currentIndex().row(), 1) << "the preset in force is selected";
    panel.removePresetButton->click();
    panel.reject(); // closing the sheet keeps what was done, as OK does
    EXPECT_TRUE(stored(true).isEmpty());
    EXPECT_EQ(presets.selectionMethodIndex(), 1);
}

TEST_F(PresetPanelsTest, SettingsEditorWritesTheChosenRowsAndTheTargetsDevicesIntoThePreset)
{
    MCPresetSettingsPanel panel(&presets, &window);
    panel.openPresetSettingsPanel();
    EXPECT_FALSE(panel.nameField->isEnabled()) << "the built-in preset keeps its name";
    panel.addPresetButton->click();
    const auto offered = [&] {
        QStringList items;
        for (int i = 0; i < panel.devicePopUp->count(); ++i)
            items << panel.devicePopUp->itemText(i);
        return items;
    };
    EXPECT_FALSE(offered().contains(QStringLiteral("Apple TV 3")));
    choose(panel.targetPopUp, QStringLiteral("MP4"));
    // The new preset's "Apple TV" is no MP4 device: still shown, last, until one is chosen.
    EXPECT_EQ(offered(), MCMp4TabRules::deviceList() + QStringList{QStringLiteral("Apple TV")});
    choose(panel.devicePopUp, QStringLiteral("PS3"));
    EXPECT_EQ(offered(), MCMp4TabRules::deviceList());

    EXPECT_FALSE(panel.widthField->isEnabled()) << "width is the source's";
    panel.widthPopUp->setCurrentIndex(1);
    emit panel.widthPopUp->activated(1);
    ASSERT_TRUE(panel.widthField->isEnabled());
    type(panel.widthField, QStringLiteral("640"));
    panel.videoActionPopUp->setCurrentIndex(2);
    emit panel.videoActionPopUp->activated(2);
    choose(panel.surroundBitRatePopUp, QStringLiteral("640"));
    panel.okButton->click();
    EXPECT_EQ(presets.settingMethodIndex(), 2);
    const QVariantMap record = stored(false);
    const QList<std::pair<const char *, QVariant>> fields{
        {"pTarget", QStringLiteral("MP4")}, {"pDevice", QStringLiteral("PS3")}, {"pWidthIndex", 1},
        {"pWidth", QStringLiteral("640")}, {"pVideoActionIndex", 2}, {"pSurroundBitRate", QStringLiteral("640")}};
    for (const auto &[key, value] : fields)
        EXPECT_EQ(record.value(QString::fromLatin1(key)).toString(), value.toString()) << key;

    panel.openPresetSettingsPanel();
    panel.removePresetButton->click();
    panel.okButton->click();
    EXPECT_TRUE(stored(false).isEmpty());
    EXPECT_EQ(presets.settingMethodIndex(), 1);
}

} // namespace
