#pragma once

#include "MCVideoFile.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>

class MCSelectionController;

// A settings preset: fills the settings area for the loaded file in one step
// (kind of process, device, video action with its best guesses, bit rate and
// width, stereo and surround audio, subtitles). Applying it drives the
// selection rules through their public setters, as a user would, and writes
// the wanted output of each selected audio track.
class MCPresetSettings
{
public:
    // The file the preset is applied to and the rules it drives, both given
    // by the application (and replaced when a new file loads).
    explicit MCPresetSettings(std::shared_ptr<MCVideoFile> file = {}, MCSelectionController *controller = nullptr);

    QString pName;
    QString pDevice;
    int pTypeOfProcessIndex = 0; // 0 convert, 1 extract tracks, 2 remove tracks
    bool pVideoActionIsBestGuess = false;
    QString pVideoBitRate;
    int pVideoBitRateIndex = 0; // 0 the source's, 1 pVideoBitRate
    QString pWidth;
    int pWidthIndex = 0; // 0 the source's, 1 pWidth
    QString pFPS;        // kept and edited, not applied
    int pFPSIndex = 0;   // kept and edited, not applied
    int pStereoActionIndex = 0;
    QString pStereoBitRate; // a bit rate or "Original"
    int pSurroundActionIndex = 0;
    QString pSurroundBitRate;
    bool pAudioAddStereo = false; // kept and edited, not applied
    QString pSubAction;           // "Burn (hard)" or "Extract"
    // The conversion tab a "Convert" preset fills: "AVI" (what every preset
    // stored before there was a choice means), "MKV" or "MP4".
    QString pTarget = targetAvi();
    bool isEditable = false;
    std::shared_ptr<MCVideoFile> currentVideoFile;
    MCSelectionController *selectionController = nullptr;

    // Rows 3 and 4 are the best guesses (for speed and for quality).
    int pVideoActionIndex() const { return m_pVideoActionIndex; }
    void setPVideoActionIndex(int index);

    void initializeAsByID();          // "Manual"
    void initializeAsExtract();       // "Extract Tracks"
    void initializeAsRemove();        // "Remove Tracks"
    void initializeAsNewUserPreset(); // "User Preset"

    // The tab the preset works in; empty when it leaves the tab alone.
    QString tabName() const;

    QVariantMap makeRecord() const;
    void initFromRecord(const QVariantMap &record);

    // The bit rate scaled linearly with a smaller width (single precision,
    // truncated); unchanged when the width does not shrink.
    static QString quickBitRateCalcFor(const QString &bitRate, const QString &newWidth, const QString &oldWidth);

    // Applies the preset to the selection rules for currentVideoFile.
    void makeSettings();

    static QString targetAvi() { return QStringLiteral("AVI"); }
    static QString targetMkv() { return QStringLiteral("MKV"); }
    static QString targetMp4() { return QStringLiteral("MP4"); }

    // The editor's option lists; a stored index is a row of its list.
    static const QStringList &targetList(); // "AVI", "MKV", "MP4"
    static const QStringList &typeOfProcessList();
    static const QStringList &videoActionList();
    static const QStringList &genericList(); // bit rate and width: "Original", "Custom"
    static const QStringList &stereoActionList();
    static const QStringList &stereoBitRateList();
    static const QStringList &surroundActionList();
    static const QStringList &surroundBitRateList();
    static const QStringList &subActionList();

private:
    void applyBestGuessVideo();
    void applyChosenVideo();
    void applyAudio();
    bool burnsSubtitles() const;

    int m_pVideoActionIndex = 0;
};

using MCPresetSettingsPtr = std::shared_ptr<MCPresetSettings>;
