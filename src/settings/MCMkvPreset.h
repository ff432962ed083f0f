#pragma once

#include <QString>

class MCPresetSettings;
class MCSelectionController;
class MCVideoFile;

// A settings preset whose target is "MKV" or "MP4": it fills that tab from
// the same fields an AVI preset uses, read the way the tab can honour them.
namespace MCMkvPreset {

// Video: the chosen row; a best guess copies the picture when the target
// holds its codec (an MKV holds any; an MP4 H.264 and MPEG-4), else encodes
// MPEG-4 in one pass (for speed) or two (for quality). The bit rate and
// width as for an AVI. Audio, per selected track: "MP3 (2-Ch.)" becomes AAC
// stereo, "AC3 (5.1)" AC-3 5.1 (on a surround track); a best guess copies
// what the target holds and otherwise encodes AC-3 5.1 from six channels or
// more, AAC stereo from fewer; "Pass Thru" copies. A surround track not
// mixed down gets the stereo copy when the preset asks for one. Subtitles
// are muxed. Into MP4 the preset's device is the record's.
void apply(const MCPresetSettings &preset, MCSelectionController &rules, const MCVideoFile &file, const QString &tabName);

} // namespace MCMkvPreset
