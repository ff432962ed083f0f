#pragma once

#include "MCEditJob.h"

// File- and track-level edits of MKV files: extracting every track,
// removing tracks, joining files, splitting one, and the remux.
class MCEditMkvJob : public MCEditJob
{
    Q_OBJECT
public:
    explicit MCEditMkvJob(QObject *parent = nullptr);

    void startJob() override;
    // Rows (step, status) for every step, "Complete" included; a tick
    // without news shows the last percentage read.
    void monitorStartJob();

    static void registerJobType();

private:
    // One extraction per track, unless a track cannot be extracted.
    void startTrackExtraction();
    // What each kind of edit leaves: checked before it takes its name.
    MCResultExpectation expectedResult() const;
};
