#pragma once

#include "MCConverter.h"

// Encodes one audio track with mencoder into a raw AAC or AC-3 stream, an
// intermediate of a job that muxes it into a new file afterwards. A stereo
// copy of a surround track is encoded by a step of its own.
class MCMencoderAudio : public MCConverter
{
public:
    MCMencoderAudio();

    QString mencoderVersion = QStringLiteral("mencoder");
    MCOptionList optionArray;

    // Names and options, without running anything; "" when ready, else why
    // the step cannot serve its track.
    QString prepareFor(const MCSelectionPtr &selection);
    QString startConversionFor(const MCSelectionPtr &selection) override;
    // "Complete" once mencoder has ended, else the percentage of its last
    // "Pos" line (the previous one when the line is something else).
    QString monitorConversion() override;

    // The encoder option for the track: stereo AAC unless the source has six
    // channels or more and six AAC channels or AC-3 are asked for.
    static QString codecOptionFor(const MCVideoTrack &track);

private:
    void nameOutputAndLog(const MCVideoTrack &track);
};
