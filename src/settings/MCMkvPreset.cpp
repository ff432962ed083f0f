#include "MCMkvPreset.h"

#include "MCMkvTabRules.h"
#include "MCPresetSettings.h"
#include "MCSelectionController.h"
#include "MCTextNumbers.h"

using MCTextNumbers::integerValue;

namespace {

constexpr int kBestGuessForSpeed = 3;
constexpr int kStereoToMp3 = 1;
constexpr int kStereoBestGuess = 2;
constexpr int kSurroundToMp3 = 1;
constexpr int kSurroundToAc3 = 2;
constexpr int kSurroundBestGuess = 3;

int guessedAudioRow(const MCMkvTabRules &tab, const MCVideoTrack &track)
{
    if (tab.holdsAudio(track.trackCodec))
        return MCMkvTabRules::AudioPassthru;
    return integerValue(track.trackNumberOfChannels) >= 6 ? MCMkvTabRules::AudioAc351 : MCMkvTabRules::AudioAacStereo;
}

int audioRowFor(const MCPresetSettings &preset, const MCMkvTabRules &tab, const MCVideoTrack &track)
{
    if (integerValue(track.trackNumberOfChannels) < 3) {
        if (preset.pStereoActionIndex == kStereoToMp3)
            return MCMkvTabRules::AudioAacStereo;
        return preset.pStereoActionIndex == kStereoBestGuess ? guessedAudioRow(tab, track) : MCMkvTabRules::AudioPassthru;
    }
    if (preset.pSurroundActionIndex == kSurroundToMp3)
        return MCMkvTabRules::AudioAacStereo;
    if (preset.pSurroundActionIndex == kSurroundToAc3 && integerValue(track.trackNumberOfChannels) >= 6)
        return MCMkvTabRules::AudioAc351;
    if (preset.pSurroundActionIndex == kSurroundBestGuess)
        return guessedAudioRow(tab, track);
    return MCMkvTabRules::AudioPassthru;
}

int videoRowFor(const MCPresetSettings &preset, const MCMkvTabRules &tab, const MCVideoFile &file)
{
    const int action = preset.pVideoActionIndex();
    if (action < kBestGuessForSpeed)
        return action;
    if (tab.holdsVideo(file.theVideoCodec))
        return MCMkvTabRules::VideoPassthru;
    return action == kBestGuessForSpeed ? MCMkvTabRules::VideoOnePass : MCMkvTabRules::VideoTwoPasses;
}

} // namespace

void MCMkvPreset::apply(const MCPresetSettings &preset, MCSelectionController &rules, const MCVideoFile &file,
                        const QString &tabName)
{
    rules.setCurrentTab(tabName);
    MCMkvTabRules *tab = rules.conversionTab(tabName);
    if (!tab || file.trackList.isEmpty())
        return;
    if (tabName == MCSelectionController::tabMp4)
        rules.setMp4Device(preset.pDevice);
    const int videoRow = videoRowFor(preset, *tab, file);
    tab->setVideoMatrixIndex(videoRow);
    if (videoRow != MCMkvTabRules::VideoPassthru) {
        rules.setEnteredUserVideoBitRate(preset.pVideoBitRateIndex == 1 ? preset.pVideoBitRate : file.theVideoBitRate);
        // Never upscaled.
        const bool customWidth = preset.pWidthIndex == 1 && integerValue(preset.pWidth) < integerValue(file.theWidth);
        rules.setEnteredUserWidth(customWidth ? preset.pWidth : file.theWidth);
    }
    for (const MCVideoTrackPtr &track : rules.currentSelection()->trackList) {
        if (track->trackType == QStringLiteral("Audio"))
            MCMkvTabRules::wantAudio(*track, audioRowFor(preset, *tab, *track), preset.pAudioAddStereo);
    }
    tab->setSubtitleMatrixIndex(MCMkvTabRules::SubtitleMux);
    tab->showChosenTrackAgain();
}
