#pragma once

#include "MCSelection.h"

#include <QString>

// Why an AVI conversion of the selection, as the rules have filled it in,
// cannot give a playable file, told so that a user knows what to choose
// instead; an empty text when it can. The rules leave such choices open, but
// MEncoder would write nothing, or an AVI without sound or picture.
class MCAviRefusal
{
public:
    // typedBitRateValid: the bit-rate field holds a number.
    static QString reasonFor(const MCSelection &selection, bool typedBitRateValid);

    // The audio codecs an AVI holds as they are (a copied track).
    static bool aviCarriesAudio(const QString &trackCodec);
    // Why MEncoder cannot encode MPEG-4 at the selection's bit rate; empty
    // when it can. Any target that re-encodes with MEncoder asks this.
    static QString mpeg4BitRateReason(const MCSelection &selection, bool typedBitRateValid);

private:
    static QString videoReason(const MCSelection &selection, const MCVideoTrack &video, bool typedBitRateValid);
    static QString audioReason(const MCVideoTrack &audio);
    static QString subtitleReason(const MCSelection &selection, const MCVideoTrack &video);
    // Why a subtitle cannot be extracted from a file of this container.
    static QString extractionReason(const QString &container);
};
