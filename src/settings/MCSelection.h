#pragma once

#include "MCVideoTrack.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>
#include <utility>

class MCVideoFile;

// The settings of one job: the source file, which tracks are carried, the
// kind of job, the target device, the user's numbers and the split values.
// The selection rules keep one live record; the queue keeps a copy per job.
// Numbers are decimal texts because they end up on a tool's command line.
class MCSelection
{
public:
    // Construction values only ("mp4box", "ffmpeg", false); every other
    // field stays empty until initialize() or initializeFrom().
    MCSelection();

    // A copy shares the track objects but not the lists, and always carries
    // the construction values of mp4Muxer, currentEncoder and
    // forceLegacyEncoder, whatever the source held.
    MCSelection(const MCSelection &other);
    MCSelection &operator=(const MCSelection &) = delete;
    ~MCSelection() = default;

    // The record a job keeps: every track is copied too (a track that stands
    // in several lists stays one track), so nothing the window or the rules
    // change later reaches a queued job, and a job never writes into the
    // window's tracks.
    std::shared_ptr<MCSelection> copy() const;

    QString mp4Muxer;
    QString currentEncoder;
    bool forceLegacyEncoder = false;
    QList<QUrl> editFilesURLsList;
    MCTrackList trackList;
    MCTrackList addedAudioTrackList;
    MCTrackList keepTracksList;
    QString videoTrackFilePath;
    QUrl videoTrackFileURL;
    QString videoTrackFileName;
    QString videoTrackFileShortName;
    QString videoTrackFileExtension;
    QString videoTrackCodec;
    QString videoTrackFPS;
    QString videoTrackWidth;
    QString videoTrackHeight;
    QString videoTrackBitRate;
    QString videoTrackPAR;
    QString videoTrackProfile;
    bool headerRemovalFlag = false;
    QString jobType;
    QString jobStatus;
    QString theDevice;
    QString userVideoBitRate;
    QString userAudioBitRate;
    QString userFPS;
    QString userHeight;
    QString userWidth;
    QString userPassNumber;
    QString userParWidth;
    QString userParHeight;
    QString splitType;
    QString splitSize;
    QString splitNumber;
    QString splitStartTimeText;
    QString splitEndTimeText;
    QString splitStartTimeSeconds;
    QString splitEndTimeSeconds;
    QString splitDurationText;
    QString splitDurationSeconds;
    QString vidCount;
    QString audCount;
    QString subCount;

    void initialize();
    void setDefaultSelectionProperties();
    void initializeFrom(const MCVideoFile &file);

    // Rebuilds addedAudioTrackList from the audio tracks of trackList that
    // ask for a stereo copy; an earlier list is dropped.
    void addAnyStereoTracks();
    // The ticked tracks of a file become the job's tracks (the others are
    // kept as they are), with their counts, their stereo copies and each
    // audio track's place in the audio-track chooser.
    void takeSelectedTracks(const MCTrackList &fileTracks);

    // Texts are HH:MM:SS. An absent (or null) text leaves its end alone.
    void initializeSplitForStartTime(const std::optional<QString> &start,
                                     const std::optional<QString> &end = std::nullopt);
    void initializeSplitDurationForTimeText(const QString &text);

    void logSelectionProperties() const;
    // Every file the selection reads, as absolute paths: its sources, the
    // files to edit and each track's own file.
    QStringList sourcePaths() const;
    // A job of the Edit Files tab (joining, splitting, PAR): it works on
    // editFilesURLsList, whatever file the track table holds.
    bool editsFiles() const;
    void logSelectionMuxingProperties() const;

    // (name, value) pairs of the logged fields in log order, flags as 0 or 1.
    QList<std::pair<QString, QString>> selectionPropertyPairs() const;

    // Whole seconds of an HH:MM:SS text as decimal text; pieces that are not
    // numbers count 0, nothing is range checked.
    static QString secondsForTimeText(const QString &text);
};

using MCSelectionPtr = std::shared_ptr<MCSelection>;
