#pragma once

#include "MCConverter.h"

// Copies one track of an AVI (or another container mkvextract cannot read)
// into an intermediate file: video with mencoder, audio with mplayer.
class MCTrackDumper : public MCConverter
{
public:
    MCTrackDumper();

    QString startConversionFor(const MCSelectionPtr &selection) override;
    QString monitorConversion() override;

private:
    bool dumpingAudio = false;
};
