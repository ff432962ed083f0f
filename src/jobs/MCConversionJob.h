#pragma once

#include "MCJob.h"

#include <functional>

// What the conversion jobs share: their tracks, a first phase that prepares
// each track with a step of its own, and (for the MKV target) a muxing
// phase that puts the tracks, as the conversion left them, into an MKV file.
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

protected:
    // Takes the selection's tracks and, unless the job is refused, starts
    // one step per track at once (null for a track used as it is, so that
    // entry i always belongs to track i) and points each prepared track at
    // its step's output. Answers false when refused.
    bool startTrackSteps(const QString &refusal, const std::function<MCConverterPtr(int)> &stepForTrack);
    // The MEncoder step that re-encodes track i as the user asked; the
    // track is then muxed as what it became.
    MCConverterPtr encodingStepFor(int i);
};
