#pragma once

#include <QWidget>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

// The controls of a tab on the Matroska rows: the "MKV" tab, and the "MP4"
// tab, which has the same rows and a device chooser besides.
// MCMkvTabBinding ties them to the tab's rules.
class MCMkvTabPage : public QWidget
{
    Q_OBJECT
public:
    // tabName names the tab ("MKV", "MP4") and prefixes the object names.
    MCMkvTabPage(const QString &tabName, bool withDeviceChooser, QWidget *parent = nullptr);

    const QString tabName;
    QButtonGroup *videoMatrix;    // Passthru, MPEG-4 (1 pass), MPEG-4 (2 pass)
    QLineEdit *vidBitRateField, *resWidthField;
    QComboBox *devicePopUp = nullptr; // only where the target has devices
    QLabel *audioTrackLabel;
    QComboBox *audioTrackPopUp;
    QButtonGroup *audioMatrix;    // Passthru, AAC Stereo, AAC 5.1, AC3 5.1
    QCheckBox *addStereoCheckBox;
    QButtonGroup *subtitleMatrix; // Mux into the file, Leave out
    // Why Convert is disabled, said beside it.
    QLabel *convertRefusalLabel;
    QPushButton *convertButton;

private:
    QWidget *buildVideo(bool withDeviceChooser);
    QWidget *buildAudio();
    QWidget *buildSubtitles();
};
