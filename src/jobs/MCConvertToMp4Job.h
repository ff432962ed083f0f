#pragma once

#include "MCConversionJob.h"

class MCMp4Muxer;

// Converts the selected tracks of a file into an MP4 (M4V for AC-3 audio
// and Apple devices) in four phases: every track to change is encoded,
// extracted or dumped into a stream of its own, all at once; ASS and SSA
// subtitles become SRT; MP4Box muxes the streams; a copied H.264 video
// gets the level its device can play, before and after the mux.
class MCConvertToMp4Job : public MCConversionJob
{
    Q_OBJECT
public:
    explicit MCConvertToMp4Job(QObject *parent = nullptr);

    void startJob() override;
    void monitorStartJob();
    void processNewTracks();
    // The MP4Box mux in place of the base's mkvmerge one.
    void muxStep();
    void monitorMuxStep();
    void processNewMuxedFile();

    // Why the selection cannot become an MP4 ("" when it can): MP4Box gets
    // only AAC and AC-3 audio from Kestrane.
    static QString conversionRefusal(const MCSelection &selection);
    static void registerJobType();

private:
    // The step that prepares track i, or null when it goes in as it is.
    MCConverterPtr stepForTrack(int i);
    bool copiesH264Video() const;
    // The level patch before the mux, on a stream of Kestrane's own.
    void patchCopiedStream(QStringList *newTempFiles);
    void convertSubtitles(QStringList *newTempFiles);
    // Runs slow file work on the job's own thread, then the next phase on
    // the main thread with the intermediates it made.
    void runOffMainThread(std::function<void(QStringList *)> work, std::function<void()> next);

    std::shared_ptr<MCMp4Muxer> m_muxer;
};
