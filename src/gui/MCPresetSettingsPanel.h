#pragma once

#include <QDialog>

class MCPresetsController;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QListView;
class QPushButton;
class QStringListModel;

// The settings preset editor, a sheet over the main window: the presets
// (without "Manual") with add and remove, and the selected preset's
// process, device, video, audio and subtitle choices. Every change goes
// straight into the preset; OK saves the user's presets and puts the
// selected one in force.
class MCPresetSettingsPanel : public QDialog
{
    Q_OBJECT
public:
    MCPresetSettingsPanel(MCPresetsController *presets, QWidget *window);

    void openPresetSettingsPanel();
    void okPresetSettingsPanel();

    QListView *settingsTableController;
    QStringListModel *namesModel;
    QPushButton *addPresetButton, *removePresetButton, *okButton;
    QLineEdit *nameField;
    QComboBox *devicePopUp, *typeOfProcessPopUp, *targetPopUp;
    QComboBox *videoActionPopUp, *videoBitRatePopUp, *widthPopUp, *fpsPopUp;
    QLineEdit *videoBitRateField, *widthField, *fpsField;
    QComboBox *stereoActionPopUp, *stereoBitRatePopUp, *surroundActionPopUp, *surroundBitRatePopUp;
    QCheckBox *addStereoCheckBox;
    QComboBox *subActionPopUp;

    // Closing the sheet keeps what was done in it, as OK does.
    void reject() override;

signals:
    // The editor closed with OK; the preset in force may have changed.
    void presetChosen();

private:
    QWidget *buildDetails();
    void bindDetails();
    void refresh();
    QStringList devicesFor(const QString &target) const;

    MCPresetsController *m_presets;
    QWidget *m_details = nullptr;
    bool m_refreshing = false;
};
