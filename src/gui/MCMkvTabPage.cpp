#include "MCMkvTabPage.h"

#include "MCFormParts.h"
#include "MCNumberField.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using MCFormParts::numberField;
using MCFormParts::radioGroup;
using MCFormParts::withUnit;

MCMkvTabPage::MCMkvTabPage(const QString &tabName, bool withDeviceChooser, QWidget *parent)
    : QWidget(parent)
    , tabName(tabName)
{
    setObjectName(tabName.toLower() + QStringLiteral("Tab"));
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(buildVideo(withDeviceChooser), 3);
    layout->addWidget(buildAudio(), 3);
    layout->addWidget(buildSubtitles(), 2);
}

QWidget *MCMkvTabPage::buildVideo(bool withDeviceChooser)
{
    auto *video = new QGroupBox(QStringLiteral("Video"), this);
    auto *layout = new QVBoxLayout(video);
    videoMatrix = radioGroup(video, layout,
                             {QStringLiteral("Passthru"), QStringLiteral("MPEG-4 (1 pass)"), QStringLiteral("MPEG-4 (2 pass)")});
    auto *form = new QFormLayout;
    vidBitRateField = numberField(video);
    resWidthField = numberField(video);
    vidBitRateField->setObjectName(tabName.toLower() + QStringLiteral("VidBitRateField"));
    resWidthField->setObjectName(tabName.toLower() + QStringLiteral("ResWidthField"));
    new MCNumberField(vidBitRateField, MCNumberField::Kind::Whole);
    new MCNumberField(resWidthField, MCNumberField::Kind::Whole);
    form->addRow(QStringLiteral("Bit rate:"), withUnit(video, vidBitRateField, QStringLiteral("kb/s")));
    form->addRow(QStringLiteral("Width:"), withUnit(video, resWidthField, QStringLiteral("pixels")));
    if (withDeviceChooser) {
        devicePopUp = new QComboBox(video);
        devicePopUp->setObjectName(tabName.toLower() + QStringLiteral("DevicePopUp"));
        form->addRow(QStringLiteral("Device:"), devicePopUp);
    }
    layout->addLayout(form);
    layout->addStretch();
    return video;
}

QWidget *MCMkvTabPage::buildAudio()
{
    auto *audio = new QGroupBox(QStringLiteral("Audio"), this);
    auto *layout = new QVBoxLayout(audio);
    MCFormParts::addAudioTrackChooser(audio, layout, audioTrackLabel, audioTrackPopUp);
    audioMatrix = radioGroup(audio, layout,
                             {QStringLiteral("Passthru"), QStringLiteral("AAC Stereo"), QStringLiteral("AAC 5.1"),
                              QStringLiteral("AC3 5.1")});
    addStereoCheckBox = new QCheckBox(QStringLiteral("Add a stereo copy"), audio);
    layout->addWidget(addStereoCheckBox);
    layout->addStretch();
    return audio;
}

QWidget *MCMkvTabPage::buildSubtitles()
{
    auto *subtitles = new QGroupBox(QStringLiteral("Subtitles"), this);
    auto *layout = new QVBoxLayout(subtitles);
    subtitleMatrix = radioGroup(subtitles, layout, {QStringLiteral("Mux into the file"), QStringLiteral("Leave out")});
    layout->addStretch();
    convertRefusalLabel = new QLabel(subtitles);
    convertRefusalLabel->setWordWrap(true);
    convertRefusalLabel->setVisible(false);
    layout->addWidget(convertRefusalLabel);
    convertButton = new QPushButton(QStringLiteral("Convert"), subtitles);
    layout->addWidget(convertButton, 0, Qt::AlignRight);
    return subtitles;
}
