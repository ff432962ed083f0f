#pragma once

#include <QString>

class MCSelectionController;
struct MCCliOptions;

// The command line's choices for the "MKV" tab and the MKV edits, given to
// the rules through their own setters as the window's controls give them.
namespace MCCliMkvChoices {

// --video, --bitrate, --width; --audio and --stereo-copy for every selected
// audio track (each track has its own choice on that tab); --subtitles.
void apply(const MCCliOptions &options, MCSelectionController &rules);

// "HH:MM:SS" of a number of seconds, as typed into the duration field.
QString durationText(const QString &seconds);

} // namespace MCCliMkvChoices
