#pragma once

#include "MCMp4BoxStep.h"

// Muxes a job's prepared streams (video, audio, subtitles) into one MP4 or
// M4V file with MP4Box: language and name of every track, one enabled track
// per alternate group, the pixel aspect ratio and the options the device
// needs. Also adds subtitles to an MP4 file that exists.
class MCMp4Muxer : public MCMp4BoxStep
{
public:
    MCMp4Muxer();

    MCTrackList tracksToMux;

    QString startConversionFor(const MCSelectionPtr &selection) override;
    // Adds the selection's muxable subtitles to the file, which is written
    // again in place; "error" when there is none to add.
    QString muxIntoURL(const QUrl &file, const MCSelectionPtr &selection);

    // ".m4v" when an audio track is AC-3 or the device is an Apple one.
    static QString extensionFor(const MCTrackList &tracks, const QString &device);
    // Whether the device wants MP4Box's iPod flavour (the Apple TVs do not).
    static bool deviceWantsIpod(const QString &device);
    // "-par 1=N:1000" for a decimal ratio, "" when there is none to write.
    static QString parOption(const QString &ratio);
    // Whether a save folder lies on a mounted volume of its own.
    static bool isOnOtherVolume(const QString &folder);

    // The "-add" specifications in muxing order: the first video, the AAC
    // tracks, the AC-3 tracks (the first AAC, else the first AC-3, enabled
    // when there are several), then the subtitles.
    MCOptionList videoAndAudioSpecifications() const;
    MCOptionList subtitleSpecifications(bool grouped);

private:
    QString trackSpecification(const MCVideoTrack &track, const QString &defaultName) const;
    MCOptionList deviceAndTailOptions() const;
    QList<QUrl> muxedFiles(bool subtitlesOnly) const;
};
