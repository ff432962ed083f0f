#include "MCPresetSettings.h"

#include "MCMkvPreset.h"
#include "MCSelectionController.h"
#include "MCTextNumbers.h"
#include "MCWords.h"

#include <algorithm>
#include <cmath>
#include <limits>

using MCTextNumbers::integerValue;

namespace {

const QString kOriginal = QStringLiteral("Original");
const QString kBurn = QStringLiteral("Burn (hard)");
const QString kExtract = QStringLiteral("Extract");
const QString kPassthru = QStringLiteral("passthru");

// The bit rate a converted track gets: its own when the preset says
// "Original", else the preset's.
QString bitRateOr(const MCVideoTrack &track, const QString &presetRate, const QString &ruleField)
{
    return ruleField == kOriginal ? track.trackBitRate : presetRate;
}

void wantMp3Stereo(MCVideoTrack &track, const QString &bitRate)
{
    track.userCodec = QStringLiteral("mp3");
    track.userNumberOfChannels = QStringLiteral("2");
    track.userBitRate = bitRate;
}

void wantAc3Surround(MCVideoTrack &track, const QString &bitRate)
{
    track.userCodec = QStringLiteral("ac3");
    track.userNumberOfChannels = QStringLiteral("6");
    track.userBitRate = bitRate;
}

} // namespace

MCPresetSettings::MCPresetSettings(std::shared_ptr<MCVideoFile> file, MCSelectionController *controller)
    : currentVideoFile(std::move(file))
    , selectionController(controller)
{
}

void MCPresetSettings::setPVideoActionIndex(int index)
{
    m_pVideoActionIndex = index;
    pVideoActionIsBestGuess = index == 3 || index == 4;
}

void MCPresetSettings::initializeAsByID()
{
    pName = QStringLiteral("Manual");
    isEditable = false;
}

void MCPresetSettings::initializeAsExtract()
{
    pName = QStringLiteral("Extract Tracks");
    pTypeOfProcessIndex = 1;
    isEditable = false;
}

void MCPresetSettings::initializeAsRemove()
{
    pName = QStringLiteral("Remove Tracks");
    pTypeOfProcessIndex = 2;
    isEditable = false;
}

QString MCPresetSettings::tabName() const
{
    if (pName == QLatin1String("Manual"))
        return {};
    if (pTypeOfProcessIndex == 0 && pTarget == targetMkv())
        return MCWords::tabMkv;
    if (pTypeOfProcessIndex == 0 && pTarget == targetMp4())
        return MCWords::tabMp4;
    if (pTypeOfProcessIndex == 0)
        return MCWords::tabAvi;
    return pTypeOfProcessIndex == 1 ? MCWords::tabEditTracks : QString();
}

void MCPresetSettings::initializeAsNewUserPreset()
{
    pName = QStringLiteral("User Preset");
    pDevice = QStringLiteral("Apple TV");
    pTypeOfProcessIndex = 0;
    setPVideoActionIndex(4);
    pVideoBitRate = QStringLiteral("1000");
    pVideoBitRateIndex = 1;
    pWidth = QLatin1String("");
    pWidthIndex = 0;
    pFPS = QLatin1String("");
    pFPSIndex = 0;
    pStereoActionIndex = 0;
    pStereoBitRate = QStringLiteral("160");
    pSurroundActionIndex = 0;
    pSurroundBitRate = QStringLiteral("448");
    pAudioAddStereo = false;
    pSubAction = kExtract;
    isEditable = true;
}

QVariantMap MCPresetSettings::makeRecord() const
{
    return {
        {QStringLiteral("pName"), pName},
        {QStringLiteral("pDevice"), pDevice},
        {QStringLiteral("pTypeOfProcessIndex"), pTypeOfProcessIndex},
        {QStringLiteral("pVideoActionIndex"), m_pVideoActionIndex},
        {QStringLiteral("pVideoBitRate"), pVideoBitRate},
        {QStringLiteral("pVideoBitRateIndex"), pVideoBitRateIndex},
        {QStringLiteral("pWidth"), pWidth},
        {QStringLiteral("pWidthIndex"), pWidthIndex},
        {QStringLiteral("pFPS"), pFPS},
        {QStringLiteral("pFPSIndex"), pFPSIndex},
        {QStringLiteral("pStereoActionIndex"), pStereoActionIndex},
        {QStringLiteral("pStereoBitRate"), pStereoBitRate},
        {QStringLiteral("pSurroundActionIndex"), pSurroundActionIndex},
        {QStringLiteral("pSurroundBitRate"), pSurroundBitRate},
        {QStringLiteral("pAudioAddStereo"), pAudioAddStereo},
        {QStringLiteral("pSubAction"), pSubAction},
        {QStringLiteral("pTarget"), pTarget},
        {QStringLiteral("isEditable"), isEditable},
    };
}

void MCPresetSettings::initFromRecord(const QVariantMap &record)
{
    // A key the record lacks leaves the field as it was.
    const auto found = [&record](const char *key) { return record.constFind(QLatin1String(key)); };
    const auto readText = [&](const char *key, QString &field) {
        if (const auto at = found(key); at != record.cend())
            field = at->toString();
    };
    const auto readIndex = [&](const char *key, int &field) {
        if (const auto at = found(key); at != record.cend())
            field = int(integerValue(at->toString()));
    };
    const auto readFlag = [&](const char *key, bool &field) {
        if (const auto at = found(key); at != record.cend())
            field = at->toBool();
    };
    readText("pName", pName);
    readText("pDevice", pDevice);
    readIndex("pTypeOfProcessIndex", pTypeOfProcessIndex);
    int videoAction = m_pVideoActionIndex;
    readIndex("pVideoActionIndex", videoAction);
    setPVideoActionIndex(videoAction);
    readText("pVideoBitRate", pVideoBitRate);
    readIndex("pVideoBitRateIndex", pVideoBitRateIndex);
    readText("pWidth", pWidth);
    readIndex("pWidthIndex", pWidthIndex);
    readText("pFPS", pFPS);
    readIndex("pFPSIndex", pFPSIndex);
    readIndex("pStereoActionIndex", pStereoActionIndex);
    readText("pStereoBitRate", pStereoBitRate);
    readIndex("pSurroundActionIndex", pSurroundActionIndex);
    readText("pSurroundBitRate", pSurroundBitRate);
    readFlag("pAudioAddStereo", pAudioAddStereo);
    readText("pSubAction", pSubAction);
    readText("pTarget", pTarget);
    readFlag("isEditable", isEditable);
}

QString MCPresetSettings::quickBitRateCalcFor(const QString &bitRate, const QString &newWidth, const QString &oldWidth)
{
    const float newW = float(MCTextNumbers::floatValue(newWidth));
    const float oldW = float(MCTextNumbers::floatValue(oldWidth));
    if (!(newW < oldW) || oldW <= 0)
        return bitRate;
    const float ratio = newW / oldW;
    const float scaled = float(integerValue(bitRate)) * ratio;
    constexpr float kMax = float(std::numeric_limits<int>::max() / 2);
    const float bounded = std::isfinite(scaled) ? std::clamp(scaled, -kMax, kMax) : 0.0f;
    return QString::number(int(bounded));
}

bool MCPresetSettings::burnsSubtitles() const
{
    return integerValue(selectionController->currentSelection()->subCount) >= 1 && pSubAction == kBurn;
}

void MCPresetSettings::makeSettings()
{
    if (pName == QLatin1String("Manual") || !selectionController)
        return;
    MCSelectionController &rules = *selectionController;
    if (pTypeOfProcessIndex != 0) {
        if (pTypeOfProcessIndex == 1) {
            rules.setCurrentTab(MCWords::tabEditTracks);
            rules.setEditTrackMatrixIndex(0);
        }
        rules.clearTrackTableHighlight();
        return;
    }
    if ((pTarget == targetMkv() || pTarget == targetMp4()) && currentVideoFile) {
        MCMkvPreset::apply(*this, rules, *currentVideoFile, tabName());
        rules.clearTrackTableHighlight();
        return;
    }
    rules.setCurrentTab(MCWords::tabAvi);
    if (!currentVideoFile || currentVideoFile->trackList.isEmpty())
        return;
    rules.setMp4Device(pDevice);
    if (m_pVideoActionIndex == 3 || m_pVideoActionIndex == 4)
        applyBestGuessVideo();
    else if (m_pVideoActionIndex >= 0 && m_pVideoActionIndex <= 2)
        applyChosenVideo();
    applyAudio();
    // Re-derive the audio row from the chosen track's new wanted output.
    rules.setAudioTrackPopupIndex(rules.audioTrackPopupIndex());
    if (pSubAction == kBurn)
        rules.setSubtitleMatrixIndex(0);
    else if (pSubAction == kExtract)
        rules.setSubtitleMatrixIndex(1);
    rules.clearTrackTableHighlight();
}

void MCPresetSettings::applyBestGuessVideo()
{
    MCSelectionController &rules = *selectionController;
    const MCVideoFile &file = *currentVideoFile;
    const int encodeRow = m_pVideoActionIndex == 3 ? 1 : 2;
    const bool mpeg4Source = file.theVideoCodec == QLatin1String("mpeg4");
    if (pDevice == QLatin1String("DivX DVD")) {
        const float w = float(MCTextNumbers::floatValue(file.theWidth));
        const float h = float(MCTextNumbers::floatValue(file.theHeight));
        QString width = file.theWidth;
        if (w > 720) {
            width = QStringLiteral("720");
            if (h * 720.0f / w > 480.0f)
                width = QStringLiteral("640");
        } else if (h >= 481) {
            width = QStringLiteral("640");
        }
        rules.setEnteredUserWidth(width);
        const QString scaled = quickBitRateCalcFor(file.theVideoBitRate, width, file.theWidth);
        if (integerValue(width) >= integerValue(file.theWidth) && !burnsSubtitles() && mpeg4Source) {
            rules.setVideoMatrixIndex(0);
        } else {
            rules.setEnteredUserVideoBitRate(integerValue(scaled) < 5001 ? scaled : QStringLiteral("2000"));
            rules.setVideoMatrixIndex(encodeRow);
        }
    } else if (pDevice == QLatin1String("PS3") || pDevice == QLatin1String("Xbox")
               || pDevice == QLatin1String("General")) {
        rules.setEnteredUserWidth(file.theWidth);
        rules.setEnteredUserVideoBitRate(file.theVideoBitRate);
        rules.setVideoMatrixIndex(!burnsSubtitles() && mpeg4Source ? 0 : encodeRow);
    }
    // A custom bit rate overrides the guess.
    if (pVideoBitRateIndex == 1)
        rules.setEnteredUserVideoBitRate(pVideoBitRate);
}

void MCPresetSettings::applyChosenVideo()
{
    MCSelectionController &rules = *selectionController;
    const MCVideoFile &file = *currentVideoFile;
    rules.setVideoMatrixIndex(m_pVideoActionIndex);
    if (m_pVideoActionIndex == 0)
        return;
    rules.setEnteredUserVideoBitRate(pVideoBitRateIndex == 1 ? pVideoBitRate : file.theVideoBitRate);
    // Never upscaled.
    const bool customWidth = pWidthIndex == 1 && integerValue(pWidth) < integerValue(file.theWidth);
    rules.setEnteredUserWidth(customWidth ? pWidth : file.theWidth);
}

void MCPresetSettings::applyAudio()
{
    const MCTrackList selected = selectionController->currentSelection()->trackList;
    for (const MCVideoTrackPtr &track : selected) {
        if (track->trackType != QLatin1String("Audio"))
            continue;
        if (integerValue(track->trackNumberOfChannels) < 3) {
            if (pStereoActionIndex == 0)
                track->userCodec = kPassthru;
            else if (pStereoActionIndex == 1 || pStereoActionIndex == 2)
                wantMp3Stereo(*track, bitRateOr(*track, pStereoBitRate, pStereoBitRate));
            continue;
        }
        // The surround rules look at the stereo bit-rate field for "Original".
        const bool keepsAc3OrMp3 = track->trackCodec == QLatin1String("mp3") || track->trackCodec == QLatin1String("ac3");
        switch (pSurroundActionIndex) {
        case 0:
            track->userCodec = kPassthru;
            break;
        case 1:
            wantMp3Stereo(*track, pStereoBitRate == kOriginal ? QStringLiteral("160") : pStereoBitRate);
            break;
        case 2:
            wantAc3Surround(*track, bitRateOr(*track, pSurroundBitRate, pStereoBitRate));
            break;
        case 3:
            if (keepsAc3OrMp3)
                track->userCodec = kPassthru;
            else
                wantAc3Surround(*track, bitRateOr(*track, pSurroundBitRate, pStereoBitRate));
            break;
        default:
            break;
        }
    }
}

const QStringList &MCPresetSettings::targetList()
{
    static const QStringList list{targetAvi(), targetMkv(), targetMp4()};
    return list;
}

const QStringList &MCPresetSettings::typeOfProcessList()
{
    static const QStringList list{QStringLiteral("Convert"), QStringLiteral("Extract")};
    return list;
}

const QStringList &MCPresetSettings::videoActionList()
{
    static const QStringList list{QStringLiteral("Pass Thru"), QStringLiteral("Mpeg4 (1-pass)"),
                                  QStringLiteral("Mpeg4 (2-pass)"), QStringLiteral("Best Guess (Speed)"),
                                  QStringLiteral("Best Guess (Quality)")};
    return list;
}

const QStringList &MCPresetSettings::genericList()
{
    static const QStringList list{kOriginal, QStringLiteral("Custom")};
    return list;
}

const QStringList &MCPresetSettings::stereoActionList()
{
    static const QStringList list{QStringLiteral("Pass Thru"), QStringLiteral("MP3 (2-Ch.)"),
                                  QStringLiteral("Best Guess")};
    return list;
}

const QStringList &MCPresetSettings::stereoBitRateList()
{
    static const QStringList list{QStringLiteral("128"), QStringLiteral("160"), QStringLiteral("192"),
                                  QStringLiteral("224"), QStringLiteral("256"), QStringLiteral("320")};
    return list;
}

const QStringList &MCPresetSettings::surroundActionList()
{
    static const QStringList list{QStringLiteral("Pass Thru"), QStringLiteral("MP3 (2-Ch.)"),
                                  QStringLiteral("AC3 (5.1)"), QStringLiteral("Best Guess")};
    return list;
}

const QStringList &MCPresetSettings::surroundBitRateList()
{
    static const QStringList list{QStringLiteral("320"), QStringLiteral("384"), QStringLiteral("448"),
                                  QStringLiteral("512"), QStringLiteral("640")};
    return list;
}

const QStringList &MCPresetSettings::subActionList()
{
    static const QStringList list{kBurn, kExtract};
    return list;
}
