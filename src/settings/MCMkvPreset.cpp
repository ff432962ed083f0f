#include "MCMkvPreset.h"

#include "MCMkvTabRules.h"
#include "MCPresetSettings.h"
#include "MCSelectionController.h"
#include "MCTextNumbers.h"

using MCTextNumbers::integerValue;

namespace {

constexpr int kBestGuessForSpeed = 3;
constexpr int kStereoToMp3 = 1;
constexpr int kSurroundToMp3 = 1;
constexpr int kSurroundToAc3 = 2;

int audioRowFor(const MCPresetSettings &preset, const MCVideoTrack &track)
{
    if (integerValue(track.trackNumberOfChannels) < 3)
        return preset.pStereoActionIndex == kStereoToMp3 ? MCMkvTabRules::AudioAacStereo : MCMkvTabRules::AudioPassthru;
    if (preset.pSurroundActionIndex == kSurroundToMp3)
        return MCMkvTabRules::AudioAacStereo;
    if (preset.pSurroundActionIndex == kSurroundToAc3 && integerValue(track.trackNumberOfChannels) >= 6)
        return MCMkvTabRules::AudioAc351;
    return MCMkvTabRules::AudioPassthru;
}

} // namespace

void MCMkvPreset::apply(const MCPresetSettings &preset, MCSelectionController &rules, const MCVideoFile &file)
{
    rules.setCurrentTab(MCSelectionController::tabMkv);
    if (file.trackList.isEmpty())
        return;
    MCMkvTabRules &tab = *rules.mkvTab();
    const int videoRow = preset.pVideoActionIndex() >= kBestGuessForSpeed ? 0 : preset.pVideoActionIndex();
    tab.setVideoMatrixIndex(videoRow);
    if (videoRow != MCMkvTabRules::VideoPassthru) {
        rules.setEnteredUserVideoBitRate(preset.pVideoBitRateIndex == 1 ? preset.pVideoBitRate : file.theVideoBitRate);
        // Never upscaled.
        const bool customWidth = preset.pWidthIndex == 1 && integerValue(preset.pWidth) < integerValue(file.theWidth);
        rules.setEnteredUserWidth(customWidth ? preset.pWidth : file.theWidth);
    }
    for (const MCVideoTrackPtr &track : rules.currentSelection()->trackList) {
        if (track->trackType == QStringLiteral("Audio"))
            MCMkvTabRules::wantAudio(*track, audioRowFor(preset, *track), preset.pAudioAddStereo);
    }
    tab.setSubtitleMatrixIndex(MCMkvTabRules::SubtitleMux);
    tab.showChosenTrackAgain();
}
