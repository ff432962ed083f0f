#pragma once

#include "MCConverter.h"

// Plays the current track choice in mplayer so the user can check the
// video, audio and subtitles before queuing. Not a job step: its process is
// neither tracked nor stopped.
class MCMoviePlayer : public MCConverter
{
public:
    MCMoviePlayer();

    void playMovie(const MCSelectionPtr &selection);
    // The options playMovie hands to mplayer, ending in the background start.
    MCOptionList optionsFor(const MCSelection &selection) const;
};
