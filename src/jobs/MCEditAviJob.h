#pragma once

#include "MCEditJob.h"

// File- and track-level edits of AVI files: extracting every track, adding
// an audio track, joining files, splitting one, and the MKV remux.
class MCEditAviJob : public MCEditJob
{
    Q_OBJECT
public:
    explicit MCEditAviJob(QObject *parent = nullptr);

    void startJob() override;

    // Rows per step; the heartbeat words of avimerge and avisplit become a
    // blinking "Adding Audio" or "Splitting AVI" row. Ends the job.
    void monitorStartJob();

    static void registerJobType();

private:
    // What each kind of edit leaves: checked before it takes its name.
    MCResultExpectation expectedResult() const;
};
