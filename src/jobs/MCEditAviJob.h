#pragma once

#include "MCJob.h"

// File- and track-level edits of AVI files: extracting every track, adding
// an audio track, joining files, splitting one, and the MKV remux.
class MCEditAviJob : public MCJob
{
    Q_OBJECT
public:
    explicit MCEditAviJob(QObject *parent = nullptr);

    MCTrackList theTracks;
    // The counted monitors' step number and the last percentage read.
    int muxStepCounter() const { return monitorStepCounter(); }
    int progressStepCounter() const { return monitorStepCounter(); }
    int oldStepProgress() const { return monitorLastValue(); }

    void startJob() override;

    // The monitors. Each puts one loop on the job's monitor thread that ends
    // in jobDone (unless the job is cancelled).
    //
    // Rows per step; the heartbeat words of avimerge and avisplit become a
    // blinking "Adding Audio" or "Splitting AVI" row.
    void monitorStartJob();
    // Rows "<step> Step #n", n going up whenever the percentage falls back.
    void monitorStartJobWithMultipleSteps();
    // Rows "Muxing Step #n", counted the same way.
    void monitorMuxStep();

    static void registerJobType();

private:
    void startExtraction();
    void startSingleStep(const MCConverterPtr &step, const QString &label);
    // What each kind of edit leaves: checked before it takes its name.
    MCResultExpectation expectedResult() const;
};
