#pragma once

#include <QString>

class MCSelectionController;
struct MCCliOptions;

// The command line's choices for the "MKV" and "MP4" tabs (the same rows)
// and the MKV edits, given to the rules through their own setters as the
// window's controls give them.
namespace MCCliMkvChoices {

// On the current tab: --video, --bitrate, --width; --audio and
// --stereo-copy for every selected audio track (each track has its own
// choice on these tabs); --subtitles; into MP4 --device.
void apply(const MCCliOptions &options, MCSelectionController &rules);

// "HH:MM:SS" of a number of seconds, as typed into the duration field.
QString durationText(const QString &seconds);

} // namespace MCCliMkvChoices
