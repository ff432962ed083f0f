#pragma once

#include <QString>

// The fixed words the parts of Kestrane exchange: a job's type, a tab's
// name, a track's type and the words a step's status starts with. They are
// compared as written, so every part takes them from here.
namespace MCWords {

// Job types, as a selection record and the queue name them.
inline const QString jobAviConversion = QStringLiteral("AVI Conversion");
inline const QString jobAviTrackExtraction = QStringLiteral("AVI Track Extraction");
inline const QString jobAviTrackAddition = QStringLiteral("AVI Track Addition");
inline const QString jobAviTrackRemoval = QStringLiteral("AVI Track Removal");
inline const QString jobAviJoining = QStringLiteral("AVI Joining");
inline const QString jobAviSplitting = QStringLiteral("AVI Splitting");
inline const QString jobMkvRemux = QStringLiteral("MKV Remux");
inline const QString jobMp4Conversion = QStringLiteral("MP4 Conversion");
inline const QString jobMkvConversion = QStringLiteral("MKV Conversion");
inline const QString jobMkvTrackExtraction = QStringLiteral("MKV Track Extraction");
inline const QString jobMkvTrackRemoval = QStringLiteral("MKV Track Removal");
inline const QString jobMkvJoining = QStringLiteral("MKV Joining");
inline const QString jobMkvSplitting = QStringLiteral("MKV Splitting");
inline const QString jobMp4TrackExtraction = QStringLiteral("MP4 Track Extraction");
inline const QString jobMp4TrackRemoval = QStringLiteral("MP4 Track Removal");
inline const QString jobMp4TrackAddition = QStringLiteral("MP4 Track Addition");
inline const QString jobMp4Joining = QStringLiteral("MP4 Joining");
inline const QString jobMp4Splitting = QStringLiteral("MP4 Splitting");
inline const QString jobParEditing = QStringLiteral("PAR Editing");

// Tabs of the settings area.
inline const QString tabAvi = QStringLiteral("AVI");
inline const QString tabMkv = QStringLiteral("MKV");
inline const QString tabMp4 = QStringLiteral("MP4");
inline const QString tabEditFiles = QStringLiteral("Edit Files");
inline const QString tabEditTracks = QStringLiteral("Edit Tracks");

// Track types as mediainfo reports them.
inline const QString trackVideo = QStringLiteral("Video");
inline const QString trackAudio = QStringLiteral("Audio");
inline const QString trackSubtitle = QStringLiteral("Subtitle");

// Step statuses.
inline const QString statusWaiting = QStringLiteral("Waiting");
inline const QString statusCompleted = QStringLiteral("Completed");
inline const QString statusFailed = QStringLiteral("Failed");
inline const QString statusPassPrefix = QStringLiteral("Pass #");
inline const QString statusMuxingPrefix = QStringLiteral("Muxing Step #");

} // namespace MCWords
