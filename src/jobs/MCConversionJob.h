#pragma once

#include "MCJob.h"

// What the conversion jobs share: their tracks and a muxing phase that puts
// the selection's tracks, as the conversion left them, into an MKV file.
class MCConversionJob : public MCJob
{
    Q_OBJECT
public:
    explicit MCConversionJob(QObject *parent = nullptr);

    MCTrackList theTracks;
    // The mux monitor's counters ("Muxing Step #%i" and the last percentage).
    int muxStepCounter() const { return monitorStepCounter(); }
    int oldMuxProgress() const { return monitorLastValue(); }

    // One mkvmerge step ("Muxing Tracks") writing NAME.EXT.muxed.mkv, then
    // its monitor, which ends the job.
    void muxStep();
    void monitorMuxStep();
};
