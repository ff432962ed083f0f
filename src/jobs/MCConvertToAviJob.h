#pragma once

#include "MCConversionJob.h"

// Converts a file into an MPEG-4 AVI: one video step that writes video,
// audio and any burned subtitle, plus one extraction step for every
// subtitle the user wants as a file of its own.
class MCConvertToAviJob : public MCConversionJob
{
    Q_OBJECT
public:
    explicit MCConvertToAviJob(QObject *parent = nullptr);

    void startJob() override;
    // Every step is watched until it ends; then the job is done.
    void monitorStartJob();
    // (The muxing phase into MKV it inherits is never called by its flow.)

    static void registerJobType();

private:
    // The AVI holds one video, the selected audio, and lasts as the source.
    MCResultExpectation expectedAvi() const;
};
