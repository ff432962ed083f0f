#pragma once

#include "MCJob.h"

// Converts a file into an MPEG-4 AVI: one video step that writes video,
// audio and any burned subtitle, plus one extraction step for every
// subtitle the user wants as a file of its own.
class MCConvertToAviJob : public MCJob
{
    Q_OBJECT
public:
    explicit MCConvertToAviJob(QObject *parent = nullptr);

    MCTrackList theTracks;
    // The mux monitor's counters ("Muxing Step #%i" and the last percentage).
    int muxStepCounter() const { return monitorStepCounter(); }
    int oldMuxProgress() const { return monitorLastValue(); }

    void startJob() override;
    // Every step is watched until it ends; then the job is done.
    void monitorStartJob();
    // A muxing phase into MKV with its monitor ("Muxing Step #%i"), as the
    // MKV conversion has it; the AVI conversion's own flow never calls them.
    void muxStep();
    void monitorMuxStep();

    static void registerJobType();

private:
    // The AVI holds one video, the selected audio, and lasts as the source.
    MCResultExpectation expectedAvi() const;
};
