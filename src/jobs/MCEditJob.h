#pragma once

#include "MCJob.h"

#include <functional>

// What the editing jobs of every container share: the track list, the
// counted monitors, and the two ways they start their steps.
class MCEditJob : public MCJob
{
    Q_OBJECT
public:
    explicit MCEditJob(QObject *parent = nullptr);

    MCTrackList theTracks;
    // The counted monitors' step number and the last percentage read.
    int muxStepCounter() const { return monitorStepCounter(); }
    int progressStepCounter() const { return monitorStepCounter(); }
    int oldStepProgress() const { return monitorLastValue(); }

    // Each puts one loop on the job's monitor thread that ends the job
    // (unless it is cancelled).
    // Rows "<step> Step #n", n going up whenever the percentage falls back.
    void monitorStartJobWithMultipleSteps();
    // Rows "Muxing Step #n", counted the same way.
    void monitorMuxStep();

    // "Extracting Video Track", "... Audio ...", "... Subtitle ..." by the
    // track's type; "Extracting" for any other.
    static QString extractionLabelFor(const QString &trackType);

protected:
    // Fresh lists and counters, the selection's tracks as theTracks.
    void beginEditing();
    // One new step per track, each keeping its output; no rows at the start.
    void startExtraction(const std::function<MCConverterPtr()> &newStep);
    // One step on the first track, with its label and a start row.
    void startSingleStep(const MCConverterPtr &step, const QString &label, const MCResultExpectation &expected);
    // What an edit leaves, checked before it takes its name: media; a join
    // as long as its files together; a cut by time as long as its range,
    // from up to a key-frame interval earlier (lateCuts: the tool may also
    // begin up to one later); a remux or an added track as long as the source.
    MCResultExpectation expectedEditResult(bool lateCuts) const;
};
