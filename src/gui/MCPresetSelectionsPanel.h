#pragma once

#include <QDialog>

class MCFilterButton;
class MCFilterPanel;
class MCPresetsController;
class QCheckBox;
class QGridLayout;
class QGroupBox;
class QLineEdit;
class QListView;
class QPushButton;
class QStringListModel;

// The track-selection preset editor, a sheet over the main window: the
// presets (without "Manual") with add and remove, the selected preset's
// name and video choice, and its audio and subtitle filter rows. Every
// change goes straight into the preset store; OK saves the user's presets
// and puts the selected one in force.
class MCPresetSelectionsPanel : public QDialog
{
    Q_OBJECT
public:
    MCPresetSelectionsPanel(MCPresetsController *presets, QWidget *window);

    void openPresetSelectionPanel();
    void okPresetSelectionPanel();

    QListView *selectionsTableController;
    QStringListModel *namesModel;
    QPushButton *addPresetButton, *removePresetButton, *okButton;
    QLineEdit *nameField;
    QCheckBox *firstVideoCheckBox;
    MCFilterPanel *audioFilterPanel, *subtitleFilterPanel;
    MCFilterButton *af1EditButton, *af2EditButton, *af3EditButton;
    QPushButton *af2AddButton, *af3AddButton;
    MCFilterButton *sf1EditButton, *sf2EditButton, *sf3EditButton;
    QPushButton *sf2AddButton, *sf3AddButton;

    // Closing the sheet keeps what was done in it, as OK does.
    void reject() override;

signals:
    // The editor closed with OK; the preset in force may have changed.
    void presetChosen();

private:
    QGroupBox *buildFilterRows(bool audio);
    void refresh();
    void refreshRows(bool audio);

    MCPresetsController *m_presets;
    QGroupBox *m_audioBox = nullptr;
    QGroupBox *m_subtitleBox = nullptr;
    bool m_refreshing = false;
};
