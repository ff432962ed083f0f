#pragma once

class MCPresetSettings;
class MCSelectionController;
class MCVideoFile;

// A settings preset whose target is "MKV": it fills the "MKV" tab from the
// same fields an AVI preset uses, read the way that tab can honour them.
namespace MCMkvPreset {

// Video: the chosen row (a best guess passes the picture through, as an MKV
// holds any); the bit rate and width as for an AVI. Audio, per selected
// track: "MP3 (2-Ch.)" becomes AAC stereo, "AC3 (5.1)" AC-3 5.1 (on a
// surround track), anything else is passed through; a surround track not
// mixed down gets the stereo copy when the preset asks for one. Subtitles
// are muxed.
void apply(const MCPresetSettings &preset, MCSelectionController &rules, const MCVideoFile &file);

} // namespace MCMkvPreset
