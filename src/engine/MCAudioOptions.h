#pragma once

#include "MCVideoTrack.h"

#include <QString>

// MEncoder audio options that both encoding steps write: the channel map of
// a six-channel source, the surround AC-3 encoder and the Vorbis decoder.
class MCAudioOptions
{
public:
    // "-af pan=6:..." keeping every channel in its own place: today's
    // decoders deliver every source, DTS included, in the standard order.
    static QString identityChannelMap();
    // Six-channel AC-3 at the bit rate (kbit/s), through the identity map,
    // at 48 kHz.
    static QString surroundAc3(const QString &bitRate);
    // "-afm tremor" for a Vorbis track, else nothing.
    static QString decoderFor(const MCVideoTrack &track);
};
