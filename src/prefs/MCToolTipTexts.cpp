#include "MCToolTipTexts.h"

namespace {

// Two blanks between sentences, as in every text Kestrane shows.
constexpr MCToolTipText texts[] = {
    {"ttVidBitRateField",
     "This displays what will be the video bit rate of the processed video.  Enter your own value if "
     "you want to change it.  If not selectable, then the setting is not needed."},
    {"ttResWidthField",
     "This displays the width of the processed video in pixels.  Enter your own value to resize the "
     "video; the height follows to keep the picture's shape."},
    {"ttAudioBitRateButton",
     "Select the bit rate of the encoded audio.  Higher values sound better and make larger files."},
    {"ttConvertButton",
     "Click to start the conversion process.  If not clickable, then invalid or incomplete "
     "selections have been made."},
    {"ttFPSCombo",
     "This is the frame rate of the video.  You should only need to change this if you see drastic "
     "sync issues with your results."},
    {"ttAddStereoCheckBox",
     "Check to add a stereo copy of the selected audio track.  Useful when your device cannot play "
     "surround sound."},
    {"ttDevicePopUp",
     "Select the device you want to play the video on.  The settings are chosen to suit it."},
    {"ttMultipleAudioTrackPopUp",
     "Select the audio track to process when the video has more than one."},
    {"ttTheVideoMatrix",
     "Select what to do with the video track.  Passthru keeps it as it is, which is much faster.  If "
     "red, the option is not recommended."},
    {"ttTheAudioMatrix", "Select the audio codec to use.  If red, the option is not recommended."},
    {"ttTheSubtitleMatrix",
     "Select what to do with the subtitle track you have selected.  Burn requires the video to be "
     "re-encoded."},
    {"ttStartTrackEditButton",
     "Click to start editing the tracks of the video.  If not clickable, then invalid or incomplete "
     "selections have been made."},
    {"ttEditTrackMatrix",
     "Select what to do with the tracks of the video: extract them, remove them or add new ones."},
    {"ttEditPAR",
     "Enter the pixel aspect ratio to write into the video.  Use this if the picture looks squeezed "
     "or stretched on your device."},
    {"ttSplitStartTime",
     "Enter where the piece you want to keep starts, as hours:minutes:seconds."},
    {"ttSplitEndTime", "Enter where the piece you want to keep ends, as hours:minutes:seconds."},
    {"ttSplitSize",
     "Select a size to segment the video.  The entire video will be segmented into multiple files "
     "of approximately the entered size."},
    {"ttSplitNumber",
     "Enter the number of pieces to split the video into.  The pieces will be of about equal size."},
    {"ttConvertFileField", "This shows the video you have opened.  Drop another video here to open it."},
    {"ttConvertTrackTable",
     "These are the tracks of the video.  Check the tracks you want to keep in the processed video."},
    {"ttPlayButton",
     "Click to preview the selected tracks.  Use it to check a subtitle or audio track before "
     "processing."},
    {"ttAddButton",
     "Click to add an audio or subtitle file to the video.  It is listed with the other tracks."},
    {"ttToggleVideoButton", "Click to select or deselect all the video tracks."},
    {"ttToggleAudioButton", "Click to select or deselect all the audio tracks."},
    {"ttToggleSubtitleButton", "Click to select or deselect all the subtitle tracks."},
    {"ttPresetSettingsPopUp",
     "Select a settings preset.  It sets the device and the video and audio settings for you."},
    {"ttPresetSelectionsPopUp",
     "Select a track selection preset.  It chooses the tracks to keep for you when a video is "
     "opened."},
    {"ttStartWatchingFolderButton",
     "Click to start or stop watching the watch folder.  Every new video that appears in it is "
     "processed with the current presets."},
    {"ttQueueTable", "These are the videos waiting to be processed, in the order they will run."},
    {"ttQueueJobTable", "This shows the progress of each step of the running job."},
    {"ttQueueClearButton",
     "Click to remove the finished and waiting jobs from the queue.  A running job is not stopped."},
    {"ttQueuePauseButton", "Click to pause the running job.  Click again to carry on where it stopped."},
    {"ttPrefLogsButton",
     "Check to keep the log and temporary files created by Kestrane.  The log files can be useful "
     "for finding error messages."},
    {"ttPrefToolTipsButton", "Check to show these help texts when the pointer rests on a control."},
    {"ttPrefSubPosField",
     "Enter how far above the bottom of the picture subtitles are placed, in percent of the picture "
     "height."},
    {"ttPrefSubHeightField",
     "Enter the height of the subtitle letters, in percent of the picture height."},
    {"ttPrefSubFontField",
     "Use the Change... button to set the font to be used for subtitles.  If the field is blank, "
     "then no subtitles will be displayed."},
    {"ttPresetTable", "These are the presets.  Select one to see or change its settings."},
    {"ttAddPresetButton",
     "Click to add a new preset to the list.  Give it a name and choose its settings."},
    {"ttRemovePresetButton", "Click to remove the selected preset.  Built-in presets cannot be removed."},
    {"ttPresetName", "Enter the name of the preset as it will appear in the preset menus."},
    {"ttVideoTrackSelectionPopUp", "Select which video tracks the preset keeps."},
    {"ttAudioTrackSelectionPopUp", "Select which audio tracks the preset keeps."},
    {"ttSubtitleTrackSelectionPopUp", "Select which subtitle tracks the preset keeps."},
    {"ttLanguageSelectionPopUp", "Select the language of the tracks the preset looks for."},
    {"ttUseFirstCheckBox",
     "Check to keep the first track when no track of the chosen language is found."},
    {"ttPTypeOfProcessList", "Select the kind of processing the preset sets up."},
    {"ttPDeviceList", "Select the device the preset prepares videos for."},
    {"ttPVideoActionList",
     "Select what the preset does with the video track.  Passthru keeps it as it is, which is much "
     "faster."},
    {"ttPVideoGenericList",
     "Select the video settings the preset uses when the video has to be re-encoded."},
    {"ttPStereoAudio", "Select what the preset does with stereo audio tracks."},
    {"ttPSurroundAudio",
     "Select what the preset does with surround audio tracks.  A stereo copy can be added for devices "
     "without surround sound."},
    {"ttPSubActionList", "Select what the preset does with the subtitle tracks it keeps."},
    {"ttAddFilterButton",
     "Click to add/remove a filter.  If a filter finds a track, then the following filters are not "
     "applied."},
    {"ttFilterMode",
     "Apply All - every filter is applied for potentially multiple selections.\rPrioritized - If a "
     "filter finds a track(s), then the following filters are not applied."},
};

} // namespace

std::span<const MCToolTipText> MCToolTipTexts::all()
{
    return texts;
}
