#pragma once

#include <QWidget>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

// The "MKV" tab's controls: conversion of the selected tracks into a
// Matroska file. MCMkvTabBinding ties them to the tab's rules.
class MCMkvTabPage : public QWidget
{
    Q_OBJECT
public:
    explicit MCMkvTabPage(QWidget *parent = nullptr);

    QButtonGroup *videoMatrix;    // Passthru, MPEG-4 (1 pass), MPEG-4 (2 pass)
    QLineEdit *vidBitRateField, *resWidthField;
    QLabel *audioTrackLabel;
    QComboBox *audioTrackPopUp;
    QButtonGroup *audioMatrix;    // Passthru, AAC Stereo, AAC 5.1, AC3 5.1
    QCheckBox *addStereoCheckBox;
    QButtonGroup *subtitleMatrix; // Mux into the file, Leave out
    QPushButton *convertButton;

private:
    QWidget *buildVideo();
    QWidget *buildAudio();
    QWidget *buildSubtitles();
};
