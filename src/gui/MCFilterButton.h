#pragma once

#include <QPushButton>

class MCFilterPanel;
class MCPresetsController;

// The edit button of one filter row of the track-selection preset editor.
// Resting the pointer on it shows the row's filter in its floating panel
// (just below the button) and titles it "Edit"; clicking "Edit" starts
// editing ("Done"), clicking "Done" keeps the edited filter. Leaving the
// button hides the panel unless the filter is being edited. Titles,
// enabling and edit mode come from the preset store's filter rows.
class MCFilterButton : public QPushButton
{
    Q_OBJECT
public:
    // tag: 101-103 for audio filters 1-3, 201-203 for subtitle filters 1-3.
    MCFilterButton(int tag, MCFilterPanel *panel, MCPresetsController *presets, QWidget *parent = nullptr);

    int tag() const { return m_tag; }

    MCFilterPanel *filterPanel;
    bool isInEditMode = false;
    MCPresetsController *appPresetsController;

    // Takes title, enabling and edit mode from the store, and shows or
    // hides the panel to match.
    void refresh();

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    void placePanel();

    int m_tag;
};
