#pragma once

#include "MCMp4BoxStep.h"

// Copies one track of an MP4 or M4V file with MP4Box, which writes the
// track beside the source under a name of its own choosing.
class MCMp4Extractor : public MCMp4BoxStep
{
public:
    MCMp4Extractor();

    // Reads the source through a link in the job's private folder, so the
    // track is written there instead of beside the user's file.
    bool readsThroughStagedLink = false;

    // Names and arguments (up to the log tail) without running anything;
    // false when the track cannot be extracted.
    bool prepareFor(const MCSelectionPtr &selection, MCOptionList *options);
    QString startConversionFor(const MCSelectionPtr &selection) override;
};
