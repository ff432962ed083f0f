#pragma once

#include "MCMkvmergeStep.h"

// Muxes tracks from one or several files into one MKV file, with language,
// name, flags and no compression for each track; also removes tracks from
// an MKV file by muxing only the ones to keep.
class MCMkvMuxer : public MCMkvmergeStep
{
public:
    MCMkvMuxer();

    MCTrackList tracksToMux;

    QString startConversionFor(const MCSelectionPtr &selection) override;

    // The per-file part of the command: for each source file, in order of
    // first appearance, its tracks' options, the -d/-a/-s (or -D/-A/-S)
    // lists and the quoted path.
    MCOptionList trackOptions() const;
};
