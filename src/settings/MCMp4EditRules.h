#pragma once

#include "MCSelection.h"

#include <QList>
#include <QString>
#include <QUrl>

// What Edit Files and Edit Tracks do with MP4 and M4V files: join, split by
// time or size, set the pixel aspect ratio, extract, remove and add tracks,
// all run by the MP4 editing job under the "MP4 ..." and "PAR Editing" job
// types.
namespace MCMp4EditRules {

bool isMp4(const QString &pathOrExtension);
bool allMp4(const QList<QUrl> &files);
// "MP4 Joining", "MP4 Splitting" or "PAR Editing" for the edit the button
// names on MP4 files; for other files the edit itself, except that only
// MP4 files have their pixel aspect ratio set ("none").
QString fileEditJobType(const QString &aviJobType, const QList<QUrl> &files);

// Edit Tracks on an MP4 file: sets the job type for the row and answers
// whether the selected tracks can be edited so. Extraction and removal take
// the file's own tracks (removal leaves at least one); adding takes only
// added files MP4Box can put in as they are.
bool decideTrackEdit(MCSelection &selection, int editTrackRow);
// Whether an added track can go into an MP4 as it is (AAC or AC-3 sound,
// SRT or SUB text).
bool canAdd(const MCVideoTrack &track);

} // namespace MCMp4EditRules
