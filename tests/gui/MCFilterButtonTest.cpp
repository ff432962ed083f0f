// The filter rows' edit buttons: the pointer shows a filter in the floating
// panel just below the button, a click edits it, and the store keeps it.
#include "MCFilterButton.h"
#include "MCFilterPanel.h"
#include "MCPresetsController.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QEnterEvent>
#include <QVBoxLayout>

namespace {

class FilterButtonTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        presets.initialize();
        presets.addPresetSelection(); // one audio and one subtitle filter, editable
        preset = presets.selectedPresetSelections();
        ASSERT_TRUE(preset && preset->isEditable);
        preset->addDictionaryToAudioFilterArray();
        presets.selectionListTableClicked(presets.selectionsTableIndex());

        auto *layout = new QVBoxLayout(&editor);
        audioPanel = new MCFilterPanel(&presets, true, &editor);
        subtitlePanel = new MCFilterPanel(&presets, false, &editor);
        first = new MCFilterButton(101, audioPanel, &presets, &editor);
        second = new MCFilterButton(102, audioPanel, &presets, &editor);
        subtitle = new MCFilterButton(201, subtitlePanel, &presets, &editor);
        for (QWidget *button : {first, second, subtitle})
            layout->addWidget(button);
        editor.move(200, 150);
        editor.show();
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

    static void choose(QComboBox *popUp, const QString &text)
    {
        popUp->setCurrentIndex(popUp->findText(text));
        emit popUp->textActivated(text);
    }

    MCPresetsController presets{nullptr, nullptr};
    MCPresetSelectionsPtr preset;
    QWidget editor;
    MCFilterPanel *audioPanel = nullptr;
    MCFilterPanel *subtitlePanel = nullptr;
    MCFilterButton *first = nullptr;
    MCFilterButton *second = nullptr;
    MCFilterButton *subtitle = nullptr;
};

TEST_F(FilterButtonTest, PointerShowsTheRowsFilterBelowTheButtonUntilItLeaves)
{
    EXPECT_EQ(first->text(), QStringLiteral("Filter #1"));
    EXPECT_EQ(second->text(), QStringLiteral("Filter #2"));
    EXPECT_FALSE(first->isInEditMode);
    EXPECT_FALSE(audioPanel->isVisible());

    enter(second);
    EXPECT_EQ(second->text(), QStringLiteral("Edit"));
    ASSERT_TRUE(audioPanel->isVisible());
    EXPECT_EQ(audioPanel->trackChoicePopUp()->currentText(), QStringLiteral("Audio Track Number"));
    EXPECT_FALSE(audioPanel->trackChoicePopUp()->isEnabled()) << "shown, not yet edited";
    // Centred on the button, its top 35 points below the button's top.
    const QPoint button = second->mapToGlobal(QPoint(0, 0));
    EXPECT_EQ(audioPanel->pos(), QPoint(button.x() + (second->width() - audioPanel->width()) / 2, button.y() + 35));
    EXPECT_EQ(audioPanel->height(), 100);

    leave(second);
    EXPECT_EQ(second->text(), QStringLiteral("Filter #2"));
    EXPECT_FALSE(audioPanel->isVisible());
}

TEST_F(FilterButtonTest, EditModeKeepsThePanelAndDoneStoresTheFilter)
{
    enter(first);
    first->click();
    EXPECT_TRUE(first->isInEditMode);
    EXPECT_EQ(first->text(), QStringLiteral("Done"));
    leave(first);
    EXPECT_EQ(first->text(), QStringLiteral("Done"));
    EXPECT_TRUE(audioPanel->isVisible());

    // The other row cannot be opened while this one is edited.
    EXPECT_FALSE(second->isEnabled());
    enter(second);
    EXPECT_EQ(second->text(), QStringLiteral("Filter #2"));

    choose(audioPanel->trackChoicePopUp(), QStringLiteral("Tracks w/ Properties ..."));
    EXPECT_EQ(audioPanel->height(), 260);
    EXPECT_TRUE(audioPanel->languagePopUp()->isVisibleTo(audioPanel));
    EXPECT_FALSE(audioPanel->trackNumberPopUp()->isVisibleTo(audioPanel));
    choose(audioPanel->codecPopUp(), QStringLiteral("ac3"));
    choose(audioPanel->channelsPopUp(), QStringLiteral("Surround Only"));

    first->click();
    EXPECT_FALSE(first->isInEditMode);
    EXPECT_EQ(first->text(), QStringLiteral("Filter #1"));
    EXPECT_FALSE(audioPanel->isVisible());
    EXPECT_TRUE(second->isEnabled());
    EXPECT_EQ(preset->pAudioFilterArray.first().toMap(),
              MCPresetSelections::audioFilter(QStringLiteral("Tracks w/ Properties ..."), QStringLiteral("1"),
                                              QStringLiteral("Any Language"), QStringLiteral("ac3"),
                                              QStringLiteral("Surround Only")));
    EXPECT_EQ(preset->pAudioFilterArray.size(), 2);
}

TEST_F(FilterButtonTest, SubtitlePanelHasNoChannelsAndItsOwnHeight)
{
    enter(subtitle);
    subtitle->click();
    EXPECT_EQ(subtitlePanel->channelsPopUp(), nullptr);
    choose(subtitlePanel->trackChoicePopUp(), QStringLiteral("Tracks w/ Properties ..."));
    EXPECT_EQ(subtitlePanel->height(), 202);
    choose(subtitlePanel->trackChoicePopUp(), QStringLiteral("None"));
    EXPECT_EQ(subtitlePanel->height(), 100);
    // The audio rows are not held up by a subtitle filter being edited.
    enter(first);
    EXPECT_EQ(first->text(), QStringLiteral("Edit"));
    EXPECT_TRUE(audioPanel->isVisible());
    EXPECT_TRUE(subtitlePanel->isVisible());
}

} // namespace
