#pragma once

#include "MCConversionJob.h"

// Converts the selected tracks of a file into one MKV file: a video or
// audio encoding step for every track to re-encode (copied tracks and muxed
// subtitles need none), then mkvmerge muxes the new streams and the copied
// tracks with their languages and titles into NAME.EXT.muxed.mkv.
class MCConvertToMkvJob : public MCConversionJob
{
    Q_OBJECT
public:
    explicit MCConvertToMkvJob(QObject *parent = nullptr);

    void startJob() override;
    // Every step keeps its row; a first pass that ends starts the second.
    // When every step is done, the tracks are muxed.
    void monitorStartJob();

    static void registerJobType();

private:
    // The step that re-encodes track i, or null when it goes in as it is.
    MCConverterPtr stepForTrack(int i);
};
